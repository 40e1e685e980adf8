#include <algorithm>

#include <Sandbox/Sandbox.h>
#include <gtest/gtest.h>
#include <signal.h>

#include "Apps/Console/Arguments.h"
#include "Tests/Support/ChildProcess.h"

namespace {

using namespace std::chrono_literals;
using Arguments = std::vector<std::string>;

Arguments operator+(Arguments left, const Arguments& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

const Arguments linkCommand{"link", "--phone-number", "5550123", "--country-code", "1"};
const Arguments chargeCommand{"charge",     "--account-id",   "acc",     "--payment-option-token",
                              "tok",        "--order-id",     "o-1",     "--currency",
                              "EUR",        "--phone-number", "5550123", "--first-name",
                              "Ada",        "--last-name",    "L",       "--email",
                              "a@b.example"};

class Console : public testing::Test {
 protected:
  /// What would leave this machine comes to the sandbox instead.
  void SetUp() override { setenv("https_proxy", sandbox.baseURL().c_str(), 1); }

  [[nodiscard]] Arguments command(const Arguments& arguments) const {
    return Arguments{ZOLVA_PROGRAM, "--server", sandbox.baseURL()} + arguments;
  }
  [[nodiscard]] std::vector<std::string> leaving() const {
    std::vector<std::string> targets;
    for (const auto& request : sandbox.requests()) {
      if (request.method == "CONNECT") targets.push_back(request.target);
    }
    return targets;
  }
  ChildProcess::Result run(const Arguments& arguments) const {
    return ChildProcess(command(arguments)).finish();
  }
  /// The requests to the merchant server; the events come on connections of their own order.
  [[nodiscard]] std::vector<ZLVSandboxRequest> merchantRequests() const {
    auto requests = sandbox.requests();
    std::erase_if(requests, [](const auto& request) { return request.path() == "/1/upload"; });
    return requests;
  }

  ZLVSandbox sandbox;
};

}  // namespace

TEST(Arguments, WrongUsageIsToldApart) {
  const Arguments server{"--server", "http://h"};
  const Arguments wrong[] = {
      {},
      {"fly"},
      {"enquire", "a"},
      server + Arguments{"enquire"},
      server + Arguments{"link", "--phone-number", "1"},
      server + chargeCommand,
      server + chargeCommand + Arguments{"--gross-amount", "ten"},
      server + chargeCommand + Arguments{"--gross-amount", "1e999"},
      server + chargeCommand + Arguments{"--gross-amount", "1", "--item", "price=x"},
      server + chargeCommand + Arguments{"--gross-amount", "1", "--item", "cost=1"},
      {"sandbox", "--port", "70000"},
      {"--ca-file", "/no/such/file", "demo"}};
  for (const auto& arguments : wrong) {
    const auto parsed = parseArguments(arguments);
    const auto* usage = std::get_if<Usage>(&parsed);
    ASSERT_NE(usage, nullptr) << testing::PrintToString(arguments);
    EXPECT_TRUE(usage->isError && !usage->message.empty());
  }
  EXPECT_FALSE(std::get<Usage>(parseArguments({"charge", "--help"})).isError);
}

TEST(Arguments, ItemsKeepCommasAndNumbers) {
  const auto parsed =
      parseArguments(Arguments{"--server", "http://h"} + chargeCommand +
                     Arguments{"--gross-amount", "12.50", "--item",
                               "id=1,name=Tea, black,price=2.5,quantity=3", "--item", "name=x"});
  const auto& command = std::get<ChargeCommand>(std::get<Invocation>(parsed).command);
  EXPECT_EQ(command.grossAmount, ZLVValue(12.5));
  ASSERT_EQ(command.items->size(), 2U);
  EXPECT_EQ(command.items->front()->dictionaryValue(),
            (ZLVDictionary{{"id", "1"}, {"name", "Tea, black"}, {"price", 2.5}, {"quantity", 3}}));
  EXPECT_EQ(command.paymentType, "zolva");
}

TEST_F(Console, SendsExactlyItsRequests) {
  const auto result = run({"enquire", "abc"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_TRUE(
      result.output.starts_with(R"({"error":{"code":404,"domain":"com.zolva.checkoutkit",)"))
      << result.output;
  run(Arguments{"unlink", "abc"});
  run(chargeCommand + Arguments{"--gross-amount", "10", "--item", "id=1,price=2.5,quantity=4"});

  const auto requests = merchantRequests();
  ASSERT_EQ(requests.size(), 3U);
  EXPECT_EQ(requests[0].method + " " + requests[0].target, "GET /v2/pay/account/abc");
  EXPECT_EQ(requests[0].body, "");
  EXPECT_EQ(requests[1].method + " " + requests[1].target, "POST /v2/pay/account/abc/unbind");
  EXPECT_EQ(requests[1].header("Content-Length"), "0");
  EXPECT_EQ(requests[1].header("Content-Type"), "application/json");
  EXPECT_EQ(requests[2].target, "/v2/charge");
  EXPECT_EQ(requests[2].body,
            R"({"customer_details":{"email":"a@b.example","first_name":"Ada","last_name":"L",)"
            R"("phone":"5550123"},"item_details":[{"id":"1","price":2.5,"quantity":4}],)"
            R"("payment_type":"zolva","transaction_details":{"currency":"EUR","gross_amount":10,)"
            R"("order_id":"o-1"},"zolva":{"account_id":"acc","callback_url":"zolvademo://done",)"
            R"("enable_callback":true,"payment_option_token":"tok"}})");
  for (const auto& request : requests) {
    EXPECT_EQ(request.header("X-Source"), "mobile-ios");
    EXPECT_EQ(request.header("X-CleverTap-Passcode"), "");
  }

  // For each run, in any order: the merchant's profile, and the event with its short profile.
  constexpr std::size_t ofEachRun = 3;
  Arguments names;
  for (const auto& event : sandbox.events()) {
    EXPECT_EQ(event.identity, "M-SANDBOX");
    names.push_back(event.type == "event" ? event.name : event.type);
    if (names.size() % ofEachRun == 0) std::ranges::sort(names.end() - ofEachRun, names.end());
  }
  EXPECT_EQ(names,
            (Arguments{"Enquire Account Error", "profile", "profile", "Unlink Account Error",
                       "profile", "profile", "Create Transaction Error", "profile", "profile"}));
}

TEST_F(Console, APageEndsByCallbackByEmptyLineAndByEndOfInput) {
  const std::pair<const char*, bool> endings[] = {
      {"not a url\nother://x\nzolvademo://done?result=success\n", false},
      {"\n", false},
      {"", true}};
  for (const auto& [input, isOver] : endings) {
    ChildProcess child(command(linkCommand));
    EXPECT_TRUE(child.waitForErrorLine("open http://127.0.0.1:").find("/wallet/") !=
                std::string::npos);
    child.write(input);
    if (isOver) child.closeInput();
    const auto line = child.waitForOutputLine("{\"result\":");
    EXPECT_NE(line.find(R"("name":"activation-deeplink")"), std::string::npos) << line;
    EXPECT_EQ(child.finish().exitCode, 0);
  }
  EXPECT_EQ(std::ranges::count(sandbox.events(), "Link Account Success", &ZLVSandboxEvent::name),
            3);
}

TEST_F(Console, ReportsStayOnThisMachineWithItsServer) {
  const auto port = std::to_string(sandbox.port());
  for (const auto& server : {"http://LOCALHOST:" + port, "http://127.1:" + port + "/pay?x"}) {
    ChildProcess({ZOLVA_PROGRAM, "--server", server, "enquire", "x"}).finish();
  }
  EXPECT_EQ(sandbox.events().size(), 6U);
  EXPECT_EQ(leaving(), Arguments{});
  for (const auto* server : {"http://127.example", "http://localhost.example"}) {
    ChildProcess({ZOLVA_PROGRAM, "--server", server, "enquire", "x"}).finish();
  }
  EXPECT_EQ(leaving(), Arguments(4, "api.clevertap.com:443"));
}

TEST_F(Console, TheDocumentedExampleSaysWhatTheServerSays) {
  const std::string account = R"({"status_code":"200","account_id":"acc","account_status":)";
  sandbox.misbehave({.pathPrefix = "/v2/"}, {.status = 200, .body = account + R"("ENABLED"})"});
  sandbox.misbehave({.pathPrefix = "/v2/"}, {.status = 200, .body = account + R"("PENDING"})"});
  EXPECT_EQ(ChildProcess({EXAMPLE_PROGRAM, sandbox.baseURL()}).finish().output,
            "Account acc: PENDING\n");
  // The merchant's profile and the events of both calls, the last one included.
  EXPECT_EQ(leaving(), Arguments(3, "api.clevertap.com:443"));
}

TEST_F(Console, LogsToStandardErrorWhenAsked) {
  EXPECT_EQ(run({"enquire", "abc"}).error, "");
  const auto error = run({"--log", "enquire", "abc"}).error;
  EXPECT_TRUE(error.starts_with("A @GET request to : " + sandbox.baseURL())) << error;
  EXPECT_EQ(std::ranges::count(error, '\n'), 2);
}

TEST_F(Console, FailuresSayWhatToDo) {
  unsetenv("https_proxy");
  sandbox.misbehave({.pathPrefix = "/v2/", .times = 1},
                    {.status = 502, .body = "<html>Bad</html>"});
  const std::string noHost(64, 'x');  // no name is that long, so nobody is asked for it
  struct Case {
    std::string server;
    const char *account, *expected;
  };
  const Case cases[] = {
      {sandbox.baseURL(), "a",
       "\"code\":3840,\"domain\":\"NSCocoaErrorDomain\",\"mayHaveTakenEffect\":true,"},
      {sandbox.baseURL(), "a b", "\"code\":-1000,"},
      {"http://127.0.0.1:1", "a",
       "\"code\":-1004,\"domain\":\"NSURLErrorDomain\",\"mayHaveTakenEffect\":false,"},
      {"https://" + noHost, "a", "\"code\":-1003,"},
      {"http://" + noHost, "a", "\"code\":-1022,"},
      {"ftp://127.0.0.1", "a", "\"code\":-1002,"}};
  for (const auto& [server, account, expected] : cases) {
    const auto result = ChildProcess({ZOLVA_PROGRAM, "--server", server, "--analytics-root",
                                      sandbox.baseURL() + "/", "enquire", account})
                            .finish();
    EXPECT_EQ(result.exitCode, 1) << expected;
    EXPECT_NE(result.output.find(expected), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("NSLocalizedDescription"), std::string::npos) << result.output;
  }
  EXPECT_EQ(ChildProcess({ZOLVA_PROGRAM, "enquire", "a"}).finish().exitCode, 2);
}

TEST_F(Console, DemoTellsTheWholeJourney) {
  const auto result = ChildProcess({ZOLVA_PROGRAM, "demo"}).finish();
  EXPECT_EQ(result.exitCode, 0) << result.output;
  for (const auto* piece :
       {"code 404", "presses Confirm", "zolvademo://done?result=success", "It is ENABLED",
        "settlement", "pending", "It is DISABLED", "Unlink Account Success",
        "Create Transaction Success", "Summary: 8 of 8 steps"}) {
    EXPECT_NE(result.output.find(piece), std::string::npos) << piece << "\n" << result.output;
  }
}

TEST(SandboxCommand, ServesUntilInterrupted) {
  ChildProcess served({ZOLVA_PROGRAM, "sandbox"});
  const auto line = served.waitForOutputLine("Sandbox at ");
  const auto url = line.substr(11, line.find(' ', 11) - 11);
  EXPECT_EQ(
      ChildProcess({ZOLVA_PROGRAM, "--server", url, "--analytics-root", url + "/", "enquire", "x"})
          .finish()
          .exitCode,
      1);
  EXPECT_TRUE(served.waitForOutputLine("GET /v2/pay/account/x").ends_with("404"));
  served.signal(SIGTERM);
  EXPECT_EQ(served.finish().exitCode, 0);
}
