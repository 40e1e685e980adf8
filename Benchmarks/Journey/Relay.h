#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <queue>
#include <random>
#include <utility>
#include <vector>

/// Carries packets between two TUN devices as a long way would: each is held for half the round
/// trip, and some are lost.
///
/// Servers have addresses of the form 10.PATH.RUN.HOST. The way to them is the path of that number,
/// and loses the same packets by number in every execution, to whatever contender the host belongs.
class Relay {
 public:
  struct Path {
    std::chrono::nanoseconds roundTrip;
    double loss;  ///< Of the packets in each direction.
  };
  struct Counts {
    std::size_t carried = 0;
    std::size_t lost = 0;
    std::size_t overflowed = 0;  ///< Had no room.
    std::size_t late = 0;        ///< Carried more than a millisecond too late.
  };

  /// A contender's servers have consecutive hosts, so many of them.
  static constexpr unsigned hostsOfContender = 4;

  /// Two TUN devices by their descriptors, which do not block.
  Relay(int client, int server, std::vector<Path> paths);

  /// Carries on until `other` can be read.
  void runUntil(int other);

  [[nodiscard]] const Counts& counts() const { return counts_; }

 private:
  using Clock = std::chrono::steady_clock;
  struct Packet {
    Clock::time_point due;
    int to;
    std::vector<char> bytes;
    bool operator<(const Packet& other) const { return due > other.due; }
  };

  void take(int from, int to);
  void send();
  /// Nothing where there is no way to the packet's server.
  [[nodiscard]] const Path* pathOf(std::uint32_t server) const;
  bool isLost(std::uint32_t server, bool isToServer, double loss);

  const int client_;
  const int server_;
  const std::vector<Path> paths_;
  std::priority_queue<Packet> packets_;
  std::map<std::pair<std::uint32_t, bool>, std::mt19937> losses_;
  Counts counts_;
};
