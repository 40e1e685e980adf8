#include <utility>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlLifetime.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlLoop.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlSession.h>

ZLVCurlSession::ZLVCurlSession(ZLVCurlOptions options)
    : loop_(std::make_shared<ZLVCurlLoop>(std::move(options))) {
  ZLVCurlLifetime::start(loop_);
}

ZLVCurlSession::~ZLVCurlSession() { ZLVCurlLifetime::stop(loop_); }

void ZLVCurlSession::dataTask(ZLVURLRequest request, CompletionHandler handler) {
  // Again, where there was no thread to be had before. Without one the handler is let go of.
  if (ZLVCurlLifetime::start(loop_))
    loop_->add(std::make_unique<ZLVCurlTransfer>(std::move(request), std::move(handler)));
}
