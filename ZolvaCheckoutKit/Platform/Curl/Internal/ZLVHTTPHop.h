#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <ZolvaCheckoutKit/Platform/Curl/Internal/ZLVWebURL.h>
#include <ZolvaCheckoutKit/Platform/ZLVURLSession.h>
#include <ZolvaCheckoutKit/ZLVError.h>

/// One request on the way from a URL to the place where the answer is.
struct ZLVHTTPHop {
  ZLVWebURL url;
  std::string method;
  std::vector<std::pair<std::string, std::string>> headers;
  std::optional<std::string> body;
  int redirects = 0;          ///< Followed so far.
  bool mustBeSecure = false;  ///< What was encrypted stays so.

  /// The next hop, where an answer of `status` sends this one with a Location header, or the code
  /// of the error that forbids it.
  [[nodiscard]] std::variant<ZLVHTTPHop, NSURLError> redirected(long status,
                                                                const std::string& location) const;

  /// Whether `status` sends a request elsewhere when the answer has a Location.
  static bool isRedirect(long status);

  /// Whether method and headers are what HTTP takes for some.
  [[nodiscard]] bool isWellFormed() const;

  /// A request with effects must not reach a server twice.
  [[nodiscard]] bool mayBeResent() const { return method == "GET" || method == "HEAD"; }
};
