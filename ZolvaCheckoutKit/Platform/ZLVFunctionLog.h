#pragma once

#include <functional>
#include <string_view>
#include <utility>

#include <ZolvaCheckoutKit/Platform/ZLVSystemLog.h>

/// A log that hands each line to a function of the host's:
///
/// ```cpp
/// platform.systemLog = std::make_shared<ZLVFunctionLog>(
///     [](std::string_view line) { logger.info("checkout", line); });
/// ```
class ZLVFunctionLog final : public ZLVSystemLog {
 public:
  /// Called as `ZLVSystemLog::log` is: on any thread, also on several at once, with a line that is
  /// valid during the call only. What it throws goes no further.
  using Function = std::function<void(std::string_view line)>;

  /// A null `function` is a log that keeps nothing.
  explicit ZLVFunctionLog(Function function) : function_(std::move(function)) {}

  void log(std::string_view line) override {
    try {
      if (function_) function_(line);
    } catch (...) {  // NOLINT(bugprone-empty-catch): a failure is the log's own affair
    }
  }

 private:
  const Function function_;
};
