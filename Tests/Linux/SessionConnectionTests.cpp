// How a session connects, and what becomes of calls when the system has no more to give.

#include <cstdlib>
#include <optional>
#include <semaphore>
#include <vector>

#include <arpa/inet.h>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVProcess.h>

#include "Tests/Linux/SessionFixture.h"

/// In place of the system's: names ending in ".test" have the addresses that stand before it.
extern "C" [[gnu::visibility("default")]] int getaddrinfo(const char* name, const char* service,
                                                          const addrinfo* hints,
                                                          addrinfo** result) {
  static const auto system =
      reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));  // NOLINT
  std::string rest = name == nullptr ? "" : name;
  if (!rest.ends_with(".test")) return system(name, service, hints, result);
  for (addrinfo** next = result; rest != "test"; rest.erase(0, rest.find('.') + 1)) {
    const auto address = "127.0.0." + rest.substr(0, rest.find('.'));
    if (const int error = system(address.c_str(), service, hints, next); error != 0) return error;
    while (*next != nullptr) next = &(*next)->ai_next;
  }
  return 0;
}

namespace {

/// The server's port of another address, where no connection is accepted any more.
class DeadListener {
 public:
  DeadListener(const char* address, int port) {
    name_.sin_family = AF_INET;
    name_.sin_port = htons(static_cast<in_port_t>(port));
    inet_pton(AF_INET, address, &name_.sin_addr);
    EXPECT_EQ(bind(listener_, nameOf(), sizeof name_), 0);
    EXPECT_EQ(listen(listener_, 0), 0);
    for (pollfd event{-1, POLLOUT, 0}; event.revents != 0 || event.fd < 0;) {
      event.fd = queued_.emplace_back(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0));
      (void)connect(event.fd, nameOf(), sizeof name_);
      poll(&event, 1, 100);
    }
  }
  DeadListener(const DeadListener&) = delete;
  DeadListener& operator=(const DeadListener&) = delete;
  ~DeadListener() {
    close(listener_);
    for (const int socket : queued_) close(socket);
  }
  /// Lives again, and waits a little for a connection that it answers.
  void serve(const std::string& answer) {
    pollfd event{listener_, POLLIN, 0};
    if (poll(&event, 1, 50) != 1) return;
    const int client = queued_.emplace_back(accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC));
    EXPECT_GT(write(client, answer.data(), answer.size()), 0);
  }

 private:
  sockaddr* nameOf() { return reinterpret_cast<sockaddr*>(&name_); }  // NOLINT(*-cast)

  sockaddr_in name_{};
  int listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  std::vector<int> queued_;
};

TEST(SessionConnection, GoesOnToTheNextAddressWhenOneIsDead) {
  unsetenv("http_proxy");
  RawServer server(hello);
  DeadListener dead("127.0.0.3", server.port());
  const DeadListener deadToo("127.0.0.4", server.port());
  auto options = linuxOptions();
  options.allowsCleartext = true;
  const auto session = makeSession(options);
  const auto to = [&](const std::string& host) {
    auto sent = request("http://" + host + ':' + std::to_string(server.port()), "POST");
    sent.timeoutInterval = 20;
    return sent;
  };
  // A server with one address is waited for, however slow it is.
  auto slow = start(*session, to("127.0.0.3"));
  for (const char* host : {"3.1.test", "3.4.1.test", "1.3.test"}) {
    EXPECT_EQ(call(*session, to(host)).data, "hello") << host;
  }
  EXPECT_EQ(server.requests().size(), 3U);
  while (slow.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
    dead.serve(RawServer::response("hello"));
  }
  EXPECT_EQ(slow.get().data, "hello");
}

TEST(SessionConnection, IsGivenUpWhenNothingIsAcknowledgedForAMinute) {
  RawServer server(hello);
  const auto session = makeSession();
  EXPECT_EQ(code(call(*session, request(server.url()))), 0);
  ASSERT_EQ(server.clients().size(), 1U);
  unsigned int milliseconds = 0;
  socklen_t size = sizeof milliseconds;
  getsockopt(server.clients().front(), IPPROTO_TCP, TCP_USER_TIMEOUT, &milliseconds, &size);
  EXPECT_EQ(milliseconds, 60'000U);
}

/// Its first call is made while there are no descriptors; it ends the process.
void callWithoutDescriptors() {
  alarm(60);
  static const auto session = makeSession();
  rlimit before{};
  getrlimit(RLIMIT_NOFILE, &before);
  const int next = dup(0);
  close(next);
  const rlimit none{static_cast<rlim_t>(next), before.rlim_max};
  setrlimit(RLIMIT_NOFILE, &none);
  if (code(call(*session, request("http://127.0.0.1:1/"))) != NSURLErrorCannotConnectToHost) {
    _exit(1);
  }
  setrlimit(RLIMIT_NOFILE, &before);
  {
    RawServer server(hello);
    for (int i = 0; i < 2; ++i) {
      if (call(*session, request(server.url())).data != "hello") _exit(2);
    }
  }
  std::exit(0);
}

TEST(SessionConnectionDeathTest, WorksOnceThereAreDescriptors) {
#ifdef __has_feature
#if __has_feature(address_sanitizer)
  GTEST_SKIP() << "The sanitizers look at memory through descriptors of their own.";
#endif
#endif
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(callWithoutDescriptors(), testing::ExitedWithCode(0), "");
}

TEST(SessionConnection, WorksOnceThereAreThreads) {
  RawServer server(hello);
  pthread_attr_t before, endless;
  pthread_getattr_default_np(&before);
  pthread_attr_init(&endless);
  pthread_attr_setstacksize(&endless, std::size_t{1} << 60);
  pthread_setattr_default_np(&endless);
  const auto session = makeSession();
  auto answer = start(*session, request(server.url()));
  const auto program = ZLVProcess::start("true", "");
  pthread_setattr_default_np(&before);
  EXPECT_EQ(program, std::errc::resource_unavailable_try_again);
  EXPECT_THROW(answer.get(), std::future_error) << "the handler is let go of";
  EXPECT_EQ(call(*session, request(server.url())).data, "hello");
  EXPECT_EQ(server.requests().size(), 1U);
}

}  // namespace
