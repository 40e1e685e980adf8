#pragma once

#include <memory>

#include <ZolvaCheckoutKit/Core/Checkout/ZLVCompletion.h>
#include <ZolvaCheckoutKit/Platform/ZLVViewController.h>
#include <ZolvaCheckoutKit/ZLVAccountRecords.h>
#include <ZolvaCheckoutKit/ZLVTransactionRecords.h>

/// Decides from a server's answer whether the user must visit a page of the wallet, shows that page
/// and completes: at once when there is none to show, or when the page is gone. Main thread.
///
/// A status other than 201, or no list of actions, completes with the response. With status 201 the
/// last action of the wanted name gives the page; when it gives no URL to open, the completion
/// receives the error -1 of `ZLVCheckoutErrorDomain`, and records the operation's error event.
class ZLVCheckoutProcessor {
 public:
  ZLVCheckoutProcessor() = delete;

  static void processAccountLinkingWithResponse(
      std::shared_ptr<ZLVLinkAccountResponse> response,
      const std::shared_ptr<ZLVViewController>& viewController,
      ZLVCompletionOf<ZLVLinkAccountResult> completion);

  static void processCreateTransactionWithResponse(
      std::shared_ptr<ZLVTransactionResponse> response,
      const std::shared_ptr<ZLVViewController>& viewController,
      ZLVCompletionOf<ZLVTransactionResult> completion);
};
