#include <tuple>

#include <gtest/gtest.h>

#include "SandboxClient.h"

namespace {

constexpr std::string_view AccountPath = "/v2/pay/account";

class Journey : public testing::Test {
 protected:
  SandboxClient::Response link(std::string_view callbackURL = "shop://done?a=1#end") {
    return client.call("POST", AccountPath, linking(callbackURL));
  }

  static std::string linking(std::string_view callbackURL,
                             const json::value& phoneNumber = "55501<2>") {
    return json::serialize(json::object{
        {"payment_type", "zolva"},
        {"zolva_partner",
         {{"phone_number", phoneNumber}, {"country_code", "1"}, {"redirect_url", callbackURL}}}});
  }

  SandboxClient::Response charge(std::string_view orderID, double amount, int quantity = 1,
                                 std::string_view currency = ZLVSandboxCurrency) {
    const json::object item{{"id", "i"}, {"name", "n"}, {"price", amount}, {"quantity", quantity}};
    const json::value body = {
        {"payment_type", "zolva"},
        {"zolva",
         {{"account_id", accountID},
          {"payment_option_token", token},
          {"callback_url", "shop://paid"},
          {"enable_callback", true}}},
        {"transaction_details",
         {{"gross_amount", amount}, {"order_id", orderID}, {"currency", currency}}},
        {"customer_details", {{"phone", "1"}, {"first_name", "Ada"}, {"email", "a@b.c"}}},
        {"item_details", json::array{item}}};
    return client.call("POST", "/v2/charge", json::serialize(body));
  }

  SandboxClient::Response enquire() {
    return client.call("GET", std::string(AccountPath) + "/" + accountID);
  }

  /// The page of an answer's action, below the sandbox's address.
  std::string page(const SandboxClient::Response& answer) {
    return textAt(answer, "/actions/0/url").substr(sandbox.baseURL().size());
  }

  /// Decides on the page; where that leads.
  std::string decide(const SandboxClient::Response& answer, const std::string& decision) {
    return client.call("POST", page(answer), "decision=" + decision)["Location"];
  }

