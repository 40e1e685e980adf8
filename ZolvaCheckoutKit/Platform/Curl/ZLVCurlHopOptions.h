#pragma once

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlContext.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlHandle.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVHTTPHop.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVIdleLimit.h>

/// The options by which libcurl makes one hop and nothing beyond.
namespace ZLVCurlHopOptions {

/// Sets those that are the same for every hop, by `set(option, value)`.
template <class Set>
void setFixed(const Set& set, const ZLVTrustStore& trust) {
  set(CURLOPT_PROTOCOLS_STR, "http,https");
  set(CURLOPT_PATH_AS_IS, 1L);
  set(CURLOPT_ACCEPT_ENCODING, "");
  set(CURLOPT_COOKIEFILE, "");
  set(CURLOPT_NOSIGNAL, 1L);
  // A name that is still being looked up must not hold up the session's thread.
  set(CURLOPT_QUICK_EXIT, 1L);
  set(CURLOPT_TCP_KEEPALIVE, 1L);
  set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  const auto orNone = [](const std::string& path) { return path.empty() ? nullptr : path.c_str(); };
  if (trust.folder()) set(CURLOPT_CAPATH, orNone(*trust.folder()));
  set(CURLOPT_CAINFO, orNone(trust.file()));
}

/// Tells `handle` where to go, by which connection, and what to send. It refers to `hop` and
/// `context` from then on, and connects no longer than it may be `idle`.
void set(ZLVCurlHandle& handle, const ZLVHTTPHop& hop, const ZLVCurlContext& context,
         ZLVIdleLimit::Clock::duration idle);

}  // namespace ZLVCurlHopOptions
