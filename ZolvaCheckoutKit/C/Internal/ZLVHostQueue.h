#pragma once

#include <ZolvaCheckoutKit/C/Internal/ZLVHost.h>
#include <ZolvaCheckoutKit/Platform/ZLVMainQueue.h>

/// The main queue as the host's `dispatch` has it.
class ZLVHostQueue final : public ZLVMainQueue {
 public:
  explicit ZLVHostQueue(const ZLVHost& host) : host_(host) {}

  void dispatch(ZLVOnce<void()> block) override;

 private:
  const ZLVHost& host_;
};
