#pragma once

#include <memory>
#include <optional>
#include <string>

#include <ZolvaCheckoutKit/Platform/Curl/Internal/ZLVCurlTransfer.h>
#include <ZolvaCheckoutKit/Platform/ZLVURLSession.h>

class ZLVCurlLoop;

/// Sends HTTP requests with libcurl, on a thread of its own on which the handlers are called. May
/// be destroyed in a handler.
class ZLVCurlSession final : public ZLVURLSession {
 public:
  ZLVCurlSession(ZLVCurlConfiguration configuration, std::optional<std::string> CAFile);
  ZLVCurlSession(const ZLVCurlSession&) = delete;
  ZLVCurlSession& operator=(const ZLVCurlSession&) = delete;
  ~ZLVCurlSession() override;

  void dataTask(ZLVURLRequest request, CompletionHandler handler) override;

 private:
  std::shared_ptr<ZLVCurlLoop> loop_;
};
