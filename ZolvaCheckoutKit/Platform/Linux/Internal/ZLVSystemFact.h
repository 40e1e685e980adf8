#pragma once

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>

#include <sys/stat.h>

/// What a small text file says now: the file is looked at each time, but read again only when it is
/// another one or has changed. Any thread.
class ZLVSystemFact {
 public:
  /// Of the file below `root` the value of `key` as in `ZLVSystemFile::setting`, or without one the
  /// first line. The key is kept as it is.
  ZLVSystemFact(const std::filesystem::path& root, const char* file, const char* key = "");

  [[nodiscard]] std::optional<std::string> value() const;

 private:
  const std::filesystem::path file_;
  const char* const key_;
  mutable std::mutex mutex_;
  mutable std::optional<struct stat> known_;  // the file that `value_` is from
  mutable std::optional<std::string> value_;
};
