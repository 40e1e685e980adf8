#include <tuple>

#include <gtest/gtest.h>

#include "SandboxClient.h"

namespace {

using Break = ZLVMisbehaviour::Break;
using Point = ZLVMisbehaviour::Point;

constexpr std::chrono::hours Forever{1};
constexpr std::chrono::milliseconds Patience{60'000};

/// Asks for the end of the connection, so that the end of the answer shows.
constexpr std::string_view Request = "GET /x HTTP/1.1\r\nHost: h\r\nConnection: close\r\n\r\n";

auto ask(const ZLVSandbox& sandbox) {
  SandboxClient client(sandbox);
  client.send(Request);
  return client.receive();
}

TEST(Misbehaviour, AnswersAreReplacedCutAndFilledUp) {
  const std::tuple<ZLVMisbehaviour, const char*, const char*> cases[] = {
      {{.status = 503, .body = "<html>"}, "HTTP/1.1 503 Service Unavailable\r\n", "\r\n\r\n<html>"},
      {{.body = "12345678", .bodySize = 3}, "Content-Length: 3\r\n", "\r\n\r\n123"},
      {{.body = "{}", .bodySize = 6}, "Content-Length: 6\r\n", "\r\n\r\n{}    "},
      {{.body = "{}", .headers = {{"content-length", "9"}}}, "content-length: 9\r\n", "\r\n\r\n{}"},
      {{.status = 204}, "HTTP/1.1 204", "\r\n\r\n"},
      {{.body = "slowly", .trickle = ZLVSandboxTrickle{2, std::chrono::milliseconds(1)}},
       "Content-Length: 6\r\n",
       "\r\n\r\nslowly"}};
  ZLVSandbox sandbox;
  for (const auto& [misbehaviour, header, end] : cases) {
    sandbox.misbehave({}, misbehaviour);
    const auto [answer, error] = ask(sandbox);
    EXPECT_EQ(error, boost::asio::error::eof);
    EXPECT_NE(answer.find(header), std::string::npos) << answer;
    EXPECT_TRUE(answer.ends_with(end)) << answer;
  }
}

TEST(Misbehaviour, AnswersBreakOffWhereTheyAreToldTo) {
  ZLVSandbox sandbox;
  const ZLVMisbehaviour whole{.body = "0123456789"};
  sandbox.misbehave({}, whole);
  const auto complete = ask(sandbox).first;
  const auto header = complete.size() - whole.body->size();
  const std::pair<Point, std::size_t> points[] = {{Point::BeforeHeader, 0},
                                                  {Point::InHeader, header / 2},
                                                  {Point::AfterHeader, header},
                                                  {Point::InBody, header + 5},
                                                  {Point::AfterBody, header + 10}};
  for (const auto& [point, length] : points) {
    auto broken = whole;
    broken.interruption = {Break::Close, point};
    sandbox.misbehave({}, broken);
    EXPECT_EQ(ask(sandbox),
              std::pair(complete.substr(0, length), make_error_code(boost::asio::error::eof)));
    broken.interruption = {Break::Reset, point};
    sandbox.misbehave({}, broken);
    EXPECT_EQ(ask(sandbox).second, boost::asio::error::connection_reset);
  }
}

TEST(Misbehaviour, ARequestTakesEffectThoughItsAnswerIsLost) {
  ZLVSandbox sandbox;
  SandboxClient client(sandbox);
  const std::string body =
      R"({"payment_type":"zolva","zolva_partner":{"phone_number":"5550123","country_code":"1"}})";
  sandbox.misbehave({.method = "POST", .pathPrefix = "/v2/"},
                    {.interruption = std::pair(Break::Close, Point::BeforeHeader)});
  client.call("GET", "/v2/pay/account/a");
  EXPECT_ANY_THROW(client.call("POST", "/v2/pay/account", body));

  const auto request = sandbox.requests().at(1);
  EXPECT_EQ(request.connection, 1U);
  EXPECT_EQ(request.body, body);
  EXPECT_EQ(request.header("x-source"), "mobile-ios");
  const auto overview = SandboxClient(sandbox).call("GET", "/").body();
  EXPECT_NE(overview.find("+1 5550123"), std::string::npos);
}

TEST(Misbehaviour, StoppingEndsWhateverIsHeldUp) {
  const ZLVMisbehaviour heldUp[] = {{.interruption = std::pair(Break::Stall, Point::BeforeHeader)},
                                    {.interruption = std::pair(Break::Stall, Point::InBody)},
                                    {.delay = Forever},
                                    {.trickle = ZLVSandboxTrickle{1, Forever}},
                                    {.bodySize = std::uint64_t{1} << 40U}};
  for (const auto& misbehaviour : heldUp) {
    ZLVSandbox sandbox;
    SandboxClient idle(sandbox);
    SandboxClient client(sandbox);
    sandbox.misbehave({}, misbehaviour);
    client.send(Request);
    ASSERT_TRUE(sandbox.waitForRequests(1, Patience));
    sandbox.stop();
    EXPECT_FALSE(client.receive().first.ends_with("}"));
    EXPECT_TRUE(idle.receive().first.empty());
    EXPECT_ANY_THROW(SandboxClient{sandbox});
    EXPECT_EQ(sandbox.requests().size(), 1U);
  }
}

TEST(Misbehaviour, CanBePlannedOverHTTP) {
  ZLVSandbox sandbox;
  SandboxClient client(sandbox);
  const auto plan = [&](const std::string& settings) {
    return client.call("POST", "/sandbox/misbehave", settings);
  };
  EXPECT_EQ(plan(R"({"method":"GET","path":"/x","times":2,"status":500,"body":{"a":[1]},)"
                 R"("headers":{"X-A":"b"},"body_size":9,"delay_ms":1,"piece_bytes":3,)"
                 R"("piece_interval_ms":1})")
                .result_int(),
            200U);
  EXPECT_EQ(plan(R"({"path":"/y","break":"reset","at":"in-body"})").result_int(), 200U);
  EXPECT_EQ(client.call("POST", "/x").result_int(), 404U);
  for (int time = 0; time < 2; ++time) {
    const auto answer = client.call("GET", "/x?q");
    EXPECT_EQ(answer.result_int(), 500U);
    EXPECT_EQ(answer["X-A"], "b");
    EXPECT_EQ(answer.body(), R"({"a":[1]})");
  }
  EXPECT_EQ(client.call("GET", "/x").result_int(), 404U);
  EXPECT_ANY_THROW(client.call("GET", "/y"));

  SandboxClient another(sandbox);
  for (const auto& [settings, told] : {std::pair{R"({"colour":1})", "unknown setting \"colour\""},
                                       {R"({"at":"end"})", "unknown choice \"end\""},
                                       {"{", "incomplete"},
                                       {R"({"status":"x"})", "number"}}) {
    const auto answer = another.call("POST", "/sandbox/misbehave", settings);
    EXPECT_EQ(answer.result_int(), 400U);
    EXPECT_NE(textAt(answer, "/status_message").find(told), std::string::npos) << answer.body();
  }
}

TEST(Misbehaviour, WhatMakesNoSenseIsAnswered) {
  ZLVSandbox sandbox;
  sandbox.misbehave([](const auto&) -> ZLVMisbehaviour { throw std::runtime_error("no choice"); });
  EXPECT_EQ(SandboxClient(sandbox).call("GET", "/throws").result_int(), 500U);
  SandboxClient stranger(sandbox);
  stranger.send("what?\r\n\r\n");
  EXPECT_TRUE(stranger.receive().first.starts_with("HTTP/1.1 400 "));
}

TEST(Sandbox, SaysWhichPortIsTaken) {
  ZLVSandbox sandbox;
  try {
    ZLVSandbox second({.port = sandbox.port()});
    FAIL();
  } catch (const std::runtime_error& error) {
    EXPECT_NE(std::string(error.what()).find(std::to_string(sandbox.port())), std::string::npos);
  }
}

}  // namespace
