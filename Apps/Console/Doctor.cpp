#include "Apps/Console/Doctor.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include <boost/json.hpp>
#include <unistd.h>

#include "Apps/Console/DemoUser.h"
#include "Apps/Console/DoctorExpectation.h"
#include "Apps/Console/DoctorSession.h"
#include "Apps/Console/Host.h"
#include "Apps/Console/Terminal.h"

namespace json = boost::json;

namespace {

constexpr const char* unknownAccount = "zolva-doctor-unknown";

const Member account[] = {{"/account_id", Member::Identifier}, {"/account_status"}};
const Member option[] = {
    {"/name"}, {"/token"}, {"/balance/value", Member::Amount}, {"/balance/currency"}};
const Member transaction[] = {{"/transaction_id"},
                              {"/order_id"},
                              {"/gross_amount", Member::Amount},
                              {"/currency"},
                              {"/transaction_status"}};

const Expectation unknown{Judgement::Refusal, "404", 404, 404};
const Expectation unknownAgain{.judgement = Judgement::Refusal,
                               .statuses = "404",
                               .lowest = 404,
                               .highest = 404,
                               .staysOpen = true};
const Expectation incomplete{Judgement::Refusal, "4xx", 400, 499};
const Expectation ofAccount{Judgement::Record, "200", 200, 200, account};
const Expectation ofLink{Judgement::Record, "200 or 201", 200, 201, account, "activation-deeplink"};
const Expectation ofCharge{Judgement::Record, "200 or 201",       200, 201,
                           transaction,       "user-verification"};

/// A text of the server's as it can stand on one line of a terminal.
std::string printable(std::string text) {
  constexpr std::size_t longest = 240;
  std::ranges::replace_if(
      text, [](unsigned char c) { return c < ' ' || c == 0x7F; }, ' ');
  if (text.size() <= longest) return text;
  auto end = longest;
  while ((static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;  // not inside a character
  return text.substr(0, end) + "…";
}

Finding unequal(const json::value& answer, const char* key, const std::string& text) {
  const auto& came = answer.at(key);
  return came == json::string_view(text)
             ? Finding()
             : Finding{"/" + std::string(key), text, json::serialize(came)};
}

class Doctor {
 public:
  Doctor(const ConsoleOptions& options, const DoctorCommand& command)
      : command_(command),
        view_(std::make_shared<DoctorView>(DoctorView{
            .server = options.server.substr(0, options.server.find_last_not_of('/') + 1),
            .CAFile = options.CAFile,
            .limit = std::chrono::milliseconds(std::llround(command.timeLimit * 1000))})),
        host_(withoutUsageEvents(options), [this](ZLVPlatform& platform) { observe(platform); }),
        accountID_(command.accountID),
        token_(command.paymentOptionToken),
        currency_(command.currency),
        orderID_("zolva-doctor-" +
                 std::to_string(std::chrono::system_clock::now().time_since_epoch().count())) {}

  int run();

 private:
  struct Check {
    std::string_view name, call;
    const Expectation& expectation;
    Judgement (Doctor::*make)();
    /// It needs the person's word.
    bool changes = false;
    /// Why the call cannot be made; empty when it can.
    std::string (Doctor::*obstacle)() const = nullptr;
    /// Looks further into an answer that is right so far, and keeps what later checks need.
    Finding (Doctor::*inspect)(const json::value& answer) = nullptr;
  };
  static const Check checks[];

  static ConsoleOptions withoutUsageEvents(ConsoleOptions options) {
    options.analyticsRoot = "https://usage.invalid/";  // the session sends nothing there
    return options;
  }
  void observe(ZLVPlatform& platform) {
    if (command_.confirmsPages) {
      platform.userInterface = std::make_shared<DemoUser>(platform, [](const std::string&) {});
    }
    platform.makeURLSession = [make = platform.makeURLSession, view = view_] {
      return std::make_unique<DoctorSession>(make(), view);
    };
  }

  template <class Record, class Start>
  Judgement call(Start start) {
    try {
      const auto error = host_.wait<Record>(std::move(start)).error;
      if (!error) return {Judgement::Record, "a record"};
      const bool isRefusal = error->domain() == ZLVErrorDomain;
      return {isRefusal ? Judgement::Refusal : Judgement::Failure, error->localizedDescription()};
    } catch (const ZLVProgrammingFault& fault) {
      return {Judgement::Failure, fault.what()};
    }
  }
  Judgement enquire(const std::string& id) {
    return call<ZLVAccountInfo>([&](auto completion) {
      ZLVClient::enquireAccountWithAccountID(id, std::move(completion));
    });
  }
  Judgement unlink(const std::string& id) {
    return call<ZLVDisableAccountResult>([&](auto completion) {
      ZLVClient::disableAccountWithAccountID(id, std::move(completion));
    });
  }
  Judgement link(const std::shared_ptr<ZLVPartnerDetails>& user) {
    return call<ZLVLinkAccountResult>([&](auto completion) {
      ZLVClient::linkAccountWithPaymentType(command_.paymentType, user, host_.viewController(),
                                            std::move(completion));
    });
  }
  Judgement charge(const std::shared_ptr<ZLVZolvaDetails>& wallet,
                   const std::shared_ptr<ZLVTransactionDetails>& order,
                   const std::shared_ptr<ZLVCustomerDetails>& customer) {
    return call<ZLVTransactionResult>([&](auto completion) {
      ZLVClient::createTransactionWithPaymentType(command_.paymentType, host_.viewController(),
                                                  wallet, order, customer, std::nullopt,
                                                  std::move(completion));
    });
  }

  Judgement enquireUnknown() { return enquire(unknownAccount); }
  Judgement enquireThroughLibrary() {
    view_->isThroughLibrary = true;
    auto judgement = enquireUnknown();
    view_->isThroughLibrary = false;
    return judgement;
  }
  Judgement unlinkUnknown() { return unlink(unknownAccount); }
  Judgement linkNobody() { return link(std::make_shared<ZLVPartnerDetails>()); }
  Judgement linkUser() {
    return link(ZLVPartnerDetails::initWithPhoneNumber(command_.phoneNumber, command_.countryCode));
  }
  Judgement enquireAccount() { return enquire(accountID_); }
  Judgement chargeNothing() {
    return charge(std::make_shared<ZLVZolvaDetails>(), std::make_shared<ZLVTransactionDetails>(),
                  std::make_shared<ZLVCustomerDetails>());
  }
  Judgement chargeAccount() {
    return charge(
        ZLVZolvaDetails::initWithAccountID(accountID_, token_),
        ZLVTransactionDetails::initWithGrossAmount(command_.grossAmount, orderID_, currency_),
        ZLVCustomerDetails::initWithPhoneNumber(command_.phoneNumber, "Ada", "Lovelace",
                                                "ada@example.com"));
  }
  Judgement unlinkLinked() { return unlink(linkedID_); }

  [[nodiscard]] std::string accountObstacle() const {
    return accountID_.empty() ? "no account is linked; name one with --account-id" : "";
  }
  [[nodiscard]] std::string chargeObstacle() const {
    if (auto why = accountObstacle(); !why.empty()) return why;
    const bool canPay = !token_.empty() && !currency_.empty();
    return canPay ? "" : "the account has nothing to pay with; activate it on the wallet's page";
  }
  [[nodiscard]] std::string unlinkObstacle() const {
    if (linkedID_.empty()) return "no account was linked";
    return linkedID_ == command_.accountID ? "it is the account of --account-id" : "";
  }

  Finding keepLinked(const json::value& answer) {
    linkedID_ = json::value_to<std::string>(answer.at("account_id"));
    if (accountID_.empty()) accountID_ = linkedID_;
    return {};
  }
  Finding inspectAccount(const json::value& answer);
  Finding inspectCharge(const json::value& answer) {
    auto finding = unequal(answer, "order_id", orderID_);
    return finding.aspect.empty() ? unequal(answer, "currency", currency_) : finding;
  }
  Finding inspectUnlinked(const json::value& answer) {
    return unequal(answer, "account_id", linkedID_);
  }

  std::string reasonToSkip(const Check& check);
  [[nodiscard]] bool asksForConsent() const;
  void report(const Check& check, const char* result, const Finding& finding);
  int conclude();

  const DoctorCommand command_;
  std::shared_ptr<DoctorView> view_;
  Host host_;
  Terminal terminal_;
  /// The account that is enquired and charged, and the one that is unlinked again.
  std::string accountID_, linkedID_;
  std::string token_, currency_, orderID_;
  std::optional<bool> hasConsent_;
  ZLVArray reports_;
  std::map<std::string, int> counts_{{"passed", 0}, {"failed", 0}, {"skipped", 0}};
};

constexpr auto linkCall = "POST /v2/pay/account";
constexpr auto enquireCall = "GET /v2/pay/account/ID";
constexpr auto unlinkCall = "POST /v2/pay/account/ID/unbind";
constexpr auto chargeCall = "POST /v2/charge";

const Doctor::Check Doctor::checks[] = {
    {"unknown-account", enquireCall, unknown, &Doctor::enquireUnknown},
    {"connection", enquireCall, unknownAgain, &Doctor::enquireUnknown},
    {"library", enquireCall, unknown, &Doctor::enquireThroughLibrary},
    {"unlink-unknown", unlinkCall, unknown, &Doctor::unlinkUnknown, true},
    {"link-incomplete", linkCall, incomplete, &Doctor::linkNobody, true},
    {"link", linkCall, ofLink, &Doctor::linkUser, true, nullptr, &Doctor::keepLinked},
    {"enquire", enquireCall, ofAccount, &Doctor::enquireAccount, false, &Doctor::accountObstacle,
     &Doctor::inspectAccount},
    {"charge-incomplete", chargeCall, incomplete, &Doctor::chargeNothing, true},
    {"charge", chargeCall, ofCharge, &Doctor::chargeAccount, true, &Doctor::chargeObstacle,
     &Doctor::inspectCharge},
    {"unlink", unlinkCall, ofAccount, &Doctor::unlinkLinked, true, &Doctor::unlinkObstacle,
     &Doctor::inspectUnlinked},
};

int Doctor::run() {
  std::string obstacle;
  for (const auto& check : checks) {
    if (const auto why = obstacle.empty() ? reasonToSkip(check) : obstacle; !why.empty()) {
      report(check, "skipped", {.came = why});
      continue;
    }
    view_->exchange = {};
    const auto judgement = (this->*check.make)();
    if (view_->call.joinable()) view_->call.join();
    json::value answer;
    auto finding = check.expectation.examine(view_->exchange, judgement, answer);
    if (finding.aspect.empty() && check.inspect != nullptr) {
      finding = (this->*check.inspect)(answer);
    }
    report(check, finding.aspect.empty() ? "passed" : "failed", finding);
    // Without a server to talk to, the rest would say the same again.
    if (finding.aspect == "answer" && !check.changes) obstacle = "the server did not answer";
  }
  return conclude();
}

Finding Doctor::inspectAccount(const json::value& answer) {
  if (auto finding = unequal(answer, "account_id", accountID_); !finding.aspect.empty()) {
    return finding;
  }
  boost::system::error_code error;
  const auto* options = answer.find_pointer("/metadata/payment_options", error);
  if (options == nullptr || !options->is_array()) return {};
  std::size_t index = 0;
  for (const auto& offered : options->get_array()) {
    const auto place = "/metadata/payment_options/" + std::to_string(index++);
    if (auto finding = missingMember(offered, option, place); !finding.aspect.empty()) {
      return finding;
    }
    const auto* active = offered.get_object().if_contains("active");
    if (active != nullptr && *active == false) {
      return {place + "/active", "true, or nothing (the library reads false as true)", "false"};
    }
    const auto token = json::value_to<std::string>(offered.at("token"));
    if (active == nullptr || active->is_null() || (!token_.empty() && token != token_)) continue;
    token_ = token;
    if (currency_.empty()) {
      currency_ = json::value_to<std::string>(offered.at("balance").at("currency"));
    }
  }
  return {};
}

std::string Doctor::reasonToSkip(const Check& check) {
  if (check.changes && !hasConsent_) hasConsent_ = command_.isAgreed || asksForConsent();
  if (check.changes && !*hasConsent_) {
    return "it changes something; agree with --yes, or when asked on a terminal";
  }
  return check.obstacle != nullptr ? (this->*check.obstacle)() : "";
}

bool Doctor::asksForConsent() const {
  if (isatty(STDIN_FILENO) == 0 || isatty(STDERR_FILENO) == 0) return false;
  std::fprintf(stderr,
               "What comes next changes something at %s. It links +%s %s, charges %s, and unlinks "
               "what it linked.\nWhen \"open URL\" is printed, open it, and press Return when you "
               "are done there.\nGo on? [y/N] ",
               view_->server.c_str(), command_.countryCode.c_str(), command_.phoneNumber.c_str(),
               ZLVValue(command_.grossAmount).description().c_str());
  char line[64] = "";
  const auto length = read(STDIN_FILENO, line, sizeof line);
  return length > 0 && (*line == 'y' || *line == 'Y');
}

void Doctor::report(const Check& check, const char* result, const Finding& finding) {
  ++counts_[result];
  const auto& [aspect, expected, came] = finding;
  const bool isFailure = !aspect.empty();
  if (command_.isJSON) {
    ZLVDictionary line{{"check", check.name}, {"call", check.call}, {"result", result}};
    if (isFailure) {
      line.set("aspect", aspect);
      line.set("expected", expected);
    }
    if (!came.empty()) line.set(isFailure ? "came" : "why", printable(came));
    reports_.emplace_back(std::move(line));
    return;
  }
  char start[96];
  std::snprintf(start, sizeof start, "%-8s %-18s %s", result, check.name.data(), check.call.data());
  const auto text = isFailure      ? aspect + ": expected " + expected + ", came " + came
                    : came.empty() ? std::to_string(view_->exchange.status)
                                   : came;
  terminal_.print(start + (": " + printable(text)), isFailure      ? Terminal::Style::Bad
                                                    : came.empty() ? Terminal::Style::Good
                                                                   : Terminal::Style::Dim);
}

int Doctor::conclude() {
  if (command_.isJSON) {
    ZLVDictionary document{{"server", view_->server}, {"checks", std::move(reports_)}};
    for (const auto& [result, count] : counts_) document.set(result, count);
    std::puts(ZLVValue(document).description().c_str());
  } else {
    terminal_.print(std::to_string(counts_["passed"]) + " passed, " +
                    std::to_string(counts_["failed"]) + " failed, " +
                    std::to_string(counts_["skipped"]) + " skipped");
  }
  return counts_["failed"] == 0 ? 0 : 1;
}

}  // namespace

int runDoctor(const ConsoleOptions& options, const DoctorCommand& command) {
  return Doctor(options, command).run();
}
