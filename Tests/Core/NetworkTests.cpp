#include <gtest/gtest.h>

#include "Tests/Support/FakePlatform.h"
#include "ZolvaCheckoutKit/Core/Helpers/builder.h"
#include "ZolvaCheckoutKit/Core/Network/ZLVNetwork.h"
#include "ZolvaCheckoutKit/Core/Network/ZLVRequestBuilder.h"

namespace {

using Headers = std::vector<std::pair<std::string, std::string>>;

std::shared_ptr<ZLVNetworkService> service(ZLVHTTPMethod method, ZLVValue parameters = {},
                                           int type = ZLVServiceTypeMerchant,
                                           std::string path = "/v2/x") {
  return ZLVNetworkService::initWithBaseURL("https://shop.test/", std::move(path), method,
                                            std::move(parameters),
                                            static_cast<ZLVServiceType>(type));
}

class Network : public testing::Test {
 protected:
  /// Sends a call, answers it with `respond` and returns what the completion got, as text.
  template <class Respond>
  std::string outcome(const std::shared_ptr<ZLVNetworkService>& call, Respond respond) {
    std::vector<std::string> outcomes;
    network.request(call, [&](const ZLVValue& answer, const std::optional<ZLVError>& error) {
      EXPECT_NE(answer.isAbsent(), !error);
      outcomes.push_back(error ? error->debugDescription() : answer.description());
    });
    auto& [merchant, analytics] = platform.session;
    respond(merchant.empty() ? analytics.back() : merchant.back());
    EXPECT_TRUE(outcomes.empty()) << "answered outside the main queue";
    platform.queue->drain();
    return outcomes.size() == 1 ? outcomes[0] : std::to_string(outcomes.size()) + " answers";
  }
  std::string outcome(int status, const std::string& body) {
    return outcome(service(ZLVHTTPMethodGet), [&](FakeTask& task) { task.answer(status, body); });
  }

  FakePlatform platform;
  ZLVNetwork network;
};

std::string failure(std::int64_t code, ZLVValue message, ZLVValue reasons = {}) {
  return builder::errorWithCode(code, std::move(message), std::move(reasons)).debugDescription();
}

}  // namespace

TEST(RequestBuilder, JoinsWithOneSlash) {
  const char* cases[][3] = {{"B/", "/v2/pay/account/", "B/v2/pay/account"},
                            {"B/", "1/upload", "B/1/upload"},
                            {"B//", "/v2/charge", "B//v2/charge"},
                            {"B", "/x//", "B/x/"},
                            {"B", "//x", "B//x"},
                            {"B", "//", "B/"},
                            {"", "", "/"}};
  for (const auto& [base, path, joined] : cases) {
    EXPECT_EQ(ZLVRequestBuilder::combineBaseURL(base, path), joined);
  }
}

TEST(RequestBuilder, MethodsBodiesAndHeaders) {
  constexpr auto seven = static_cast<ZLVHTTPMethod>(7);
  const ZLVDictionary parameters{{"a", ZLVArray{1}}};
  const ZLVDictionary unwritable{{"r", std::make_shared<ZLVAccountMetadata>()}};
  const Headers plain{{"X-Mobile-Platform", "ios"}, {"X-Source", "mobile-ios"}};
  Headers json = plain;
  json.insert(json.begin(), {"Content-Type", "application/json"});
  const Headers analytics{{"Content-Type", "application/json; charset=utf-8"},
                          {"X-CleverTap-Account-Id", "T48-213-K06W"},
                          {"X-CleverTap-Passcode", "QWB-LNA-RJTH"}};
  using Body = std::optional<std::string>;
  const std::tuple<ZLVHTTPMethod, ZLVValue, int, const char*, std::string, Body, const Headers&>
      cases[] = {{ZLVHTTPMethodGet, {}, 0, "GET", "", {}, plain},
                 {ZLVHTTPMethodGet, parameters, 0, "GET", "?a[]=1", {}, plain},
                 {ZLVHTTPMethodGet, ZLVDictionary{}, 0, "GET", "?", {}, plain},
                 {ZLVHTTPMethodPost, parameters, 0, "POST", "", R"({"a":[1]})", json},
                 {ZLVHTTPMethodPost, {}, 0, "POST", "", {}, json},
                 {ZLVHTTPMethodPost, unwritable, 0, "POST", "", {}, json},
                 {ZLVHTTPMethodDelete, parameters, 2, "DELETE", "", R"({"a":[1]})", json},
                 {seven, {}, 0, "DELETE", "", {}, json},
                 {ZLVHTTPMethodGet, {}, 1, "GET", "", {}, analytics},
                 {ZLVHTTPMethodPost, parameters, 1, "POST", "", R"({"a":[1]})", analytics}};
  for (const auto& [method, sent, type, name, query, body, headers] : cases) {
    const auto request = ZLVRequestBuilder::buildRequestFrom(*service(method, sent, type));
    EXPECT_EQ(request.HTTPMethod, name);
    EXPECT_EQ(request.URL->absoluteString(), "https://shop.test/v2/x" + query);
    EXPECT_EQ(request.HTTPBody, body);
    EXPECT_EQ(request.allHTTPHeaderFields, headers);
    EXPECT_EQ(request.timeoutInterval, 10000.0);
    EXPECT_EQ(request.cachePolicy, ZLVURLRequestCachePolicy::UseProtocolCachePolicy);
  }
}

