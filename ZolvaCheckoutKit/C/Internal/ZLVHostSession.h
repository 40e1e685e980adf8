#pragma once

#include <ZolvaCheckoutKit/C/Internal/ZLVHost.h>
#include <ZolvaCheckoutKit/Platform/ZLVURLSession.h>

/// The HTTP session as the host's `send` has it.
class ZLVHostSession final : public ZLVURLSession {
 public:
  explicit ZLVHostSession(const ZLVHost& host) : host_(host) {}

  void dataTask(ZLVURLRequest request, CompletionHandler handler) override;

 private:
  const ZLVHost& host_;
};
