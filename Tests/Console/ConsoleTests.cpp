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

  static ChildProcess::Result run(const std::string& server, const Arguments& arguments) {
    return ChildProcess(Arguments{ZOLVA_PROGRAM, "--server", server} + arguments).finish();
  }
  ChildProcess::Result run(const Arguments& arguments) const {
    return run(sandbox.baseURL(), arguments);
  }
  [[nodiscard]] std::vector<std::string> leaving() const {
    std::vector<std::string> targets;
    for (const auto& request : sandbox.requests()) {
      if (request.method == "CONNECT") targets.push_back(request.target);
    }
    return targets;
  }

  ZLVSandbox sandbox;
};

}  // namespace

TEST(Arguments, WrongUsageIsToldApart) {
  const Arguments server{"--server", "http://h"};
  const auto charge = server + chargeCommand + Arguments{"--gross-amount"};
  const Arguments wrong[] = {{},
                             {"fly"},
                             {"enquire", "a"},
                             server + Arguments{"enquire"},
                             server + Arguments{"link", "--phone-number", "1"},
                             server + chargeCommand,
                             charge + Arguments{"1e999"},
                             charge + Arguments{"1", "--item", "price=x"},
                             charge + Arguments{"1", "--item", "cost=1"},
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

TEST_F(Console, SendsExactlyItsRequests) {
  const auto result = run({"enquire", "abc"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.error, "");
  EXPECT_TRUE(
      result.output.starts_with(R"({"error":{"code":404,"domain":"com.zolva.checkoutkit",)"))
      << result.output;
  const auto log = run({"--log", "unlink", "abc"}).error;
  EXPECT_TRUE(log.starts_with("A @POST request to : " + sandbox.baseURL())) << log;
  EXPECT_EQ(std::ranges::count(log, '\n'), 2);
  run(chargeCommand + Arguments{"--gross-amount", "12.50", "--item",
                                "id=1,name=Tea, black,price=2.5,quantity=3", "--item", "name=x"});

  Arguments requests;
  Arguments names;
  for (const auto& request : sandbox.requests()) {
    // The events come on connections of their own order.
    if (request.path() == "/1/upload") continue;
    requests.push_back(request.method + " " + request.target + " " + request.body);
    EXPECT_EQ(request.header("X-CleverTap-Passcode"), "");
  }
  for (const auto& event : sandbox.events()) {
    EXPECT_EQ(event.identity, "M-SANDBOX");
    if (event.type == "event") names.push_back(event.name);
  }
  EXPECT_EQ(
      requests,
      (Arguments{
          "GET /v2/pay/account/abc ", "POST /v2/pay/account/abc/unbind ",
          R"(POST /v2/charge {"customer_details":{"email":"a@b.example","first_name":"Ada",)"
          R"("last_name":"L","phone":"5550123"},"item_details":[{"id":"1","name":"Tea, black",)"
          R"("price":2.5,"quantity":3},{"name":"x"}],"payment_type":"zolva",)"
          R"("transaction_details":{"currency":"EUR","gross_amount":12.5,"order_id":"o-1"},)"
          R"("zolva":{"account_id":"acc","callback_url":"zolvademo://done",)"
          R"("enable_callback":true,"payment_option_token":"tok"}})"}));
  EXPECT_EQ(names, (Arguments{"Enquire Account Error", "Unlink Account Error",
                              "Create Transaction Error"}));
  EXPECT_EQ(sandbox.events().size(), 9U);  // for each the merchant's profile, and a short one
}

TEST_F(Console, APageEndsByCallbackByEmptyLineAndByEndOfInput) {
  const std::pair<const char*, bool> endings[] = {
      {"not a url\nother://x\nzolvademo://done?result=success\n", false},
      {"\n", false},
      {"", true}};
  for (const auto& [input, isOver] : endings) {
    ChildProcess child(Arguments{ZOLVA_PROGRAM, "--server", sandbox.baseURL()} + linkCommand);
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
    run(server, {"enquire", "x"});
  }
  EXPECT_EQ(sandbox.events().size(), 6U);
  EXPECT_EQ(leaving(), Arguments{});
  for (const auto* server : {"http://127.example", "http://localhost.example"}) {
    run(server, {"enquire", "x"});
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

TEST_F(Console, FailuresSayWhatToDo) {
  sandbox.misbehave({.pathPrefix = "/v2/"}, {.status = 502, .body = "<html>Bad</html>"});
  const auto expect = [](const ChildProcess::Result& result, const char* error) {
    EXPECT_EQ(result.exitCode, 1) << error;
    EXPECT_NE(result.output.find(error), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("NSLocalizedDescription"), std::string::npos) << result.output;
  };
  expect(run({"enquire", "a"}),
         R"("code":3840,"domain":"NSCocoaErrorDomain","mayHaveTakenEffect":true,)");
  expect(run("http://127.0.0.1:1", {"enquire", "a"}),
         R"("code":-1004,"domain":"NSURLErrorDomain","mayHaveTakenEffect":false,)");
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
  ChildProcess({ZOLVA_PROGRAM, "--server", url, "enquire", "x"}).finish();
  EXPECT_TRUE(served.waitForOutputLine("GET /v2/pay/account/x").ends_with("404"));
  served.signal(SIGTERM);
  EXPECT_EQ(served.finish().exitCode, 0);
}
