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
  /// The value of `key` as in `ZLVSystemFile::setting`, or without one the first line.
  explicit ZLVSystemFact(std::filesystem::path file, std::string key = {});

  [[nodiscard]] std::optional<std::string> value() const;

 private:
  const std::filesystem::path file_;
  const std::string key_;
  mutable std::mutex mutex_;
  mutable std::optional<struct stat> known_;  // the file that `value_` is from
  mutable std::optional<std::string> value_;
};
