#pragma once

#include <memory>

#include <ZolvaCheckoutKit/Platform/Curl/Internal/ZLVCurlLoop.h>

/// The loops of this process and what they have in common: libcurl, and the end of the process.
///
/// Sessions may live until the process exits. libcurl and the TLS library below must not be in use
/// any more when their own exit handlers run, so the threads are ended before.
class ZLVCurlLoops {
 public:
  /// Starts the loop, if it has not been, and keeps it until `stop`; does not start it while the
  /// process exits. False when there is no thread to be had.
  static bool start(const std::shared_ptr<ZLVCurlLoop>& loop);

  /// Cancels the loop and lets it go, except while the process exits. Any thread.
  static void stop(const std::shared_ptr<ZLVCurlLoop>& loop);

  /// Initialises libcurl, once for all threads that call this.
  static void setUpLibrary();

 private:
  static void abandonAll();
};
