// What a session keeps, needs and ends: cookies, memory, its thread, calls under way.

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <new>
#include <thread>
#include <vector>

#include <curl/curl.h>
#include <gtest/gtest.h>

#include "Tests/Linux/SessionFixture.h"
#include "ZolvaCheckoutKit/Core/Values/ZLVJSONSerialization.h"

namespace {

/// No more memory is to be had at once.
std::atomic<std::size_t> largestPiece = SIZE_MAX;

}  // namespace

// The thread sanitizer has these itself, and cannot be linked beside others.
#ifdef __has_feature
#if __has_feature(thread_sanitizer)
#define ZLV_FOREIGN_MEMORY
#endif
#endif
#ifndef ZLV_FOREIGN_MEMORY
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
#endif

namespace {

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
    return request.starts_with("GET /small/cut")
               ? Reply{"HTTP/1.1 200 OK\r\n" + cookies, Then::Close}
               : Reply{RawServer::response("{}", "200 OK", cookies)};
  });
  const auto session = makeSession();
  // libcurl sends 150 cookies at most and 8 KB of them, those with the longest path first.
  const auto sentCookies = [&] {
    call(*session, request(server.url("/small/")));
    const auto wire = server.requests().back();
    return wire.substr(std::min(wire.find("Cookie: "), wire.size()));
  };
  for (int i = 0; i < 10; ++i) call(*session, request(server.url("/small/cut")));
  sentCookies();
  const auto small = sentCookies();
  EXPECT_EQ(std::ranges::count(small, '='), 100) << small;
  EXPECT_EQ(small.find("c1339="), small.npos);
  EXPECT_NE(small.find("c1340="), small.npos);
  EXPECT_NE(small.find("c1439="), small.npos);
  call(*session, request(server.url("/large")));
  EXPECT_TRUE(sentCookies().starts_with("Cookie: large")) << "the small ones are older";
  call(request(server.url("/small/")));
  EXPECT_EQ(server.requests().back().find("Cookie: "), std::string::npos) << "another session's";
}

TEST(SessionLife, AnswersFromAThreadThatTakesNoSignals) {
  RawServer server(hello);
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

TEST(SessionLife, ServesManyCallsAtOnce) {
  RawServer server([](const std::string& request) {
    return Reply{RawServer::response(request.substr(0, request.find(" HTTP")))};
  });
  const auto session = makeSession();
  std::vector<std::future<ZLVURLAnswer>> answers;
  answers.reserve(1000);
  for (int i = 0; i < 1000; ++i) {
    answers.push_back(start(*session, request(server.url("/" + std::to_string(i)))));
  }
  for (int i = 0; i < 1000; ++i) {
    EXPECT_EQ(answers[static_cast<std::size_t>(i)].get().data, "GET /" + std::to_string(i));
  }
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
#ifdef ZLV_FOREIGN_MEMORY
  GTEST_SKIP() << "Memory is the sanitizer's.";
#endif
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(runShort(), testing::ExitedWithCode(0), "0 -1008 -1008 -1008 0 ");
}

}  // namespace