  void linkAndActivate() {
    const auto linked = link();
    accountID = textAt(linked, "/account_id");
    decide(linked, "confirm");
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
  EXPECT_EQ(balance(), "");
  EXPECT_EQ(charge("early", 1).result_int(), 403U);

  const auto shown = client.call("GET", page(linked));
  EXPECT_NE(shown.body().find("Tom &amp; &quot;Tea&quot;"), std::string::npos);
  EXPECT_NE(shown.body().find("+1 55501&lt;2&gt;"), std::string::npos);
  EXPECT_NE(shown["Content-Security-Policy"].find("form-action 'self' shop:"), std::string::npos);
  EXPECT_EQ(client.call("POST", page(linked), "decision=perhaps").result_int(), 400U);
  EXPECT_EQ(decide(linked, "confirm"), "shop://done?a=1&result=success#end");
  for (const auto* method : {"GET", "POST"}) {
    const auto used = client.call(method, page(linked), "decision=confirm");
    EXPECT_EQ(used.result_int(), 410U);
    EXPECT_NE(used.body().find("used already"), std::string::npos);
  }

  const auto again = link();
  EXPECT_EQ(again.result_int(), 200U);
  EXPECT_EQ(textAt(again, "/account_id"), accountID);
  EXPECT_EQ(textAt(again, "/actions/0/url"), "");
  EXPECT_EQ(balance(), "500.00");
}

TEST_F(Journey, AChargeAboveTheLimitWaitsForTheUser) {
  linkAndActivate();
  const auto small = charge("small", ZLVSandboxVerificationLimit);
  EXPECT_EQ(small.result_int(), 200U);
  EXPECT_EQ(textAt(small, "/transaction_status"), "settlement");
  EXPECT_EQ(textAt(small, "/gross_amount"), "100.00");
  EXPECT_EQ(textAt(small, "/transaction_id").size(), 36U);

  const auto large = charge("large", 150.25);
  EXPECT_EQ(large.result_int(), 201U);
  EXPECT_EQ(textAt(large, "/transaction_status"), "pending");
  EXPECT_EQ(textAt(large, "/actions/0/name"), "user-verification");
  EXPECT_EQ(balance(), "400.00");
  EXPECT_NE(client.call("GET", page(large)).body().find("EUR 150.25"), std::string::npos);
  EXPECT_EQ(decide(large, "confirm"), "shop://paid?result=success");

  EXPECT_EQ(decide(charge("refused", 200), "cancel"), "shop://paid?result=cancelled");
  EXPECT_EQ(orderStatus("refused"), "cancel");
  EXPECT_EQ(balance(), "249.75");

  const auto abandoned = charge("refused", 190);
  EXPECT_EQ(orderStatus("refused"), "pending");
  EXPECT_EQ(textAt(charge("refused", 10.25), "/transaction_status"), "settlement");
  EXPECT_EQ(client.call("POST", page(abandoned), "decision=confirm").result_int(), 410U);
  EXPECT_EQ(charge("refused", 10.25).result_int(), 406U);
  EXPECT_EQ(orderStatus("refused"), "settlement");

  const auto first = charge("first", 200);
  const auto second = charge("second", 200);
  decide(first, "confirm");
  EXPECT_EQ(decide(second, "confirm"), "shop://paid?result=failed");
  EXPECT_EQ(orderStatus("second"), "deny");
  EXPECT_EQ(balance(), "39.50");

  EXPECT_EQ(charge("too-much", 39.51).result_int(), 402U);
  EXPECT_EQ(client.call("GET", "/orders/too-much").result_int(), 404U);
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
  const auto call = [this](std::string_view method, std::string_view target,
                           const ZLVSandboxHeaders& headers = MerchantHeaders) {
    return client.call(method, target, "{", headers);
  };
  const auto post = [this](const std::string& body) {
    return client.call("POST", AccountPath, body);
  };
  const ZLVSandboxHeaders text = {{"X-Source", "web"}, {"Content-Type", "text/plain"}};
  const std::tuple<SandboxClient::Response, unsigned, const char*> cases[] = {
      {post("{"), 400, "the body must be a JSON object"},
      {post("[]"), 400, "the body must be a JSON object"},
      {post(linking("", 5550123)), 400, "zolva_partner.phone_number must be a text"},
      {post(linking("a b")), 400, "zolva_partner.redirect_url must be a URL"},
      {post(linking("s:\r\nX: 1")), 400, "zolva_partner.redirect_url must be a URL"},
      {call("POST", AccountPath, text), 400, "header X-Source must be mobile-ios"},
      {call("POST", AccountPath, text), 400, "header Content-Type must be application/json"},
      {call("GET", "/v2/pay/account/a", text), 400, "header X-Mobile-Platform must be ios"},
      {charge("o", -1), 400, "transaction_details.gross_amount must be positive"},
      {charge("o", 1, 1, "XXX"), 400, "transaction_details.currency must be EUR"},
      {charge("o", 1, 2), 400, "item_details"},
      {call("GET", "/v2/pay/account/a"), 404, "Account doesn't exist."},
      {call("POST", "/v2/pay/account/a/unbind"), 404, "Account doesn't exist."},
      {call("GET", "/v2/pay/account/a/b"), 404, "nothing at this address"},
      {call("GET", "/wallet/activate/none"), 404, ""},
      {call("DELETE", "/v2/charge"), 405, "other methods"}};
  for (const auto& [response, status, told] : cases) {
    EXPECT_EQ(response.result_int(), status) << told;
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
  const auto answer = json::parse(client.call("POST", "/1/upload", body, headers).body());
  EXPECT_EQ(answer.at("status"), "partial");
  EXPECT_EQ(answer.at("unprocessed").as_array().size(), 1U);
  ASSERT_TRUE(sandbox.waitForEvents(2, std::chrono::milliseconds(0)));
  const auto events = sandbox.events();
  EXPECT_EQ(events.size(), 2U);
  EXPECT_EQ(events[0].name, "E");
  EXPECT_EQ(events[0].headers[2], headers[2]);
  EXPECT_EQ(events[1].type, "profile");
  EXPECT_EQ(events[1].identity, "M");
  EXPECT_EQ(json::parse(events[1].record).at("profileData").at("name"), "M");
}

}  // namespace
