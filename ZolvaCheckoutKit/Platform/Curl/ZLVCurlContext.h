#pragma once

#include <utility>

#include <curl/curl.h>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlOptions.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlSockets.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVTrustStore.h>

/// What a session's calls have in common. Used on the session's thread.
struct ZLVCurlContext {
  explicit ZLVCurlContext(ZLVCurlOptions host) : options(std::move(host)), trust(options.CAFile) {}

  const ZLVCurlOptions options;
  ZLVTrustStore trust;
  ZLVCurlSockets sockets;
  CURLSH* share = nullptr;  ///< Cookies and TLS sessions.
};