TEST_F(Network, JudgesAnswers) {
  const auto notAnObject = ZLVJSONSerialization::notAnObjectError().debugDescription();
  const std::tuple<int, const char*, std::string> cases[] = {
      {200, R"({"a":1})", R"({"a":1})"},
      {299, "{}", "{}"},
      {199, "{}", failure(199, "Request failed.")},
      {300, "{}", failure(300, "Request failed.")},
      {500, R"({"status_code":"201"})", R"({"status_code":"201"})"},
      {200, R"({"status_code":"406","status_message":"No"})", failure(406, "No")},
      {200, R"({"status_code":null})", failure(0, "Request failed.")},
      {200, R"({"status_code":"x"})", failure(0, "Request failed.")},
      {200, R"({"status_code":true})", failure(1, "Request failed.")},
      {400, R"({"status_message":"b","error_message":"a"})", failure(400, "a")},
      {400, R"({"error_message":null,"status_message":"b"})", failure(400, ZLVNull)},
      {400, R"({"error_messages":["c"],"status_message":"b"})", failure(400, "b")},
      {400, R"({"error_messages":["c"]})", failure(400, ZLVArray{"c"})},
      {400, R"({"validation_messages":{"p":1}})",
       failure(400, "Request failed.", ZLVDictionary{{"p", 1}})},
      {400, R"({"validation_messages":null})", failure(400, "Request failed.", ZLVNull)},
      {404, "[1]", "[1]"},
      {200, "\"text\"", notAnObject},
      {500, "null", notAnObject}};
  for (const auto& [status, body, expected] : cases) {
    EXPECT_EQ(outcome(status, body), expected) << status << " " << body;
  }
  EXPECT_NE(outcome(502, "<html>").find("NSCocoaErrorDomain Code=3840"), std::string::npos);
  std::string tooMuch = "[[]";
  while (tooMuch.size() < 2'000'000) tooMuch += ",[]";
  EXPECT_NE(outcome(200, tooMuch).find("NSURLErrorDomain Code=-1103"), std::string::npos);
}

TEST_F(Network, AnswersOnceWhateverTheSessionDoes) {
  const auto lost =
      ZLVError::errorWithDomain(NSURLErrorDomain, NSURLErrorNetworkConnectionLost, {});
  const auto lose = [&](FakeTask& task) {
    std::move(task.handler)({.data = {}, .statusCode = 0, .error = lost});
  };
  EXPECT_EQ(outcome(service(ZLVHTTPMethodGet), lose), lost.debugDescription());

  // The request cannot be built: the fault is all there is.
  bool called = false;
  EXPECT_THROW(
      network.request(service(ZLVHTTPMethodGet, ZLVDictionary{{"d", ZLVDictionary{}}}),
                      [&](const ZLVValue&, const std::optional<ZLVError>&) { called = true; }),
      ZLVProgrammingFault);
  platform.queue->drain();
  EXPECT_FALSE(called);
}

TEST_F(Network, LogsMerchantCallsOnly) {
  const auto takeLines = [&] { return std::exchange(platform.log->lines, {}); };
  const auto answer = [](FakeTask& task) { task.answer(200, "{\"a\":\n1}"); };
  for (const auto unlogged : {1, 2}) {
    ZLVVendor::shared().setIsLoggingEnabled(true);
    outcome(service(ZLVHTTPMethodPost, ZLVDictionary{}, unlogged), answer);
    EXPECT_TRUE(takeLines().empty());
  }

  // What counts is the flag when the answer comes, and what is logged is what was sent.
  const auto changing = service(ZLVHTTPMethodPost, ZLVDictionary{{"k", "v\xE9"}});
  outcome(changing, [&](FakeTask& task) {
    ZLVVendor::shared().setIsLoggingEnabled(false);
    answer(task);
  });
  EXPECT_TRUE(takeLines().empty());
  outcome(changing, [&](FakeTask& task) {
    ZLVVendor::shared().setIsLoggingEnabled(true);
    changing->setServiceType(ZLVServiceTypeAnalytics);
    changing->setParameters(ZLVDictionary{{"d", ZLVDictionary{}}});
    changing->setMethod(ZLVHTTPMethodGet);
    answer(task);
  });
  EXPECT_EQ(
      takeLines(),
      (std::vector<std::string>{
          "A @POST request to : https://shop.test/v2/x request header: "
          R"({"Content-Type":"application/json","X-Mobile-Platform":"ios","X-Source":"mobile-ios"})",
          "request body : {\"k\":\"v\uFFFD\"}", R"(response : {"a":\n1})"}));

  outcome(200, "\xff");
  EXPECT_EQ(takeLines().at(1), "response : (null)");

  // A URL that does not parse is answered later as well.
  platform.session.merchant.clear();
  ZLVVendor::shared().setIsLoggingEnabled(false);
  std::string told;
  network.request(service(ZLVHTTPMethodPost, ZLVDictionary{}, 0, "/a b"),
                  [&](const auto&, const auto& error) { told = error->debugDescription(); });
  ZLVVendor::shared().setIsLoggingEnabled(true);
  EXPECT_TRUE(takeLines().empty() && told.empty() && platform.session.merchant.empty());
  platform.queue->drain();
  EXPECT_TRUE(told.starts_with("Error Domain=NSURLErrorDomain Code=-1000")) << told;
  const auto lines = takeLines();
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_TRUE(lines[0].starts_with("A @POST request to : (null) request header: "));
  EXPECT_EQ(lines[2], "error : " + told);
}
