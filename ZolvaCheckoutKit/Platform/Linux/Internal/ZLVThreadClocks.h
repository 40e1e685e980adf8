#pragma once

#include <chrono>
#include <map>
#include <optional>

#include <sys/types.h>

#include <ZolvaCheckoutKit/Platform/ZLVDevice.h>

/// The processor times of this process's threads at one moment.
class ZLVThreadClocks {
 public:
  /// Reads them all; nothing when the threads cannot be listed.
  static std::optional<ZLVThreadClocks> read();

  /// What each thread used between `earlier` and this reading; one that has used nothing is idle.
  /// Threads that have ended in between are left out, new ones count from their start.
  [[nodiscard]] ZLVDevice::Threads usageSince(const ZLVThreadClocks& earlier) const;

 private:
  using Clock = std::chrono::steady_clock;

  Clock::time_point moment_;
  /// Nothing for a thread whose time cannot be read.
  std::map<pid_t, std::optional<std::chrono::nanoseconds>> times_;
};
