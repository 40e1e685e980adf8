// Where a redirect leads, and what of a URL may be shown. The lines of the input: the URL of a
// request, and then the Location headers that it is redirected by, one after the other.

#include <algorithm>
#include <array>
#include <memory>

#include <curl/curl.h>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVHTTPHop.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVWebURL.h>
#include <ZolvaCheckoutKit/ZLVURL.h>

#include "Tests/Fuzz/Fuzz.h"

namespace {

/// Whether libcurl finds a user name or a password in a URL.
bool hasCredentials(const std::string& text) {
  const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> url(curl_url(), &curl_url_cleanup);
  curl_url_set(url.get(), CURLUPART_URL, text.c_str(), CURLU_NON_SUPPORT_SCHEME);
  return std::ranges::any_of(std::array{CURLUPART_USER, CURLUPART_PASSWORD}, [&](CURLUPart part) {
    char* value = nullptr;
    const bool has = curl_url_get(url.get(), part, &value, 0) == CURLUE_OK;
    curl_free(value);
    return has;
  });
}

void check(const ZLVWebURL& url) {
  if (url.scheme != "http" && url.scheme != "https") return;  // goes no further
  promise(!hasCredentials(ZLVWebURL::withoutCredentials(url.text)),
          "A URL is shown without its credentials.", url.text);
  const auto again = ZLVWebURL::parsed(url.text);
  promise(again && again->hasSameOrigin(url) && again->isLoopback() == url.isLoopback(),
          "What is decided about is what is sent to.", url.text);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto lines = linesOf(textOf(data, size));
  const auto url = ZLVURL::URLWithString(lines[0]);
  const auto start = ZLVWebURL::parsed(lines[0]);
  if (!url || url->host().empty() || !start) return 0;
  check(*start);

  ZLVHTTPHop hop{.url = *start,
                 .method = "POST",
                 .headers = {{"Authorization", "secret"}, {"Content-Type", "text/plain"}},
                 .body = "{}"};
  for (std::size_t i = 1; i < lines.size(); ++i) {
    const auto result = hop.redirected(i % 2 == 0 ? 307 : 302, lines[i]);
    const auto* next = std::get_if<ZLVHTTPHop>(&result);
    if (next == nullptr) return 0;
    check(next->url);
    const bool hasSecret = std::ranges::any_of(
        next->headers, [](const auto& header) { return header.first == "Authorization"; });
    promise(!hasSecret || next->url.hasSameOrigin(*start), "Headers stay with their origin.",
            lines[i]);
    promise(next->mustBeSecure == (hop.url.scheme == "https"), "https does not become http.",
            lines[i]);
    promise((next->method == "POST") == next->body.has_value(), "A body stays with its method.",
            lines[i]);
    if (next->mustBeSecure && next->url.scheme != "https") return 0;  // goes no further
    hop = *next;
  }
  return 0;
}
