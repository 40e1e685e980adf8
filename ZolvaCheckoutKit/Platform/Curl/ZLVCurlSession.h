#pragma once

#include <memory>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlOptions.h>
#include <ZolvaCheckoutKit/Platform/ZLVURLSession.h>

class ZLVCurlLoop;

/// Sends HTTP requests with libcurl, on a thread of its own on which the handlers are called. May
/// be destroyed in a handler.
class ZLVCurlSession final : public ZLVURLSession {
 public:
  explicit ZLVCurlSession(ZLVCurlOptions options);
  ZLVCurlSession(const ZLVCurlSession&) = delete;
  ZLVCurlSession& operator=(const ZLVCurlSession&) = delete;
  ~ZLVCurlSession() override;

  void dataTask(ZLVURLRequest request, CompletionHandler handler) override;

 private:
  std::shared_ptr<ZLVCurlLoop> loop_;
};
