#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include <ZolvaCheckoutKit/Platform/ZLVActivity.h>
#include <ZolvaCheckoutKit/Platform/ZLVOnce.h>
#include <ZolvaCheckoutKit/ZLVError.h>
#include <ZolvaCheckoutKit/ZLVMappable.h>

/// A completion: the one owner of a call's answer, made where the call begins and handed along.
///
/// It is moved from hand to hand and used up by `succeed` or `fail`, so nothing can answer twice.
/// Nothing can forget to answer either: an owner that goes away unused, through an exception or
/// because a backend lost its handler, answers from the main queue.
class ZLVCompletion {
 public:
  using Handler = ZLVOnce<void(std::shared_ptr<ZLVMappable>, std::optional<ZLVError>)>;

  /// `errorEvent`, which outlives this, is recorded before a failure is told.
  ZLVCompletion(Handler handler, std::string_view errorEvent) noexcept;
  ZLVCompletion(ZLVCompletion&&) noexcept = default;
  ZLVCompletion& operator=(ZLVCompletion&&) = delete;
  ~ZLVCompletion();

  /// Whether the call is still to be answered. Nobody need be listening.
  [[nodiscard]] bool isPending() const noexcept { return activity_.isUnderWay(); }

  /// Answers with the record, which is of the handler's type. Main thread.
  void succeed(std::shared_ptr<ZLVMappable> record) &&;

  /// Records the error event and answers with the error, even where the event cannot be recorded;
  /// that fault is thrown afterwards. Main thread.
  void fail(ZLVError error) &&;

  /// What to answer, without an event, if this goes away unused; `NSURLErrorCancelled`, with the
  /// error event, otherwise.
  void failWhenLetGo(ZLVError error) { failure_ = std::move(error); }

 private:
  Handler handler_;
  std::string_view errorEvent_;
  /// What the one who lets go of the completion already knows to be wrong.
  std::optional<ZLVError> failure_;
  ZLVActivity activity_;  // ends when the handler is called
};

/// A completion with the type of its record.
template <class Record>
class ZLVCompletionOf {
 public:
  /// Receives the answer on the main thread; may be null.
  using Handler = std::function<void(std::shared_ptr<Record>, std::optional<ZLVError>)>;

  /// The handler without the type, for a completion that will have it.
  static ZLVCompletion::Handler untyped(Handler handler) {
    if (!handler) return {};
    return [handler = std::move(handler)](std::shared_ptr<ZLVMappable> record,
                                          std::optional<ZLVError> error) {
      handler(std::static_pointer_cast<Record>(std::move(record)), std::move(error));
    };
  }

  /// Of a completion that was made with a handler of this type.
  explicit ZLVCompletionOf(ZLVCompletion completion) noexcept
      : completion_(std::move(completion)) {}

  /// Answers with the record. Main thread.
  void succeed(std::shared_ptr<Record> record) && {
    std::move(completion_).succeed(std::move(record));
  }

  /// Goes on without the type: whoever answers vouches for it.
  ZLVCompletion untyped() && { return std::move(completion_); }

 private:
  ZLVCompletion completion_;
};
