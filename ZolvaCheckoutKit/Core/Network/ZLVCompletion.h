#pragma once

#include <optional>
#include <utility>

#include <ZolvaCheckoutKit/Platform/ZLVOnce.h>
#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>
#include <ZolvaCheckoutKit/ZLVError.h>

/// The one owner of a call's completion, on the road from the call to its answer.
///
/// It is moved from hand to hand and used up by `succeed` or `fail`, so nothing can answer twice.
/// Nothing can forget to answer either: an owner that goes away unused, through an exception or
/// because a backend lost its handler, answers with `NSURLErrorCancelled` from the main queue.
template <class Result>
class ZLVCompletion {
 public:
  using Handler = ZLVOnce<void(Result, std::optional<ZLVError>)>;

  explicit ZLVCompletion(Handler handler) noexcept : handler_(std::move(handler)) {}
  ZLVCompletion(ZLVCompletion&&) noexcept = default;
  ZLVCompletion& operator=(ZLVCompletion&&) = delete;
  ~ZLVCompletion() {
    if (!handler_) return;
    ZLVPlatform::installed("completion")
        .mainQueue->dispatch([handler = std::move(handler_)]() mutable {
          std::move(handler)(Result{}, abandonedError());
        });
  }

  /// Whether there is anyone left to answer.
  explicit operator bool() const noexcept { return static_cast<bool>(handler_); }

  void succeed(Result result) && { std::move(handler_)(std::move(result), std::nullopt); }
  void fail(ZLVError error) && { std::move(handler_)(Result{}, std::move(error)); }

 private:
  static ZLVError abandonedError() {
    return ZLVError::errorWithDomain(
        NSURLErrorDomain, NSURLErrorCancelled,
        {{std::string(NSLocalizedDescriptionKey), "The call ended before it was answered."}});
  }

  Handler handler_;
};
