#include <atomic>
#include <thread>

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

std::string bodyOf(const std::string& answer) { return answer.substr(answer.find("\r\n\r\n") + 4); }

TEST(Misbehaviour, AnswersAreReplacedCutAndFilledUp) {
  struct Case {
    ZLVMisbehaviour misbehaviour;
    std::string beginning, header, body;
  };
  const std::vector<Case> cases = {
      {{.status = 503, .body = "<html>"}, "HTTP/1.1 503 Service Unavailable\r\n", "", "<html>"},
      {{.body = "{\"a\":"}, "HTTP/1.1 200 OK\r\n", "Content-Length: 5\r\n", "{\"a\":"},
      {{.body = "12345678", .bodySize = 3}, "HTTP/1.1 200", "Content-Length: 3\r\n", "123"},
      {{.body = "{}", .bodySize = 6}, "HTTP/1.1 200", "Content-Length: 6\r\n", "{}    "},
      {{.body = "{}", .headers = {{"content-length", "9"}}}, "HTTP", "content-length: 9\r\n", "{}"},
      {{.status = 302, .body = "", .headers = {{"Location", "/y"}}},
       "HTTP/1.1 302",
       "Location: /y\r\n",
       ""},
      {{.status = 204}, "HTTP/1.1 204", "Connection: close\r\n", ""},
      {{.body = "slowly", .trickle = ZLVSandboxTrickle{2, std::chrono::milliseconds(1)}},
       "HTTP/1.1 200",
       "Content-Length: 6\r\n",
       "slowly"},
  };
  ZLVSandbox sandbox;
  for (const auto& [misbehaviour, beginning, header, body] : cases) {
    sandbox.misbehave({}, misbehaviour);
    const auto [answer, end] = ask(sandbox);
    EXPECT_EQ(end, boost::asio::error::eof);
    EXPECT_TRUE(answer.starts_with(beginning)) << answer;
    EXPECT_NE(answer.find(header), std::string::npos) << answer;
    EXPECT_EQ(bodyOf(answer), body);
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

TEST(Misbehaviour, AHugeBodyIsValidJSON) {
  constexpr std::size_t size = 16U << 20U;
  ZLVSandbox sandbox;
  SandboxClient client(sandbox);
  sandbox.misbehave({}, {.bodySize = size});
  const auto huge = client.call("GET", "/x");
  EXPECT_EQ(huge.body().size(), size);
  EXPECT_EQ(textAt(huge, "/status_code"), "404");
  EXPECT_EQ(client.call("GET", "/x").body().size() < size, true);
}

TEST(Misbehaviour, ARequestTakesEffectThoughItsAnswerIsLost) {
  ZLVSandbox sandbox;
  SandboxClient client(sandbox);
  const std::string body =
      R"({"payment_type":"zolva","zolva_partner":{"phone_number":"5550123","country_code":"1"}})";
  client.call("GET", "/x");
  sandbox.misbehave({.method = "POST", .pathPrefix = "/v2/"},
                    {.interruption = std::pair(Break::Close, Point::BeforeHeader)});
  client.call("GET", "/v2/pay/account/a");
  EXPECT_ANY_THROW(client.call("POST", "/v2/pay/account", body));

  const auto requests = sandbox.requests();
  ASSERT_EQ(requests.size(), 3U);
  EXPECT_EQ(requests[2].connection, 1U);
  EXPECT_EQ(requests[2].body, body);
  EXPECT_EQ(requests[2].headers[0], MerchantHeaders[0]);
  EXPECT_EQ(requests[2].header("x-source"), "mobile-ios");
  const auto overview = SandboxClient(sandbox).call("GET", "/").body();
  EXPECT_NE(overview.find("+1 5550123"), std::string::npos);
}

TEST(Misbehaviour, StoppingEndsWhateverIsHeldUp) {
  const ZLVMisbehaviour heldUp[] = {
      {.body = "0123456789", .interruption = std::pair(Break::Stall, Point::BeforeHeader)},
      {.body = "0123456789", .interruption = std::pair(Break::Stall, Point::InBody)},
      {.body = "0123456789", .delay = Forever},
      {.body = "0123456789", .trickle = ZLVSandboxTrickle{1, Forever}},
      {.body = "0123456789", .bodySize = std::uint64_t{1} << 40U},
  };
  for (const auto& misbehaviour : heldUp) {
    ZLVSandbox sandbox;
    SandboxClient idle(sandbox);
    SandboxClient client(sandbox);
    sandbox.misbehave({}, misbehaviour);
    client.send(Request);
    ASSERT_TRUE(sandbox.waitForRequests(1, Patience));
    sandbox.stop();
    EXPECT_FALSE(client.receive().first.ends_with("9"));
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
  EXPECT_EQ(sandbox.requests().size(), 5U);

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

TEST(Misbehaviour, IsChosenForEachOfManyRequestsAtOnce) {
  constexpr std::size_t callers = 16;
  constexpr std::size_t calls = 40;
  std::atomic<std::size_t> observed = 0;
  ZLVSandbox sandbox({.observer = [&](const auto&, unsigned) { ++observed; }});
  sandbox.misbehave([](const ZLVSandboxRequest& request) {
    if (request.target == "/throws") throw std::runtime_error("no choice");
    return request.target == "/proper" ? ZLVMisbehaviour() : ZLVMisbehaviour{.status = 418};
  });
  std::vector<std::jthread> threads;
  for (std::size_t caller = 0; caller < callers; ++caller) {
    threads.emplace_back([&] {
      for (std::size_t call = 0; call < calls; ++call) {
        SandboxClient client(sandbox);
        EXPECT_EQ(client.call("GET", "/proper").result_int(), 404U);
        EXPECT_EQ(client.call("GET", "/odd").result_int(), 418U);
      }
    });
  }
  EXPECT_TRUE(sandbox.waitForRequests(callers * calls * 2, Patience));
  threads.clear();
  EXPECT_EQ(observed, callers * calls * 2);
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
