#pragma once

#include <ZolvaCheckoutKit/Platform/ZLVOnce.h>
#include <ZolvaCheckoutKit/ZLVExport.h>

/// The host's main thread as the library sees it: blocks are put in from anywhere and run there.
class ZLV_EXPORT ZLVMainQueue {
 public:
  virtual ~ZLVMainQueue() = default;

  /// Runs `block` once on the main thread, later, in the order of the calls.
  ///
  /// Called on any thread, the main thread included, and from inside a running block. Must return
  /// without running the block and without waiting for the main thread. The queue owns the block
  /// until it has run; a block that never runs is destroyed with the queue, which is how the
  /// completions inside learn of it. What a block throws is not the library's: it must leave the
  /// queue towards the host's run loop, with the queue still usable.
  virtual void dispatch(ZLVOnce<void()> block) = 0;
};
