#pragma once

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlContext.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlHandle.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVHTTPHop.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVIdleLimit.h>

/// The options by which libcurl makes one hop and nothing beyond.
namespace ZLVCurlHopOptions {

/// Tells `handle` where to go, by which connection, and what to send. It refers to `hop` and
/// `context` from then on.
void set(ZLVCurlHandle& handle, const ZLVHTTPHop& hop, const ZLVCurlContext& context,
         ZLVIdleLimit::Clock::duration timeToConnect);

}  // namespace ZLVCurlHopOptions
