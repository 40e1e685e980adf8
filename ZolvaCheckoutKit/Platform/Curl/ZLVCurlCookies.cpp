#include <cstddef>
#include <cstring>
#include <memory>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlCookies.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlHandle.h>

namespace {

/// libcurl itself keeps any number of cookies, and looks at all of a server's for each call.
constexpr std::size_t maximumCookies = 100;
constexpr std::size_t maximumCookieSize = std::size_t{64} * 1024;  // of all together

}  // namespace

void ZLVCurlCookies::limit(CURL* handle) {
  constexpr unsigned int anywhere = CURLH_HEADER | CURLH_TRAILER | CURLH_1XX;
  curl_header* set = nullptr;
  if (curl_easy_header(handle, "Set-Cookie", 0, anywhere, -1, &set) != CURLHE_OK) return;

  curl_slist* list = nullptr;
  curl_easy_getinfo(handle, CURLINFO_COOKIELIST, &list);
  const std::unique_ptr<curl_slist, ZLVCurlHandle::Cleanup> owner(list);
  std::size_t count = 0;
  std::size_t size = 0;
  for (const auto* cookie = list; cookie != nullptr; cookie = cookie->next) {
    ++count;
    size += std::strlen(cookie->data);
  }
  if (count <= maximumCookies && size <= maximumCookieSize) return;
  curl_easy_setopt(handle, CURLOPT_COOKIELIST, "ALL");
  for (const auto* cookie = list; cookie != nullptr; cookie = cookie->next) {
    if (count <= maximumCookies && size <= maximumCookieSize) {
      curl_easy_setopt(handle, CURLOPT_COOKIELIST, cookie->data);
    } else {
      --count;
      size -= std::strlen(cookie->data);
    }
  }
}
