#include <algorithm>
#include <string_view>

#include <strings.h>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVHTTPHop.h>

namespace {

constexpr int maximumRedirects = 20;

constexpr bool isTokenCharacter(char c) {
  constexpr std::string_view marks = "!#$%&'*+-.^_`|~";
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
         marks.find(c) != std::string_view::npos;
}

/// An HTTP token, which a method and a header's name have to be.
bool isToken(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, isTokenCharacter);
}

bool isHeader(const std::pair<std::string, std::string>& header) {
  constexpr std::string_view breaks("\r\n\0", 3);
  return isToken(header.first) && header.second.find_first_of(breaks) == std::string::npos;
}

bool isContentType(const std::pair<std::string, std::string>& header) {
  return strcasecmp(header.first.c_str(), "Content-Type") == 0;
}

/// Whether the request goes on as a GET without its body.
bool becomesGet(long status, const std::string& method) {
  switch (status) {
    case 301:
    case 302:
      return method == "POST";
    case 303:
      return method != "HEAD";
    default:
      return false;
  }
}

}  // namespace

ZLVHTTPHop ZLVHTTPHop::first(ZLVURLRequest request) {
  ZLVHTTPHop hop{.method = std::move(request.HTTPMethod),
                 .headers = std::move(request.allHTTPHeaderFields),
                 .body = std::move(request.HTTPBody)};
  if (const auto& url = request.URL) {
    hop.url = {.text = url->absoluteString(), .scheme = url->scheme()};
    // libcurl would take the path of a URL without a host for one.
    const auto parsed = ZLVWebURL::parsed(hop.url.text);
    if (parsed && !url->host().empty()) hop.url = *parsed;
  }
  return hop;
}

std::optional<NSURLError> ZLVHTTPHop::refusal(bool allowsCleartext) const {
  if (url.text.empty()) return NSURLErrorBadURL;
  if (url.scheme != "http" && url.scheme != "https") return NSURLErrorUnsupportedURL;
  if (url.host.empty()) return NSURLErrorBadURL;
  if (url.scheme == "http" && (mustBeSecure || !(allowsCleartext || url.isLoopback()))) {
    return NSURLErrorAppTransportSecurityRequiresSecureConnection;
  }
  const bool isWellFormed = isToken(method) && std::ranges::all_of(headers, isHeader);
  return isWellFormed ? std::nullopt : std::optional(NSURLErrorBadURL);
}

bool ZLVHTTPHop::isRedirect(long status) {
  switch (status) {
    case 301:
    case 302:
    case 303:
    case 307:
    case 308:
      return true;
    default:
      return false;
  }
}

std::variant<ZLVHTTPHop, NSURLError> ZLVHTTPHop::redirected(long status,
                                                            const std::string& location) const {
  if (redirects == maximumRedirects) return NSURLErrorHTTPTooManyRedirects;
  const auto target = url.resolved(location);
  if (!target) return NSURLErrorRedirectToNonExistentLocation;

  ZLVHTTPHop next{*target, method, headers, body, redirects + 1, url.scheme == "https"};
  // What the host meant for one server, credentials among it, is not for another one.
  if (!url.hasSameOrigin(*target)) {
    std::erase_if(next.headers, [](const auto& header) { return !isContentType(header); });
  }
  if (becomesGet(status, method)) {
    next.method = "GET";
    next.body.reset();
    std::erase_if(next.headers, isContentType);
  }
  return next;
}
