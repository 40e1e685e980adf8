#include <optional>
#include <string_view>
#include <utility>

#include <ZolvaCheckoutKit/Core/Analytics/ZLVAnalyticsTracker.h>
#include <ZolvaCheckoutKit/Core/Checkout/ZLVCheckoutProcessor.h>
#include <ZolvaCheckoutKit/Core/Checkout/ZLVWebViewController.h>
#include <ZolvaCheckoutKit/ZLVError.h>
#include <ZolvaCheckoutKit/ZLVURL.h>

namespace {

/// What differs between the two ways through the processor.
struct Flow {
  std::string_view actionName;
  std::optional<std::string_view> passThroughEvent;
  std::string_view openedEvent;
  std::string_view closedEvent;
};

constexpr Flow accountLinking{
    .actionName = "activation-deeplink",
    .passThroughEvent = ZLVEvent::linkAccountSuccess,
    .openedEvent = ZLVEvent::linkAccountWebviewOpened,
    .closedEvent = ZLVEvent::linkAccountSuccess,
};
constexpr Flow charge{
    .actionName = "user-verification",
    .passThroughEvent = std::nullopt,
    .openedEvent = ZLVEvent::createTransactionWebviewOpened,
    .closedEvent = ZLVEvent::createTransactionSuccess,
};

constexpr std::int64_t statusNeedsAction = 201;

ZLVError missingURLError() {
  return ZLVError::errorWithDomain(ZLVCheckoutErrorDomain, -1, {{"Error message", "url is null"}});
}

/// The URL of the last action of that name, even where an earlier one had a better URL.
template <class Action>
std::optional<ZLVURL> lastURL(const std::vector<std::shared_ptr<Action>>& actions,
                              std::string_view name) {
  std::optional<ZLVURL> url;
  for (const auto& action : actions) {
    if (action->name().text() != name) continue;
    const auto text = action->url().text();
    url = text ? ZLVURL::URLWithString(*text) : std::nullopt;
  }
  return url;
}

/// What an answer asks for.
struct Page {
  bool isWanted = false;
  std::optional<ZLVURL> URL;
};

template <class Response>
Page pageOf(const Response& response, std::string_view actionName) {
  if (response.statusCode().integerValue() != statusNeedsAction || !response.actions()) return {};
  return {.isWanted = true, .URL = lastURL(*response.actions(), actionName)};
}

void process(const Flow& flow, std::shared_ptr<ZLVMappable> response, const Page& page,
             const std::shared_ptr<ZLVViewController>& viewController, ZLVCompletion completion) {
  auto& tracker = ZLVAnalyticsTracker::shared();
  if (!page.isWanted) {
    if (flow.passThroughEvent) tracker.trackEventName(*flow.passThroughEvent);
    return std::move(completion).succeed(std::move(response));
  }

  // Shared because the browser's callback is copyable; whoever calls it first uses it up.
  auto pending = std::make_shared<ZLVCompletion>(std::move(completion));
  std::shared_ptr<ZLVWebViewController> browser;
  if (page.URL) {
    browser = ZLVWebViewController::initWithURL(*page.URL, [pending, response, &flow] {
      if (!pending->isPending()) return;
      auto owner = std::move(*pending);
      ZLVAnalyticsTracker::shared().trackEventName(flow.closedEvent);
      std::move(owner).succeed(response);
    });
  }
  if (browser == nullptr) return std::move(*pending).fail(missingURLError());
  browser->setModalPresentationStyle(ZLVModalPresentationStyle::FullScreen);
  tracker.trackEventName(flow.openedEvent);
  if (viewController != nullptr) viewController->presentViewController(std::move(browser), true);
}

}  // namespace

void ZLVCheckoutProcessor::processAccountLinkingWithResponse(
    std::shared_ptr<ZLVLinkAccountResponse> response,
    const std::shared_ptr<ZLVViewController>& viewController,
    ZLVCompletionOf<ZLVLinkAccountResult> completion) {
  const auto page = pageOf(*response, accountLinking.actionName);
  process(accountLinking, std::move(response), page, viewController,
          std::move(completion).untyped());
}

void ZLVCheckoutProcessor::processCreateTransactionWithResponse(
    std::shared_ptr<ZLVTransactionResponse> response,
    const std::shared_ptr<ZLVViewController>& viewController,
    ZLVCompletionOf<ZLVTransactionResult> completion) {
  const auto page = pageOf(*response, charge.actionName);
  process(charge, std::move(response), page, viewController, std::move(completion).untyped());
}
