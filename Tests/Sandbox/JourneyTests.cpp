#include <gtest/gtest.h>

#include "SandboxClient.h"

namespace {

constexpr std::string_view AccountPath = "/v2/pay/account";

class Journey : public testing::Test {
 protected:
  SandboxClient::Response link(std::string_view callbackURL = "shop://done?a=1#end") {
    const json::value body = {
        {"payment_type", "zolva"},
        {"zolva_partner",
         {{"phone_number", "55501<2>"}, {"country_code", "1"}, {"redirect_url", callbackURL}}}};
    return client.call("POST", AccountPath, json::serialize(body));
  }

  SandboxClient::Response charge(std::string_view orderID, double amount, int quantity = 1) {
    const json::value body = {
        {"payment_type", "zolva"},
        {"zolva",
         {{"account_id", accountID},
          {"payment_option_token", token},
          {"callback_url", "shop://paid"},
          {"enable_callback", true}}},
        {"transaction_details",
         {{"gross_amount", amount}, {"order_id", orderID}, {"currency", ZLVSandboxCurrency}}},
        {"customer_details", {{"phone", "1"}, {"first_name", "Ada"}, {"email", "a@b.c"}}},
        {"item_details",
         json::array{
             json::object{{"id", "i"}, {"name", "n"}, {"price", amount}, {"quantity", quantity}}}}};
    return client.call("POST", "/v2/charge", json::serialize(body));
  }

  SandboxClient::Response enquire() {
    return client.call("GET", std::string(AccountPath) + "/" + accountID);
  }

  /// The page of an answer's action, below the sandbox's address.
  std::string page(const SandboxClient::Response& answer) {
    return textAt(answer, "/actions/0/url").substr(sandbox.baseURL().size());
  }

  void linkAndActivate() {
    const auto linked = link();
    accountID = textAt(linked, "/account_id");
    EXPECT_EQ(client.call("POST", page(linked), "decision=confirm").result_int(), 303U);
    token = textAt(enquire(), "/metadata/payment_options/0/token");
  }

  std::string orderStatus(const std::string& orderID) {
    return textAt(client.call("GET", "/orders/" + orderID), "/transaction_status");
  }

  std::string balance() { return textAt(enquire(), "/metadata/payment_options/0/balance/value"); }

