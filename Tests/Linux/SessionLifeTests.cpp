// What a session keeps, needs and ends: cookies, proxies, memory, its thread, calls under way.

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <list>
#include <new>
#include <thread>
#include <vector>

#include <curl/curl.h>
#include <gtest/gtest.h>

#include "Tests/Linux/SessionFixture.h"
#include "ZolvaCheckoutKit/Core/Helpers/ZLVJSONSerialization.h"

using Reply = RawServer::Reply;
using Then = RawServer::Then;

namespace {

/// No more memory is to be had at once.
std::atomic<std::size_t> largestPiece = SIZE_MAX;

}  // namespace

[[gnu::noinline]] void* operator new(std::size_t size) {
  if (size <= largestPiece) {
    if (void* const memory = std::malloc(size)) return memory;
  }
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}

namespace {

TEST(SessionLife, KeepsCookiesToItself) {
  RawServer server(
      [](auto&) { return Reply{RawServer::response("{}", "200 OK", "Set-Cookie: id=42\r\n")}; });
  const auto session = makeSession();
  for (int i = 0; i < 2; ++i) call(*session, request(server.url()));
  call(request(server.url()));
  const auto requests = server.requests();
  EXPECT_EQ(requests[0].find("Cookie"), std::string::npos);
  EXPECT_NE(requests[1].find("Cookie: id=42\r\n"), std::string::npos);
  EXPECT_EQ(requests[2].find("Cookie"), std::string::npos);
}

TEST(SessionLife, KeepsTheNewestCookiesOfMany) {
  int number = 1000;
  RawServer server([&](const std::string& request) {
    std::string cookies;
    const bool isLarge = request.starts_with("GET /large");
    for (int i = 0; i < 40; ++i) {
      cookies += isLarge ? "Set-Cookie: large" + std::to_string(i) + '=' + std::string(4000, 'x')
                         : "Set-Cookie: c" + std::to_string(number++) + "=x; Path=/small";
      cookies += "\r\n";
    }
    // Calls that fail leave cookies, too.
    return request.starts_with("GET /small/stall")
               ? Reply{"HTTP/1.1 200 OK\r\n" + cookies, Then::Stall}
               : Reply{RawServer::response("{}", "200 OK", cookies)};
  });
  const auto session = makeSession();
  // libcurl sends 150 cookies at most and 8 KB of them, those with the longest path first.
  const auto sentCookies = [&] {
    call(*session, request(server.url("/small/")));
    const auto wire = server.requests().back();
    return wire.substr(std::min(wire.find("Cookie: "), wire.size()));
  };
  for (int i = 0; i < 10; ++i) {
    auto stalled = request(server.url("/small/stall"));
    stalled.timeoutInterval = 0.05;
    call(*session, stalled);
  }
  sentCookies();
  const auto small = sentCookies();
  EXPECT_EQ(std::ranges::count(small, '='), 100) << small;
  EXPECT_EQ(small.find("c1339="), small.npos);
  EXPECT_NE(small.find("c1340="), small.npos);
  EXPECT_NE(small.find("c1439="), small.npos);
  call(*session, request(server.url("/large")));
  EXPECT_TRUE(sentCookies().starts_with("Cookie: large")) << "the small ones are older";
}

TEST(SessionLife, UsesTheProxyOfTheEnvironmentButNotForLoopback) {
  RawServer proxy([](auto&) { return Reply{RawServer::response("by proxy")}; });
  RawServer server([](auto&) { return Reply{RawServer::response("direct")}; });
  setenv("http_proxy", proxy.url().c_str(), 1);
  auto options = linuxOptions();
  options.allowsCleartext = true;
  EXPECT_EQ(call(request("http://shop.example/a"), options).data, "by proxy");
  EXPECT_TRUE(proxy.requests().front().starts_with("GET http://shop.example/a HTTP/1.1\r\n"));
  EXPECT_EQ(call(request(server.url()), options).data, "direct");
}

TEST(SessionLife, AnswersFromAThreadThatTakesNoSignals) {
  RawServer server([](auto&) { return Reply{RawServer::response("{}")}; });
  std::promise<std::pair<bool, bool>> promise;
  const auto session = makeSession();
  session->dataTask(request(server.url()), [&, caller = std::this_thread::get_id()](auto) {
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    promise.set_value({sigismember(&blocked, SIGPIPE) && sigismember(&blocked, SIGINT),
                       std::this_thread::get_id() != caller});
  });
  EXPECT_EQ(promise.get_future().get(), std::pair(true, true));
}

TEST(SessionLife, CancelsWhatIsUnderWayWhenItIsDestroyed) {
  RawServer server([](auto&) { return Reply{"", Then::Stall}; });
  auto session = makeSession();
  std::vector<std::future<ZLVURLAnswer>> answers;
  for (const char* method : {"GET", "POST"}) {
    answers.push_back(start(*session, request(server.url(), method)));
    answers.push_back(
        start(*session, request("https://127.0.0.1:" + std::to_string(server.port()), method)));
  }
  session.reset();
  for (auto& answer : answers) EXPECT_EQ(code(answer.get()), NSURLErrorCancelled);
}

TEST(SessionLife, ServesManyCallersAtOnce) {
  RawServer server([](const std::string& request) {
    return Reply{RawServer::response(request.substr(0, request.find(" HTTP")))};
  });
  const auto session = makeSession();
  std::list<std::thread> callers;
  for (int caller = 0; caller < 4; ++caller) {
    callers.emplace_back([&, caller] {
      std::vector<std::pair<std::string, std::future<ZLVURLAnswer>>> answers;
      for (int i = 0; i < 250; ++i) {
        const auto path = "/" + std::to_string(caller * 1000 + i);
        answers.emplace_back("GET " + path, start(*session, request(server.url(path))));
      }
      for (auto& [expected, answer] : answers) EXPECT_EQ(answer.get().data, expected);
    });
  }
  for (auto& caller : callers) caller.join();
  EXPECT_LE(server.connections(), 64);
}

TEST(SessionLife, EndsInAHandler) {
  RawServer server([](const std::string& request) {
    return request.starts_with("GET") ? Reply{RawServer::response("{}")} : Reply{"", Then::Stall};
  });
  auto session = makeSession();
  auto stalled = start(*session, request(server.url(), "POST"));
  std::promise<void> ended;
  session->dataTask(request(server.url()), [&](auto) {
    session.reset();
    ended.set_value();
  });
  ended.get_future().get();
  EXPECT_EQ(code(stalled.get()), NSURLErrorCancelled);
  EXPECT_EQ(code(call(request(server.url()))), 0);
}

bool isCurlShort = false;

/// What libcurl allocates its handles by.
void* allocateCleared(std::size_t count, std::size_t size) {
  return isCurlShort && count * size > 4096 ? nullptr : calloc(count, size);
}

/// Calls and decodes with too little memory, and with enough again.
void runShort() {
  curl_global_init_mem(CURL_GLOBAL_DEFAULT, &malloc, &free, &realloc, &strdup, &allocateCleared);
  {
    RawServer server([](const std::string& request) {
      return request.starts_with("GET /endless")
                 ? Reply{"HTTP/1.1 200 OK\r\n\r\n", {}, std::string(10'000, ' ')}
                 : Reply{RawServer::response("{}")};
    });
    const auto session = makeSession();
    const auto tell = [&](const std::string& path) {
      std::cerr << code(call(*session, request(server.url(path)))) << ' ';
    };
    tell("/");
    isCurlShort = true;
    tell("/");
    isCurlShort = false;
    largestPiece = 1'000'000;
    tell("/endless");
    std::string array = "[0";
    while (array.size() < 100'000) array += ",0";
    const auto decoded = ZLVJSONSerialization::JSONObjectWithData(array + ']');
    std::cerr << std::get<ZLVError>(decoded).code() << ' ';
    tell("/");
  }
  std::exit(0);
}

TEST(SessionLifeDeathTest, TellsThatMemoryIsShort) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(runShort(), testing::ExitedWithCode(0), "0 -1008 -1008 -1008 0 ");
}

/// Waits, last of all when the process exits, for the sessions' threads to be gone.
struct ThreadCheck {
  ~ThreadCheck() {
    while (isAnyLeft()) std::this_thread::yield();
  }
  static bool isAnyLeft() {
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
      std::string name;
      std::ifstream(task.path() / "comm") >> name;
      if (name == "zlv-http") return true;
    }
    return false;
  }
};

/// A host that exits while calls are under way, early or late in the session's life. One session
/// is never destroyed, another one is while the process exits, when there may be new calls, too.
void exitWithCalls(int calls, bool waits) {
  static const ThreadCheck check;
  const SilentListener silent;
  const auto url = "https://127.0.0.1:" + std::to_string(silent.port());
  static const auto& kept = *new auto(makeSession());
  static const auto destroyed = makeSession();
  static const struct Late {
    ~Late() { kept->dataTask(request("http://127.0.0.1:1/"), {}); }
  } late;
  for (int i = 0; i < calls; ++i) {
    kept->dataTask(request(url), [](auto) { std::abort(); });
    destroyed->dataTask(request(url), {});
  }
  if (waits) call(*kept, request("http://127.0.0.1:1/"));
  std::exit(0);
}

TEST(SessionLifeDeathTest, LetsTheProcessExit) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  for (const int calls : {0, 1, 20}) {
    for (const bool waits : {false, true}) {
      EXPECT_EXIT(exitWithCalls(calls, waits), testing::ExitedWithCode(0), "");
    }
  }
}

}  // namespace
