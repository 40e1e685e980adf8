#pragma once

#include <utility>
#include <vector>

#include <curl/curl.h>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlHandles.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlOptions.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlSockets.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlSystem.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVTrustStore.h>

/// What a session's calls have in common. Used on the session's thread.
struct ZLVCurlContext {
  explicit ZLVCurlContext(ZLVCurlOptions host)
      : options(std::move(host)), trust(options.CAFile, options.authorities) {}

  const ZLVCurlOptions options;
  ZLVTrustStore trust;
  ZLVReadiness readiness;
  ZLVCurlSockets sockets{readiness};
  ZLVCurlHandles handles;
  CURLSH* share = nullptr;  ///< Cookies and TLS sessions.
  std::vector<CURL*> sent;  ///< Whose request has gone out, since the loop looked.
};
