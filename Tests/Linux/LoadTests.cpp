// Ten thousand calls at once, as many of them under way as there are descriptors for.

#include <algorithm>
#include <array>
#include <atomic>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Core/Network/ZLVNetwork.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxMainQueue.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>

#include "Tests/Support/RawServer.h"

namespace {

/// Servers on one thread, which answer nobody until so many requests are there, and then everybody:
/// half with an answer, half by hanging up.
class HoldingServers {
 public:
  HoldingServers(std::size_t count, std::size_t held) : listeners_(count), held_(held) {
    for (const auto& listener : listeners_) watch(listener.socket());
    watch(end_);
    thread_ = std::thread([this] { run(); });
  }
  HoldingServers(const HoldingServers&) = delete;
  HoldingServers& operator=(const HoldingServers&) = delete;
  ~HoldingServers() {
    eventfd_write(end_, 1);
    thread_.join();
    for (const int socket : open_) close(socket);
    close(end_);
    close(epoll_);
  }

  [[nodiscard]] std::string url(std::size_t index) const {
    return "http://127.0.0.1:" + std::to_string(listeners_.at(index % listeners_.size()).port());
  }
  [[nodiscard]] std::size_t requests() const { return requests_; }

 private:
  void watch(int descriptor) const {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = descriptor;
    ASSERT_EQ(epoll_ctl(epoll_, EPOLL_CTL_ADD, descriptor, &event), 0);
  }

  void run() {
    for (std::array<epoll_event, 256> events{};;) {
      const int count = epoll_wait(epoll_, events.data(), events.size(), -1);
      for (int i = 0; i < count; ++i) {
        const int ready = events.at(static_cast<std::size_t>(i)).data.fd;
        if (ready == end_) return;
        if (std::ranges::any_of(listeners_, [=](auto& one) { return one.socket() == ready; })) {
          watch(open_.emplace_back(accept4(ready, nullptr, nullptr, SOCK_CLOEXEC)));
        } else {
          read(ready);
        }
      }
    }
  }

  /// Requests are short enough to come in one piece.
  void read(int client) {
    std::array<char, 4096> bytes{};
    const auto count = recv(client, bytes.data(), bytes.size(), 0);
    if (count <= 0) {
      epoll_ctl(epoll_, EPOLL_CTL_DEL, client, nullptr);
      return;
    }
    const std::string_view request(bytes.data(), static_cast<std::size_t>(count));
    waiting_.push_back({client, request.starts_with("POST")});
    if (++requests_ < held_) return;
    for (const auto& [socket, hangsUp] : waiting_) {
      static const auto answer = RawServer::response(R"({"status_code":"200"})");
      if (hangsUp) {
        shutdown(socket, SHUT_RDWR);
      } else {
        send(socket, answer.data(), answer.size(), MSG_NOSIGNAL);
      }
    }
    waiting_.clear();
  }

  struct Waiting {
    int socket;
    bool hangsUp;
  };
  std::vector<SilentListener> listeners_;
  const std::size_t held_;
  const int epoll_ = epoll_create1(EPOLL_CLOEXEC), end_ = eventfd(0, EFD_CLOEXEC);
  std::vector<int> open_;
  std::vector<Waiting> waiting_;
  std::atomic<std::size_t> requests_ = 0;
  std::thread thread_;
};

TEST(Load, TenThousandCallsAnswerOnce) {
  constexpr std::size_t calls = 10'000;
  constexpr std::size_t underWay = 64;  // of one server's
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = limit.rlim_max;
  setrlimit(RLIMIT_NOFILE, &limit);
  // Both ends of a connection, and a few for all else.
  const auto affordable = (std::max<std::size_t>(limit.rlim_cur, 500) - 300) / (2 * underWay);
  const auto count = std::min<std::size_t>(100, affordable);
  const HoldingServers servers(count, count * underWay);

  ZLVPlatform::install(ZLVLinuxPlatform::platformWithOptions({.applicationVersion = "1"}));
  const auto queue = ZLVLinuxMainQueue::mainQueue();
  std::vector<int> answers(calls);
  std::size_t answered = 0, failed = 0;
  for (std::size_t i = 0; i < calls; ++i) {
    const bool mustFail = i / count % 2 == 1;
    const auto service = ZLVNetworkService::initWithBaseURL(
        servers.url(i), "/", mustFail ? ZLVHTTPMethodPost : ZLVHTTPMethodGet, {},
        ZLVServiceTypeMerchant);
    ZLVNetwork::shared().request(service, [&, i, mustFail, main = std::this_thread::get_id()](
                                              const ZLVValue&, const auto& error) {
      EXPECT_EQ(std::this_thread::get_id(), main);
      EXPECT_EQ(error.has_value(), mustFail);
      ++answers[i];
      failed += error ? 1 : 0;
      if (++answered == calls) queue->stop();
    });
  }
  queue->run();
  EXPECT_EQ(std::ranges::count(answers, 1), static_cast<std::ptrdiff_t>(calls));
  EXPECT_EQ(failed, calls / 2);
  EXPECT_EQ(servers.requests(), calls) << "some were sent twice, or never";
  EXPECT_TRUE(queue->runUntilIdle(std::chrono::minutes(1)));
}

}  // namespace
