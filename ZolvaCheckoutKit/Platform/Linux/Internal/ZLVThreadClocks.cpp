#include <algorithm>
#include <ctime>
#include <filesystem>
#include <string>
#include <system_error>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVThreadClocks.h>

namespace {

/// The kernel's number for the clock that counts a thread's processor time, to the nanosecond
/// where /proc/self/task/*/stat counts in hundredths of a second (see clock_getres(2) and
/// pthread_getcpuclockid(3), which makes the same number out of a thread it knows).
clockid_t processorClock(pid_t thread) {
  return static_cast<clockid_t>((~static_cast<unsigned>(thread) << 3) | 6U);
}

using Time = std::chrono::nanoseconds;

std::optional<Time> processorTime(pid_t thread) {
  timespec time{};
  if (clock_gettime(processorClock(thread), &time) != 0) return std::nullopt;
  return std::chrono::seconds(time.tv_sec) + Time(time.tv_nsec);
}

}  // namespace

std::optional<ZLVThreadClocks> ZLVThreadClocks::read() {
  namespace fs = std::filesystem;
  ZLVThreadClocks clocks;
  clocks.moment_ = Clock::now();
  std::error_code error;
  for (fs::directory_iterator task("/proc/self/task", error), end; !error && task != end;
       task.increment(error)) {
    const pid_t thread = std::stoi(task->path().filename());
    const auto time = processorTime(thread);
    // A thread that has just ended is none that cannot be read.
    if (std::error_code gone; time || fs::exists(task->path(), gone)) clocks.times_[thread] = time;
  }
  if (error) return std::nullopt;
  return clocks;
}

ZLVDevice::Threads ZLVThreadClocks::usageSince(const ZLVThreadClocks& earlier) const {
  const auto elapsed = std::max<Clock::duration>(moment_ - earlier.moment_, Clock::duration(1));
  ZLVDevice::Threads threads;
  for (const auto& [thread, time] : times_) {
    auto& usage = threads.emplace_back();
    if (!time) continue;
    const auto before = earlier.times_.find(thread);
    const auto used =
        *time - (before == earlier.times_.end() ? Time(0) : before->second.value_or(*time));
    usage = {.cpuUsage = static_cast<int>(used * 1000 / elapsed), .isIdle = used.count() == 0};
  }
  return threads;
}
