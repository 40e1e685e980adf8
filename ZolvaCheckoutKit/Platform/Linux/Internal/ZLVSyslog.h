#pragma once

#include <atomic>
#include <string>
#include <string_view>
#include <utility>

#include <ZolvaCheckoutKit/Platform/ZLVSystemLog.h>

/// The system log, with lines as syslog(3) writes them when the host has not called openlog(3):
/// under the program's name, facility LOG_USER, priority LOG_INFO, unless setlogmask(3) says no.
///
/// Never waits: syslog(3) itself would, with the calling thread and all others that log, for a
/// daemon that is stopped or slow. What the daemon does not take is dropped, and a line of this
/// class's own tells how many lines were, before the next one that it takes.
class ZLVSyslog final : public ZLVSystemLog {
 public:
  /// `socket` is where the daemon takes datagrams.
  explicit ZLVSyslog(std::string socket = "/dev/log") : socket_(std::move(socket)) {}

  /// A line longer than 64 KiB is cut.
  void log(std::string_view line) override;

 private:
  [[nodiscard]] bool send(std::string_view line) const;

  const std::string socket_;
  std::atomic<unsigned> dropped_ = 0;
};
