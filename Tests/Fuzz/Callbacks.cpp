// Callback URLs while a page is shown. The lines of the input: what lies between the window and the
// page, "p" a presented controller, "n" a navigation controller, and "c" for a charge rather than a
// link; the configured callback URL; the page's URL; then the URLs that the application is asked to
// open.

#include <algorithm>
#include <span>

#include "Tests/Fuzz/Fuzz.h"
#include "Tests/Support/FakePlatform.h"
#include "ZolvaCheckoutKit/Core/Values/ZLVText.h"

namespace {

FakePlatform& platform() {
  static auto& installed = *new FakePlatform;  // as long as the process, like the library
  return installed;
}

/// A fresh window, and over it what the steps say; the topmost controller.
std::shared_ptr<ZLVViewController> presenterBehind(std::string_view steps) {
  auto presenter = std::make_shared<ZLVViewController>();
  platform().ui->root = presenter;
  for (const char step : steps) {
    if (step != 'p' && step != 'n') continue;
    auto next = std::make_shared<ZLVViewController>();
    const auto stack = std::make_shared<ZLVNavigationController>();
    if (step == 'n') stack->pushViewController(next);
    presenter->presentViewController(step == 'n' ? stack : next, false);
    presenter = next;
  }
  return presenter;
}

/// Starts a link or a charge and answers it with a page.
void call(bool isCharge, const std::shared_ptr<ZLVViewController>& presenter,
          const std::string& page, const auto& completion) {
  if (isCharge) {
    ZLVClient::createTransactionWithPaymentType(
        "zolva", presenter, ZLVZolvaDetails::initWithAccountID("acc", "tok"),
        ZLVTransactionDetails::initWithGrossAmount(10000, "o-1", "EUR"),
        ZLVCustomerDetails::initWithPhoneNumber("5550123", "Ada", "L", "a@b.c"), {}, completion);
  } else {
    ZLVClient::linkAccountWithPaymentType(
        "zolva", ZLVPartnerDetails::initWithPhoneNumber("5550123", "1"), presenter, completion);
  }
  const auto* name = isCharge ? "user-verification" : "activation-deeplink";
  const ZLVDictionary answer{{"status_code", "201"},
                             {"actions", ZLVArray{ZLVDictionary{{"name", name}, {"url", page}}}}};
  platform().session.merchant.back().answer(201, *ZLVJSONSerialization::dataWithJSONObject(answer));
  platform().queue->drain();
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto lines = linesOf(textOf(data, size), 3);
  const auto& shape = lines[0];
  const auto& callback = lines[1];
  const auto& page = lines[2];
  if (!ZLVIsUTF8(page)) return 0;  // no answer can hold it

  auto& journal = platform().ui->journal;
  auto& browser = platform().ui->browser;
  browser = nullptr;
  platform().session = {};
  journal.clear();
  ZLVClient::initWithMerchantServerURL("https://shop.test/pay/", "M1", callback, false);
  int answers = 0;
  bool hasRecord = false;
  call(shape.find('c') != std::string::npos, presenterBehind(std::string_view(shape).substr(0, 8)),
       page, [&](const auto& record, const std::optional<ZLVError>& error) {
         promise((record == nullptr) == error.has_value(), "An answer is a record or an error.",
                 page);
         promise(!error || error->domain() == ZLVCheckoutErrorDomain,
                 "Only the page can be missing.", page);
         hasRecord = record != nullptr;
         ++answers;
       });

  const auto url = ZLVURL::URLWithString(page);
  const bool isWebPage = url && (url->scheme() == "http" || url->scheme() == "https");
  promise((browser != nullptr) == isWebPage, "A web page is shown.", page);
  bool isOpen = isWebPage;
  promise(answers == (isOpen ? 0 : 1), "A shown page waits for the user.", page);
  for (const auto& line : std::span(lines).subspan(3)) {
    const auto opened = ZLVURL::URLWithString(line);
    if (!opened) continue;
    ZLVClient::handleCallbackUrl(*opened);
    platform().queue->drain();
    if (!callback.empty() && line.find(callback) != std::string::npos) isOpen = false;
    promise(answers == (isOpen ? 0 : 1), "The callback URL, and it alone, closes the page.", line);
  }
  if (isOpen) std::move(browser->closed)();
  platform().queue->drain();
  promise(answers == 1, "A call is answered once.", std::to_string(answers));
  promise(hasRecord == isWebPage, "A page that was shown succeeds.", callback);
  const auto isHiding = [](const auto& note) { return note.starts_with("hide "); };
  promise(std::ranges::count_if(journal, isHiding) == (isWebPage ? 1 : 0),
          "A page is taken off the screen once.", callback);
  return 0;
}
