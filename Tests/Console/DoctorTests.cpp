#include <algorithm>
#include <atomic>
#include <future>
#include <set>

#include <Sandbox/Sandbox.h>
#include <boost/json.hpp>
#include <gtest/gtest.h>

#include "Tests/Support/ChildProcess.h"

namespace {

namespace json = boost::json;
using Break = ZLVMisbehaviour::Break;
using Point = ZLVMisbehaviour::Point;
using Words = std::vector<std::string>;

/// The checks in the order of their calls.
const Words names{"unknown-account", "connection", "library", "unlink-unknown",
                  "link-incomplete", "link",       "enquire", "charge-incomplete",
                  "charge",          "unlink"};

struct Case {
  std::size_t call;
  std::string aspect;
  ZLVMisbehaviour misbehaviour;
  /// What else may fail of it: what comes after a whole answer meets the call behind it.
  std::string otherwise{};
};

ZLVMisbehaviour answering(unsigned status, const char* body) {
  return {.status = status, .body = body};
}

ChildProcess::Result run(const ZLVSandbox& sandbox, const Words& arguments) {
  Words words{ZOLVA_PROGRAM, "doctor", "--server", sandbox.baseURL()};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return ChildProcess(words).finish();
}

/// Has the call go wrong; the doctor names its check.
void expectFailure(const Case& wrong, const char* timeLimit = "60") {
  std::atomic<std::size_t> calls = 0;
  ZLVSandbox sandbox;
  sandbox.misbehave([&](const ZLVSandboxRequest& request) {
    const bool isChosen = request.path().starts_with("/v2/") && ++calls == wrong.call;
    return isChosen ? wrong.misbehaviour : ZLVMisbehaviour();
  });
  const auto [code, output, error] =
      run(sandbox, {"--yes", "--confirm-pages", "--json", "--time-limit", timeLimit});
  EXPECT_EQ(code, 1);
  std::set<std::string> failures;
  const auto document = json::parse(output);
  for (const auto& check : document.at("checks").as_array()) {
    if (check.at("result") != "failed") continue;
    EXPECT_FALSE(check.at("expected").as_string().empty() || check.at("came").as_string().empty());
    failures.insert(json::value_to<std::string>(check.at("check")) + " " +
                    json::value_to<std::string>(check.at("aspect")));
  }
  EXPECT_TRUE(failures.contains(names[wrong.call - 1] + " " + wrong.aspect) ||
              failures.contains(wrong.otherwise))
      << wrong.call << " " << wrong.aspect << "\n"
      << output;
}

}  // namespace

TEST(Doctor, PassesTheSandboxAndLeavesNothingBehind) {
  const ZLVSandbox sandbox;
  const auto result = run(sandbox, {"--yes", "--confirm-pages", "--gross-amount", "150"});
  EXPECT_EQ(result.exitCode, 0) << result.output;
  EXPECT_TRUE(result.output.ends_with("10 passed, 0 failed, 0 skipped\n")) << result.output;
  EXPECT_EQ(sandbox.requests().back().path().substr(52), "/unbind");
  EXPECT_TRUE(sandbox.events().empty());  // a check is no use of the library
}

