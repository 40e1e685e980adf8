#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVWebURL.h>
#include <ZolvaCheckoutKit/Platform/ZLVURLSession.h>
#include <ZolvaCheckoutKit/ZLVError.h>

/// One request on the way from a URL to the place where the answer is: what may be sent, and what
/// is followed.
struct ZLVHTTPHop {
  ZLVWebURL url = {};
  std::string method = {};
  std::vector<std::pair<std::string, std::string>> headers = {};
  std::optional<std::string> body = {};
  int redirects = 0;          ///< Followed so far.
  bool mustBeSecure = false;  ///< What was encrypted stays so.

  /// The first hop of a call; `refusal` tells where the request cannot be sent.
  static ZLVHTTPHop first(ZLVURLRequest request);

  /// Why the request must not go out, unless it may. In cleartext it always goes to this machine
  /// itself, and elsewhere where `allowsCleartext`.
  [[nodiscard]] std::optional<NSURLError> refusal(bool allowsCleartext) const;

  /// Whether a server may get the request twice: it has no effects.
  [[nodiscard]] bool isRepeatable() const { return method == "GET" || method == "HEAD"; }

  /// Whether `status` sends a request elsewhere when the answer has a Location.
  static bool isRedirect(long status);

  /// The next hop, where an answer of `status` sends this one to `location`, or the code of the
  /// error that forbids it.
  [[nodiscard]] std::variant<ZLVHTTPHop, NSURLError> redirected(long status,
                                                                const std::string& location) const;
};
