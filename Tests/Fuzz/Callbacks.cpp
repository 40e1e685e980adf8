// Callback URLs while a page is shown. The lines of the input: what lies between the window and the
// page, "p" a presented controller, "n" a navigation controller, and "c" for a charge rather than a
// link; the configured callback URL; the page's URL; then the URLs that the application is asked to
// open.

#include <algorithm>

#include "Tests/Fuzz/Fuzz.h"
#include "Tests/Support/FakePlatform.h"
#include "ZolvaCheckoutKit/Core/Helpers/ZLVText.h"

namespace {

/// One call, from a fresh window to its answer.
class Flow {
 public:
  Flow(const std::string& shape, std::string callback)
      : callback_(std::move(callback)), isCharge_(shape.find('c') != std::string::npos) {
    platform_.session = {};
    platform_.ui->journal.clear();
    platform_.ui->browser = nullptr;
    platform_.ui->root = std::make_shared<ZLVViewController>();
    ZLVClient::initWithMerchantServerURL("https://shop.test/pay/", "M1", callback_, false);
    auto presenter = platform_.ui->root;
    for (const char step : std::string_view(shape).substr(0, 8)) {
      if (step == 'p') presenter = shownOver(*presenter, std::make_shared<ZLVViewController>());
      if (step == 'n') {
        const auto stack = std::make_shared<ZLVNavigationController>();
        stack->pushViewController(std::make_shared<ZLVViewController>());
        shownOver(*presenter, stack);
        presenter = stack->childViewControllers().back();
      }
    }
    isCharge_ ? charge(presenter) : link(presenter);
  }

  void answerWithPage(const std::string& page) {
    const auto body = ZLVJSONSerialization::dataWithJSONObject(ZLVDictionary{
        {"status_code", "201"},
        {"actions",
         ZLVArray{ZLVDictionary{{"name", isCharge_ ? "user-verification" : "activation-deeplink"},
                                {"url", page}}}}});
    const auto url = ZLVURL::URLWithString(page);
    const bool isWebPage = url && (url->scheme() == "http" || url->scheme() == "https");
    platform_.session.merchant.back().answer(201, *body);
    platform_.queue->drain();
    promise((platform_.ui->browser != nullptr) == isWebPage, "A web page is shown.", page);
    promise(answers_ == (isWebPage ? 0 : 1), "A shown page waits for the user.", page);
    isOpen_ = isWebPage;
  }

  void open(const std::string& text) {
    const auto url = ZLVURL::URLWithString(text);
    if (!url) return;
    ZLVClient::handleCallbackUrl(*url);
    platform_.queue->drain();
    if (!callback_.empty() && text.find(callback_) != std::string::npos) isOpen_ = false;
    promise(answers_ == (isOpen_ ? 0 : 1), "The callback URL, and it alone, closes the page.",
            text);
  }

  void end() {
    if (isOpen_) std::move(platform_.ui->browser->closed)();
    platform_.queue->drain();
    promise(answers_ == 1, "A call is answered once.", std::to_string(answers_));
    promise(hasRecord_ == (platform_.ui->browser != nullptr), "A page that was shown succeeds.",
            callback_);
    const auto& journal = platform_.ui->journal;
    promise(std::ranges::count(journal, std::string("answer")) == 1 &&
                std::ranges::count_if(journal,
                                      [](const auto& note) { return note.starts_with("hide "); }) ==
                    (hasRecord_ ? 1 : 0),
            "A page is taken off the screen once.", callback_);
  }

 private:
  static std::shared_ptr<ZLVViewController> shownOver(
      ZLVViewController& presenter, std::shared_ptr<ZLVViewController> controller) {
    presenter.presentViewController(controller, false);
    return controller;
  }

  template <class Record>
  ZLVCompletionHandler<Record> answer() {
    return [this](const std::shared_ptr<Record>& record, const std::optional<ZLVError>& error) {
      promise((record == nullptr) == error.has_value(), "An answer is a record or an error.", "");
      promise(!error || error->domain() == ZLVCheckoutErrorDomain, "Only the page can be missing.",
              error ? error->debugDescription() : "");
      hasRecord_ = record != nullptr;
      ++answers_;
      platform_.ui->journal.emplace_back("answer");
    };
  }
  void link(const std::shared_ptr<ZLVViewController>& presenter) {
    ZLVClient::linkAccountWithPaymentType("zolva",
                                          ZLVPartnerDetails::initWithPhoneNumber("5550123", "1"),
                                          presenter, answer<ZLVLinkAccountResult>());
  }
  void charge(const std::shared_ptr<ZLVViewController>& presenter) {
    ZLVClient::createTransactionWithPaymentType(
        "zolva", presenter, ZLVZolvaDetails::initWithAccountID("acc", "tok"),
        ZLVTransactionDetails::initWithGrossAmount(10000, "o-1", "EUR"),
        ZLVCustomerDetails::initWithPhoneNumber("5550123", "Ada", "L", "a@b.c"), {},
        answer<ZLVTransactionResult>());
  }

  static FakePlatform& installed() {
    static auto& platform = *new FakePlatform;  // as long as the process, like the library
    return platform;
  }

  FakePlatform& platform_ = installed();
  std::string callback_;
  bool isCharge_;
  bool isOpen_ = false;
  bool hasRecord_ = false;
  int answers_ = 0;
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto lines = linesOf(textOf(data, size));
  lines.resize(std::max<std::size_t>(lines.size(), 3));
  if (!ZLVIsUTF8(lines[2])) return 0;  // no answer can hold it
  Flow flow(lines[0], lines[1]);
  flow.answerWithPage(lines[2]);
  std::for_each(lines.begin() + 3, lines.end(), [&](const auto& line) { flow.open(line); });
  flow.end();
  return 0;
}
