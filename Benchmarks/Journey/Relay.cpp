#include "Benchmarks/Journey/Relay.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <ctime>

#include <netinet/in.h>
#include <netinet/ip.h>
#include <poll.h>
#include <unistd.h>

namespace {

constexpr std::size_t mostPackets = 10'000;

timespec timeUntil(std::chrono::steady_clock::time_point moment) {
  const auto left = std::max(moment - std::chrono::steady_clock::now(),
                             std::chrono::steady_clock::duration::zero());
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
  return {seconds.count(), std::chrono::nanoseconds(left - seconds).count()};
}

}  // namespace

Relay::Relay(int client, int server, std::vector<Path> paths)
    : client_(client), server_(server), paths_(std::move(paths)) {}

void Relay::runUntil(int other) {
  for (std::array<pollfd, 3> events{
           {{client_, POLLIN, 0}, {server_, POLLIN, 0}, {other, POLLIN, 0}}};
       (events[2].revents & POLLIN) == 0;) {
    timespec left{};
    if (!packets_.empty()) left = timeUntil(packets_.top().due);
    ppoll(events.data(), events.size(), packets_.empty() ? nullptr : &left, nullptr);
    take(client_, server_);
    take(server_, client_);
    send();
  }
}

void Relay::take(int from, int to) {
  std::array<char, 65536> buffer{};
  for (ssize_t size = 0; (size = read(from, buffer.data(), buffer.size())) > 0;) {
    ip header{};
    if (static_cast<std::size_t>(size) < sizeof header) continue;
    std::memcpy(&header, buffer.data(), sizeof header);
    if (header.ip_v != 4) continue;  // the system tells its IPv6 neighbours that it is there
    const bool isToServer = from == client_;
    const auto server = ntohl((isToServer ? header.ip_dst : header.ip_src).s_addr);
    const auto* path = pathOf(server);
    if (path == nullptr) continue;
    if (isLost(server, isToServer, path->loss)) {
      ++counts_.lost;
    } else if (packets_.size() == mostPackets) {
      ++counts_.overflowed;
    } else {
      packets_.push(
          {Clock::now() + path->roundTrip / 2, to, {buffer.data(), buffer.data() + size}});
    }
  }
}

void Relay::send() {
  for (; !packets_.empty(); packets_.pop()) {
    const auto& packet = packets_.top();
    const auto delay = Clock::now() - packet.due;
    if (delay < Clock::duration::zero()) return;
    if (delay > std::chrono::milliseconds(1)) ++counts_.late;
    const auto sent = write(packet.to, packet.bytes.data(), packet.bytes.size());
    ++(sent < 0 ? counts_.overflowed : counts_.carried);
  }
}

const Relay::Path* Relay::pathOf(std::uint32_t server) const {
  const std::uint32_t number = (server >> 16U) & 0xffU;
  return server >> 24U == 10 && number < paths_.size() ? &paths_[number] : nullptr;
}

bool Relay::isLost(std::uint32_t server, bool isToServer, double loss) {
  auto [entry, isNew] = losses_.try_emplace({server, isToServer});
  if (isNew) {
    std::seed_seq seed{(server >> 8U) & 0xffffU, server % hostsOfContender, isToServer ? 1U : 0U};
    entry->second.seed(seed);
  }
  return std::bernoulli_distribution(loss)(entry->second);
}
