#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Header names and values in the order they travel in.
using ZLVSandboxHeaders = std::vector<std::pair<std::string, std::string>>;

/// A request as it was received.
struct ZLVSandboxRequest {
  std::string method;
  std::string target;
  ZLVSandboxHeaders headers;
  std::string body;
  /// The connection it came on, counted from 1 in the order of acceptance.
  std::size_t connection = 0;

  /// The target without its query; valid as long as the request.
  [[nodiscard]] std::string_view path() const;
  /// The value of the first header of this name, in any letter case; empty when there is none.
  [[nodiscard]] std::string_view header(std::string_view name) const;
};

/// What is sent back.
struct ZLVSandboxAnswer {
  unsigned status = 200;
  ZLVSandboxHeaders headers;
  std::string body;

  /// Sets a header in place of those of the same name, in any letter case.
  void setHeader(std::string_view name, std::string_view value);

  static ZLVSandboxAnswer JSON(unsigned status, std::string body);
};
