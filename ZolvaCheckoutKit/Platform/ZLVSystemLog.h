#pragma once

#include <string_view>

#include <ZolvaCheckoutKit/ZLVExport.h>

/// Where the library's diagnostic lines go.
class ZLV_EXPORT ZLVSystemLog {
 public:
  virtual ~ZLVSystemLog() = default;

  /// Writes one line; `line` is UTF-8, has no line break and is valid during the call only. Called
  /// on any thread, also on several at once. Failures are the log's own affair; must not throw.
  virtual void log(std::string_view line) = 0;
};
