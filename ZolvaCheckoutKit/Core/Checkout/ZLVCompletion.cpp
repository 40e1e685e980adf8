#include <exception>
#include <string>

#include <ZolvaCheckoutKit/Core/Analytics/ZLVAnalyticsTracker.h>
#include <ZolvaCheckoutKit/Core/Checkout/ZLVCompletion.h>
#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>

namespace {

ZLVError abandonedError() {
  return ZLVError::errorWithDomain(NSURLErrorDomain, NSURLErrorCancelled,
                                   ZLVErrorText("The call ended before it was answered."));
}

void recordAndAnswer(ZLVCompletion::Handler handler, std::string_view errorEvent, ZLVError error) {
  std::exception_ptr fault;
  try {
    ZLVAnalyticsTracker::shared().trackEventName(errorEvent, error.debugDescription());
  } catch (...) {
    fault = std::current_exception();
  }
  std::move(handler)(nullptr, std::move(error));
  if (fault) std::rethrow_exception(fault);
}

}  // namespace

ZLVCompletion::ZLVCompletion(Handler handler, std::string_view errorEvent) noexcept
    : handler_(std::move(handler)), errorEvent_(errorEvent) {}

ZLVCompletion::~ZLVCompletion() {
  if (!isPending()) return;
  // Without this owner in the block: a queue that is destroyed with the block asks no more.
  ZLVPlatform::installed().mainQueue->dispatch([handler = std::move(handler_), event = errorEvent_,
                                                failure = std::move(failure_)]() mutable {
    if (!failure) return recordAndAnswer(std::move(handler), event, abandonedError());
    std::move(handler)(nullptr, std::move(failure));
  });
}

void ZLVCompletion::succeed(std::shared_ptr<ZLVMappable> record) && {
  activity_.end();
  std::move(handler_)(std::move(record), std::nullopt);
}

void ZLVCompletion::fail(ZLVError error) && {
  activity_.end();
  recordAndAnswer(std::move(handler_), errorEvent_, std::move(error));
}