TEST(Doctor, NamesTheCheckThatFails) {
  for (std::size_t call = 1; call <= names.size(); ++call) {
    expectFailure({call, "status", {.status = 500}});
  }
  const Case cases[] = {
      {1, "/status_code", answering(404, R"({"status_code":"200","status_message":"no"})")},
      {5, "/status_message", answering(400, R"({"status_code":400})")},
      {6, "body", answering(201, "[]")},
      {6, "library", answering(200, R"({"status_code":200,"actions":5})")},
      {6, "/account_id", answering(200, R"({"status_code":200,"account_id":"a b"})")},
      {7, "status", {.status = 302, .headers = {{"Location", "/v2/charge"}}}},
      {7, "/account_id",
       answering(200, R"({"status_code":"200","account_id":"other","account_status":"E"})")},
      {8, "Content-Type", {.headers = {{"Content-Type", "text/html"}}}},
      {9, "Content-Type", {.headers = {{"Content-Type", "application/jsonp"}}}},
      {9, "/actions",
       answering(201, R"({"status_code":201,"actions":[{"name":"user-verification",)"
                      R"("url":"https://a.example"},{"name":"user-verification",)"
                      R"("url":"http://a.example"}]})")},
      {10, "status", {.status = 204}},
      {7, "body", {.bodySize = 20}},
      {9, "answer", {.bodySize = std::uint64_t{9} << 20U}},
      {6,
       "answer",
       {.headers = {{"Content-Length", "9999"}},
        .interruption = {{Break::Close, Point::AfterBody}}}},
      {1, "", {.interruption = {{Break::Close, Point::AfterBody}}}, "connection connection"},
      {1, "answer", {.interruption = {{Break::Reset, Point::AfterBody}}}, "connection connection"}};
  for (const auto& wrong : cases) expectFailure(wrong);
  std::size_t call = 3;
  for (const auto kind : {Break::Close, Break::Reset}) {
    for (const auto point :
         {Point::BeforeHeader, Point::InHeader, Point::AfterHeader, Point::InBody}) {
      if (++call == 7) ++call;  // a GET that found no connection goes out again
      if (call == 11) call = 4;
      expectFailure({call, "answer", {.interruption = {{kind, point}}}});
    }
  }
}

TEST(Doctor, FindsEachOptionThatTheLibraryWouldMisread) {
  ZLVSandbox sandbox;
  const std::string start =
      R"({"status_code":200,"account_id":"a","account_status":"E","metadata":{"payment_options":)"
      R"([{"name":"n","token":"t","balance":{"value":1,"currency":"EUR"}},)";
  for (const auto& [option, aspect] :
       {std::pair{
            R"({"name":"n","token":"t","active":false,"balance":{"value":"1","currency":"E"}})",
            "/active"},
        {R"({"name":"n","token":5,"balance":{"value":1,"currency":"EUR"}})", "/token"},
        {R"({"name":"n","token":"t","balance":{"value":true,"currency":"EUR"}})",
         "/balance/value"}}) {
    sandbox.misbehave({.pathPrefix = "/v2/pay/account/a"}, {.body = start + option + "]}}"});
    const auto result = run(sandbox, {"--account-id", "a"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(
        result.output.find("/metadata/payment_options/1" + std::string(aspect) + ": expected "),
        std::string::npos)
        << result.output;
  }
}

TEST(Doctor, WaitsForNoAnswerLongerThanItIsTold) {
  const Case cases[] = {
      {8, "answer", {.delay = std::chrono::hours(1)}},
      {10, "answer", {.trickle = ZLVSandboxTrickle{1, std::chrono::hours(1)}}},
      {1, "answer", {.interruption = {{Break::Stall, Point::BeforeHeader}}}},
      {3, "answer", {.interruption = {{Break::Stall, Point::InHeader}}}},
      {5, "answer", {.interruption = {{Break::Stall, Point::AfterHeader}}}},
      {6, "answer", {.interruption = {{Break::Stall, Point::InBody}}}},
      {1, "", {.interruption = {{Break::Stall, Point::AfterBody}}}, "connection answer"}};
  std::vector<std::future<void>> waits;
  for (const auto& wrong : cases) {
    waits.push_back(std::async(std::launch::async, [&wrong] { expectFailure(wrong, "2"); }));
  }
}

TEST(Doctor, ChangesNothingWithoutThePersonsWord) {
  const ZLVSandbox sandbox;
  const auto isPost = [](const ZLVSandboxRequest& request) { return request.method == "POST"; };
  const auto skipped = run(sandbox, {});
  EXPECT_EQ(skipped.exitCode, 0);
  EXPECT_TRUE(skipped.output.ends_with("3 passed, 0 failed, 7 skipped\n")) << skipped.output;
  EXPECT_NE(skipped.output.find("agree with --yes"), std::string::npos);

  const auto command = std::string(ZOLVA_PROGRAM) + " doctor --server " + sandbox.baseURL();
  ChildProcess refused({"/usr/bin/script", "-qefc", command, "/dev/null"});
  refused.write("n\n");
  EXPECT_NE(refused.waitForOutputLine("3 passed, 0 failed, 7 skipped"), "");
  EXPECT_TRUE(std::ranges::none_of(sandbox.requests(), isPost));

  ChildProcess agreed({"/usr/bin/script", "-qefc", command, "/dev/null"});
  agreed.write("y\n");
  ASSERT_TRUE(sandbox.waitForRequests(12, std::chrono::minutes(1)));  // the link is the twelfth
  agreed.write("\n");  // the page is closed, not confirmed
  EXPECT_NE(agreed.waitForOutputLine("9 passed, 0 failed, 1 skipped"), "");
}
