#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include <ZolvaCheckoutKit/Platform/ZLVActivity.h>
#include <ZolvaCheckoutKit/Platform/ZLVOnce.h>
#include <ZolvaCheckoutKit/ZLVError.h>
#include <ZolvaCheckoutKit/ZLVMappable.h>

/// What a completion is beside the type of its record.
class ZLVPendingAnswer {
 public:
  using Handler = ZLVOnce<void(std::shared_ptr<ZLVMappable>, std::optional<ZLVError>)>;

  ZLVPendingAnswer(Handler handler, std::string_view errorEvent) noexcept;
  ZLVPendingAnswer(ZLVPendingAnswer&&) noexcept = default;
  ZLVPendingAnswer& operator=(ZLVPendingAnswer&&) = delete;
  ~ZLVPendingAnswer();

  /// Whether the call is still to be answered. Nobody need be listening.
  [[nodiscard]] bool isPending() const noexcept { return activity_.isUnderWay(); }

  void succeed(std::shared_ptr<ZLVMappable> record) &&;
  void fail(ZLVError error) &&;
  void failWhenLetGo(ZLVError error) { failure_ = std::move(error); }

 private:
  Handler handler_;
  std::string_view errorEvent_;
  /// What the one who lets go of the completion already knows to be wrong.
  std::optional<ZLVError> failure_;
  ZLVActivity activity_;  // ends when the handler is called
};

/// The one owner of a call's answer, made where the call begins and handed along from there.
///
/// It is moved from hand to hand and used up by `succeed` or `fail`, so nothing can answer twice.
/// Nothing can forget to answer either: an owner that goes away unused, through an exception or
/// because a backend lost its handler, answers from the main queue.
template <class Record>
class ZLVCompletion {
 public:
  /// Receives the answer on the main thread; may be null.
  using Handler = ZLVOnce<void(std::shared_ptr<Record>, std::optional<ZLVError>)>;

  /// `errorEvent`, which outlives the completion, is recorded before a failure is told.
  ZLVCompletion(Handler handler, std::string_view errorEvent)
      : answer_(
            [handler = std::move(handler)](std::shared_ptr<ZLVMappable> record,
                                           std::optional<ZLVError> error) mutable {
              std::move(handler)(std::static_pointer_cast<Record>(std::move(record)),
                                 std::move(error));
            },
            errorEvent) {}

  /// Whether the call is still to be answered.
  explicit operator bool() const noexcept { return answer_.isPending(); }

  /// Answers with the record. Main thread.
  void succeed(std::shared_ptr<Record> record) && { std::move(answer_).succeed(std::move(record)); }

  /// Records the error event and answers with the error, even where the event cannot be recorded;
  /// that fault is thrown afterwards. Main thread.
  void fail(ZLVError error) && { std::move(answer_).fail(std::move(error)); }

  /// What to answer, without an event, if this goes away unused; `NSURLErrorCancelled`, with the
  /// error event, otherwise.
  void failWhenLetGo(ZLVError error) { answer_.failWhenLetGo(std::move(error)); }

 private:
  ZLVPendingAnswer answer_;
};
