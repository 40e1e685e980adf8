#pragma once

#include <memory>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlLoop.h>

/// How long libcurl and the sessions' loops live in this process.
///
/// Sessions may live until the process exits. libcurl and the TLS library below must not be in use
/// any more when their own exit handlers run, so the threads are ended before.
namespace ZLVCurlLifetime {

/// Starts the loop, if it has not been, and keeps it until `stop`; does not start it while the
/// process exits. False when there is no thread to be had. Any thread.
bool start(const std::shared_ptr<ZLVCurlLoop>& loop);

/// Cancels the loop and lets it go, except while the process exits. Any thread.
void stop(const std::shared_ptr<ZLVCurlLoop>& loop);

/// Initialises libcurl, once for all threads that call this.
void setUpLibrary();

}  // namespace ZLVCurlLifetime