  ZLVSandbox sandbox{{.merchantName = "Tom & \"Tea\""}};
  SandboxClient client{sandbox};
  std::string accountID;
  std::string token = "none";
};

TEST_F(Journey, AnAccountIsActivatedOnAPageThatWorksOnce) {
  const auto linked = link();
  accountID = textAt(linked, "/account_id");
  EXPECT_EQ(linked.result_int(), 201U);
  EXPECT_EQ(textAt(linked, "/status_code"), "201");
  EXPECT_EQ(textAt(linked, "/account_status"), "PENDING");
  EXPECT_EQ(textAt(linked, "/actions/0/name"), "activation-deeplink");
  EXPECT_EQ(textAt(linked, "/actions/1/name"), "activation-link-url");
  EXPECT_EQ(json::parse(enquire().body()).as_object().count("metadata"), 0U);
  EXPECT_EQ(charge("early", 1).result_int(), 403U);

  const auto shown = client.call("GET", page(linked));
  EXPECT_NE(shown.body().find("Tom &amp; &quot;Tea&quot;"), std::string::npos);
  EXPECT_NE(shown.body().find("+1 55501&lt;2&gt;"), std::string::npos);
  EXPECT_NE(shown["Content-Security-Policy"].find("form-action 'self' shop:"), std::string::npos);
  EXPECT_EQ(client.call("POST", page(linked), "decision=perhaps").result_int(), 400U);

  const auto confirmed = client.call("POST", page(linked), "decision=confirm");
  EXPECT_EQ(confirmed.result_int(), 303U);
  EXPECT_EQ(confirmed["Location"], "shop://done?a=1&result=success#end");
  for (const auto* method : {"GET", "POST"}) {
    const auto used = client.call(method, page(linked), "decision=confirm");
    EXPECT_EQ(used.result_int(), 410U);
    EXPECT_NE(used.body().find("used already"), std::string::npos);
  }
  EXPECT_EQ(client.call("GET", "/wallet/activate/none").result_int(), 404U);

  const auto again = link();
  EXPECT_EQ(again.result_int(), 200U);
  EXPECT_EQ(textAt(again, "/account_id"), accountID);
  EXPECT_EQ(json::parse(again.body()).as_object().count("actions"), 0U);
  EXPECT_EQ(balance(), "500.00");
  EXPECT_EQ(textAt(enquire(), "/metadata/payment_options/1/balance/currency"), ZLVSandboxCurrency);
}

TEST_F(Journey, AChargeAboveTheLimitWaitsForTheUser) {
  linkAndActivate();
  const auto small = charge("small", ZLVSandboxVerificationLimit);
  EXPECT_EQ(small.result_int(), 200U);
  EXPECT_EQ(textAt(small, "/transaction_status"), "settlement");
  EXPECT_EQ(textAt(small, "/gross_amount"), "100.00");
  EXPECT_EQ(textAt(small, "/transaction_id").size(), 36U);
  EXPECT_EQ(balance(), "400.00");

  const auto large = charge("large", 150.25);
  EXPECT_EQ(large.result_int(), 201U);
  EXPECT_EQ(textAt(large, "/transaction_status"), "pending");
  EXPECT_EQ(textAt(large, "/actions/0/name"), "user-verification");
  EXPECT_EQ(balance(), "400.00");
  EXPECT_NE(client.call("GET", page(large)).body().find("EUR 150.25"), std::string::npos);
  EXPECT_EQ(client.call("POST", page(large), "decision=confirm")["Location"],
            "shop://paid?result=success");
  EXPECT_EQ(balance(), "249.75");

  const auto refused = charge("refused", 200);
  EXPECT_EQ(client.call("POST", page(refused), "decision=cancel")["Location"],
            "shop://paid?result=cancelled");
  EXPECT_EQ(orderStatus("refused"), "cancel");
  EXPECT_EQ(balance(), "249.75");

  const auto abandoned = charge("refused", 190);
  EXPECT_EQ(orderStatus("refused"), "pending");
  const auto anew = charge("refused", 10.25);
  EXPECT_EQ(textAt(anew, "/transaction_status"), "settlement");
  EXPECT_EQ(client.call("POST", page(abandoned), "decision=confirm").result_int(), 410U);
  EXPECT_EQ(charge("refused", 10.25).result_int(), 406U);
  EXPECT_EQ(orderStatus("refused"), "settlement");
  EXPECT_EQ(balance(), "239.50");

  const auto first = charge("first", 200);
  const auto second = charge("second", 200);
  client.call("POST", page(first), "decision=confirm");
  EXPECT_EQ(client.call("POST", page(second), "decision=confirm")["Location"],
            "shop://paid?result=failed");
  EXPECT_EQ(orderStatus("second"), "deny");
  EXPECT_EQ(balance(), "39.50");

  EXPECT_EQ(charge("too-much", 39.51).result_int(), 402U);
  EXPECT_EQ(client.call("GET", "/orders/too-much").result_int(), 404U);
  EXPECT_EQ(charge("sum", 1, 2).result_int(), 400U);
  token = "unknown";
  EXPECT_EQ(charge("token", 1).result_int(), 404U);
}

TEST_F(Journey, AnUnlinkedAccountIsNoLongerOfUse) {
  linkAndActivate();
  const auto unbound = client.call("POST", std::string(AccountPath) + "/" + accountID + "/unbind");
  EXPECT_EQ(textAt(unbound, "/account_status"), "DISABLED");
  EXPECT_EQ(textAt(enquire(), "/account_status"), "DISABLED");
  EXPECT_EQ(charge("late", 1).result_int(), 403U);

  const auto anew = link("");
  EXPECT_EQ(anew.result_int(), 201U);
  EXPECT_NE(textAt(anew, "/account_id"), accountID);
  const auto closing = client.call("POST", page(anew), "decision=cancel");
  EXPECT_EQ(closing.result_int(), 200U);
  EXPECT_NE(closing.body().find("Cancelled"), std::string::npos);

  const auto overview = client.call("GET", "/").body();
  EXPECT_NE(overview.find("DISABLED"), std::string::npos);
  EXPECT_NE(overview.find("+1 55501&lt;2&gt;"), std::string::npos);
}

TEST_F(Journey, WrongRequestsAreToldWhatIsWrong) {
  struct Case {
    std::string method, target, body;
    ZLVSandboxHeaders headers;
    unsigned status;
    std::string told;
  };
  const std::string phone = R"("phone_number":"5550123","country_code":"1")";
  const auto linking = [](const std::string& partner) {
    return R"({"payment_type":"zolva","zolva_partner":{)" + partner + "}}";
  };
  const ZLVSandboxHeaders text = {
      {"X-Source", "web"}, {"X-Mobile-Platform", "ios"}, {"Content-Type", "text/plain"}};
  const std::vector<Case> cases = {
      {"POST", "/v2/pay/account", "{", MerchantHeaders, 400, "the body must be a JSON object"},
      {"POST", "/v2/pay/account", "[]", MerchantHeaders, 400, "the body must be a JSON object"},
      {"POST", "/v2/pay/account", linking(R"("country_code":"1")"), MerchantHeaders, 400,
       "zolva_partner.phone_number must be a text"},
      {"POST", "/v2/pay/account", linking(phone + R"(,"redirect_url":"a b")"), MerchantHeaders, 400,
       "zolva_partner.redirect_url must be a URL"},
      {"POST", "/v2/pay/account", linking(phone + R"(,"redirect_url":"s:\r\nX: 1")"),
       MerchantHeaders, 400, "zolva_partner.redirect_url must be a URL"},
      {"POST", "/v2/pay/account", linking(phone), text, 400, "header X-Source must be mobile-ios"},
      {"POST", "/v2/pay/account", linking(phone), text, 400,
       "header Content-Type must be application/json"},
      {"GET", "/v2/pay/account/a", "", {}, 400, "header X-Mobile-Platform must be ios"},
      {"POST", "/v2/charge", R"({"transaction_details":{"gross_amount":-1}})", MerchantHeaders, 400,
       "transaction_details.gross_amount must be positive"},
      {"POST", "/v2/charge", R"({"transaction_details":{"currency":"XXX"}})", MerchantHeaders, 400,
       "transaction_details.currency must be EUR"},
      {"GET", "/v2/pay/account/a", "", MerchantHeaders, 404, "Account doesn't exist."},
      {"POST", "/v2/pay/account/a/unbind", "", MerchantHeaders, 404, "Account doesn't exist."},
      {"GET", "/v2/pay/account/a/b", "", MerchantHeaders, 404, "nothing at this address"},
      {"DELETE", "/v2/charge", "", MerchantHeaders, 405, "other methods"},
  };
  for (const auto& [method, target, body, headers, status, told] : cases) {
    const auto response = client.call(method, target, body, headers);
    EXPECT_EQ(response.result_int(), status) << told;
    EXPECT_EQ(textAt(response, "/status_code"), std::to_string(status));
    EXPECT_NE(response.body().find(told), std::string::npos) << response.body();
  }
}

TEST_F(Journey, TheCollectorKeepsRecordsAndTheirHeaders) {
  const std::string body =
      R"({"d":[{"type":"event","identity":"M","evtName":"E","evtData":{}},)"
      R"({"type":"profile","identity":"M","profileData":{"name":"M"}},{"type":"other"}]})";
  ZLVSandboxHeaders headers = {{"X-CleverTap-Account-Id", "id"},
                               {"Content-Type", "application/json; charset=utf-8"}};
  EXPECT_EQ(client.call("POST", "/1/upload", body, headers).result_int(), 401U);
  headers.emplace_back("X-CleverTap-Passcode", "pass");
  EXPECT_EQ(client.call("POST", "/1/upload", "{}", headers).result_int(), 400U);
  EXPECT_FALSE(sandbox.waitForEvents(1, std::chrono::milliseconds(0)));

  const auto answer = json::parse(client.call("POST", "/1/upload", body, headers).body());
  EXPECT_EQ(answer.at("status"), "partial");
  EXPECT_EQ(answer.at("processed"), 2);
  EXPECT_EQ(answer.at("unprocessed").as_array().size(), 1U);
  ASSERT_TRUE(sandbox.waitForEvents(2, std::chrono::milliseconds(0)));
  const auto events = sandbox.events();
  EXPECT_EQ(events[0].name, "E");
  EXPECT_EQ(events[1].type, "profile");
  EXPECT_EQ(events[1].identity, "M");
  EXPECT_EQ(json::parse(events[1].record).at("profileData").at("name"), "M");
  EXPECT_EQ(std::ranges::count(events[0].headers,
                               std::pair<std::string, std::string>("X-CleverTap-Passcode", "pass")),
            1);
}

}  // namespace
