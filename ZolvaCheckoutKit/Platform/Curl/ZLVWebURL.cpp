#include <algorithm>
#include <memory>
#include <tuple>

#include <arpa/inet.h>
#include <curl/curl.h>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVWebURL.h>

namespace {

constexpr unsigned int parsing = CURLU_NON_SUPPORT_SCHEME | CURLU_PATH_AS_IS;

using Handle = std::shared_ptr<CURLU>;

Handle makeHandle(const std::string& text) {
  Handle handle(curl_url(), &curl_url_cleanup);
  if (curl_url_set(handle.get(), CURLUPART_URL, text.c_str(), parsing) != CURLUE_OK) handle.reset();
  return handle;
}

std::string part(const Handle& handle, CURLUPart part) {
  char* text = nullptr;
  if (curl_url_get(handle.get(), part, &text, CURLU_DEFAULT_PORT) != CURLUE_OK) return {};
  const std::unique_ptr<char, decltype(&curl_free)> owner(text, &curl_free);
  return text;
}

std::string lowerCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](char c) {
    return static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  });
  return text;
}

ZLVWebURL taken(Handle handle, std::string text) {
  ZLVWebURL url{std::move(text), lowerCase(part(handle, CURLUPART_SCHEME)),
                lowerCase(part(handle, CURLUPART_HOST)), part(handle, CURLUPART_PORT)};
  url.parts = std::move(handle);
  return url;
}

}  // namespace

std::optional<ZLVWebURL> ZLVWebURL::parsed(const std::string& text) {
  auto handle = makeHandle(text);
  if (!handle) return std::nullopt;
  return taken(std::move(handle), text);
}

std::optional<ZLVWebURL> ZLVWebURL::resolved(const std::string& location) const {
  const Handle handle = makeHandle(text);
  if (!handle || curl_url_set(handle.get(), CURLUPART_URL, location.c_str(),
                              parsing | CURLU_URLENCODE) != CURLUE_OK) {
    return std::nullopt;
  }
  auto target = taken(handle, part(handle, CURLUPART_URL));
  // A host that was escaped twice is still escaped in the text.
  if (target.scheme == "http" || target.scheme == "https") return parsed(target.text);
  // Another application's URL stays as it was sent; libcurl would give it a path.
  target.text = location;
  return target;
}

bool ZLVWebURL::hasSameOrigin(const ZLVWebURL& other) const {
  return std::tie(scheme, host, port) == std::tie(other.scheme, other.host, other.port);
}

bool ZLVWebURL::isLoopback() const {
  if (host == "localhost") return true;
  in_addr address4{};
  if (inet_pton(AF_INET, host.c_str(), &address4) == 1) return ntohl(address4.s_addr) >> 24 == 127;
  if (host.size() < 2 || host.front() != '[') return false;
  in6_addr address6{};
  return inet_pton(AF_INET6, host.substr(1, host.size() - 2).c_str(), &address6) == 1 &&
         IN6_IS_ADDR_LOOPBACK(&address6);
}

std::string ZLVWebURL::withoutCredentials(std::string text) {
  const auto start = text.find("//");
  if (start == std::string::npos) return text;
  const auto end = std::min(text.find_first_of("/?#", start + 2), text.size());
  const auto at = text.rfind('@', end);
  if (at != std::string::npos && at > start) text.erase(start + 2, at + 1 - (start + 2));
  return text;
}
