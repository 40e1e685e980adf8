#include <utility>

#include <ZolvaCheckoutKit/Platform/Curl/Internal/ZLVCurlLoop.h>
#include <ZolvaCheckoutKit/Platform/Curl/Internal/ZLVCurlLoops.h>
#include <ZolvaCheckoutKit/Platform/Curl/Internal/ZLVCurlSession.h>

ZLVCurlSession::ZLVCurlSession(ZLVCurlConfiguration configuration,
                               std::optional<std::string> CAFile)
    : loop_(std::make_shared<ZLVCurlLoop>(std::move(configuration), std::move(CAFile))) {
  ZLVCurlLoops::start(loop_);
}

ZLVCurlSession::~ZLVCurlSession() { ZLVCurlLoops::stop(loop_); }

void ZLVCurlSession::dataTask(ZLVURLRequest request, CompletionHandler handler) {
  // Again, where there was no thread to be had before. Without one the handler is let go of.
  if (ZLVCurlLoops::start(loop_))
    loop_->add(std::make_unique<ZLVCurlTransfer>(std::move(request), std::move(handler)));
}
