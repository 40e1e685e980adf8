#pragma once

#include <curl/curl.h>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlContext.h>

/// The certificate authorities as libcurl keeps them for all connections of a multi handle. It
/// reads them, which takes 20 ms, when the first secure connection is made, and has no call to do
/// so before.
namespace ZLVCurlAuthorities {

/// Has `multi` read them: begins to speak TLS with nobody, on this machine, and leaves it at that.
/// Meanwhile libcurl does what else is due. Where that fails, the first connection reads them.
void read(CURLM* multi, ZLVCurlContext& context);

}  // namespace ZLVCurlAuthorities
