#include "Apps/Console/Demo.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

#include <Sandbox/Sandbox.h>

#include "Apps/Console/DemoUser.h"
#include "Apps/Console/Host.h"
#include "Apps/Console/Terminal.h"

namespace {

using namespace std::chrono_literals;
using Style = Terminal::Style;

constexpr auto spinnerInterval = 80ms;
constexpr auto uploadLimit = 2s;
constexpr const char* unknownAccount = "no-such-account";
constexpr const char* phoneNumber = "7700900123";
constexpr const char* countryCode = "44";

std::string money(double amount) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f %s", amount, ZLVSandboxCurrency.data());
  return text;
}

class Demo {
 public:
  explicit Demo(ConsoleOptions options)
      : host_(pointAtSandbox(std::move(options)), [this](ZLVPlatform& platform) {
          platform.userInterface = std::make_shared<DemoUser>(
              platform,
              [this](const std::string& step) { terminal_.print("    " + step, Style::Dim); });
        }) {
    host_.setTick(spinnerInterval, [this] { terminal_.spin(); });
  }

  int run() {
    terminal_.print("ZolvaCheckoutKit " ZLV_VERSION ", the whole journey", Style::Heading);
    terminal_.print("    Sandbox server at " + sandbox_.baseURL(), Style::Dim);

    enquireUnknownAccount();
    link();
    const auto option = enquire();
    charge("A coffee", ZLVSandboxVerificationLimit / 20, option);
    charge("A coffee machine, above the limit of " + money(ZLVSandboxVerificationLimit),
           ZLVSandboxVerificationLimit * 2.5, option);
    enquire();
    unlink();
    showEvents();
    return summarise();
  }

 private:
  [[nodiscard]] ConsoleOptions pointAtSandbox(ConsoleOptions options) const {
    options.server = sandbox_.baseURL();
    options.analyticsRoot = sandbox_.baseURL() + "/";
    return options;
  }

  void begin(const std::string& title) {
    ++steps_;
    terminal_.print("");
    terminal_.print(std::to_string(steps_) + ". " + title, Style::Heading);
  }
  void good(const std::string& line) {
    ++succeeded_;
    terminal_.print("    " + line, Style::Good);
  }
  void bad(const std::string& line) { terminal_.print("    " + line, Style::Bad); }
  /// Whether the operation gave a record; its error is told otherwise.
  template <class Record>
  bool isFine(const Outcome<Record>& outcome) {
    if (outcome.error) bad(outcome.error->debugDescription());
    return !outcome.error;
  }

  Outcome<ZLVAccountInfo> enquireAccount(const ZLVValue& accountID) {
    return host_.wait<ZLVAccountInfo>([&](auto completion) {
      ZLVClient::enquireAccountWithAccountID(accountID.description(), std::move(completion));
    });
  }

  void enquireUnknownAccount() {
    begin("Enquire an account that is not there");
    const auto outcome = enquireAccount(unknownAccount);
    if (!outcome.error) return bad("The server knows it");
    terminal_.print("    domain " + outcome.error->domain() + ", code " +
                    std::to_string(outcome.error->code()));
    good("As it should, the completion got an error: " + outcome.error->localizedDescription());
  }

  void link() {
    begin("Link a wallet");
    const auto outcome = host_.wait<ZLVLinkAccountResult>([&](auto completion) {
      ZLVClient::linkAccountWithPaymentType(
          "zolva", ZLVPartnerDetails::initWithPhoneNumber(phoneNumber, countryCode),
          host_.viewController(), std::move(completion));
    });
    if (!isFine(outcome)) return;
    accountID_ = outcome.record->accountID();
    good("Account " + accountID_.description());
  }

  /// Shows the account and returns the token of the first way to pay.
  ZLVValue enquire() {
    begin("Enquire the account");
    const auto outcome = enquireAccount(accountID_);
    if (!isFine(outcome)) return {};
    const auto& options = outcome.record->metadata()->paymentOptions();
    if (!options || options->empty()) {
      bad("It is " + outcome.record->accountStatus().description() +
          " and has nothing to pay with");
      return {};
    }
    for (const auto& option : *options) {
      terminal_.print("    " + option->name().description() + ": " +
                      option->balance()->value().description() + " " +
                      option->balance()->currency().description());
    }
    good("It is " + outcome.record->accountStatus().description());
    return options->front()->token();
  }

  void charge(const std::string& what, double amount, const ZLVValue& paymentOption) {
    begin("Charge " + money(amount) + ": " + what);
    const auto outcome = host_.wait<ZLVTransactionResult>([&](auto completion) {
      ZLVClient::createTransactionWithPaymentType(
          "zolva", host_.viewController(),
          ZLVZolvaDetails::initWithAccountID(accountID_, paymentOption),
          ZLVTransactionDetails::initWithGrossAmount(amount, "demo-order-" + std::to_string(steps_),
                                                     ZLVSandboxCurrency),
          ZLVCustomerDetails::initWithPhoneNumber(phoneNumber, "Ada", "Lovelace",
                                                  "ada@example.com"),
          std::vector{ZLVItemDetails::initWithIthItemID("item-1", what, amount, 1, "coffee")},
          std::move(completion));
    });
    if (!isFine(outcome)) return;
    good("Transaction " + outcome.record->transactionId().description() + ", " +
         outcome.record->transactionStatus().description() + " when it was made");
  }

  void unlink() {
    begin("Unlink the account");
    const auto outcome = host_.wait<ZLVDisableAccountResult>([&](auto completion) {
      ZLVClient::disableAccountWithAccountID(accountID_.description(), std::move(completion));
    });
    if (isFine(outcome)) good("It is " + outcome.record->accountStatus().description());
  }

  void showEvents() {
    begin("What the analytics service received");
    host_.finishUploads(uploadLimit);
    const auto events = sandbox_.events();
    for (const auto& event : events) {
      if (event.type == "event") terminal_.print("    " + event.identity + "  " + event.name);
    }
    if (!events.empty()) good(std::to_string(events.size()) + " records, profiles included");
  }

  int summarise() {
    terminal_.print("");
    const bool isComplete = succeeded_ == steps_;
    terminal_.print("Summary: " + std::to_string(succeeded_) + " of " + std::to_string(steps_) +
                        " steps ended as they should, " +
                        std::to_string(sandbox_.requests().size()) + " HTTP requests.",
                    isComplete ? Style::Good : Style::Bad);
    return isComplete ? 0 : 1;
  }

  ZLVSandbox sandbox_{{.merchantName = "Corner Coffee"}};
  Terminal terminal_;
  Host host_;
  ZLVValue accountID_;
  int steps_ = 0;
  int succeeded_ = 0;
};

}  // namespace

int runDemo(ConsoleOptions options) { return Demo(std::move(options)).run(); }
