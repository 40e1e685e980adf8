#pragma once

#include <cstddef>
#include <optional>
#include <string>

/// What the host says of a session, in the meaning of the backend's own options.
struct ZLVCurlOptions {
  bool allowsCleartext = false;
  std::optional<std::string> CAFile = std::nullopt;
  std::size_t maximumAnswerSize = 0;
  /// A URL of the server to connect to before the first call.
  std::optional<std::string> connectsAheadTo = std::nullopt;
  /// Where the system's authorities stand under their names' hashes; where absent, libcurl knows.
  std::optional<std::string> authorities = std::nullopt;
  /// Whether libcurl's handles are used more than once; where absent, its version decides.
  std::optional<bool> usesHandlesAgain = std::nullopt;
};
