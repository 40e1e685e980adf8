#pragma once

#include <chrono>
#include <functional>
#include <utility>

#include <ZolvaCheckoutKit/ZLVExport.h>

/// Something that the library has under way: a call until its completion runs, the page that it
/// shows included, or a usage event until its upload has ended. Counted from its construction to
/// its end.
class ZLV_EXPORT ZLVActivity {
 public:
  /// Begins it. Any thread.
  ZLVActivity() noexcept;
  /// Takes over what `other` counts, which then is not under way any more.
  ZLVActivity(ZLVActivity&& other) noexcept
      : isUnderWay_(std::exchange(other.isUnderWay_, false)) {}
  ZLVActivity& operator=(ZLVActivity&&) = delete;
  /// Ends it. Any thread.
  ~ZLVActivity() { end(); }

  /// Ends it before its destruction. Any thread.
  void end() noexcept;
  /// Whether it still counts: neither ended nor moved away.
  [[nodiscard]] bool isUnderWay() const noexcept { return isUnderWay_; }

  /// Serves the main queue until `limit` is over or a block has run, whichever is first.
  using Turn = std::function<void(std::chrono::milliseconds limit)>;

  /// Takes turns until nothing is under way and nothing is queued that was put in by then; false
  /// when `limit` is over first. Whatever a completion starts is waited for as well. For a host
  /// with a main loop of its own; the platforms have a `runUntilIdle` that brings the turns along.
  /// Main thread, also from inside a completion.
  static bool runUntilIdle(std::chrono::milliseconds limit, const Turn& turn);

 private:
  bool isUnderWay_ = true;
};
