#include "Apps/Shop/Checkout/Checkout.h"

#include <algorithm>
#include <utility>

#include <glib.h>

#include "Apps/Shop/Model/Customer.h"

namespace {

constexpr const char* PaymentType = "zolva";
constexpr std::string_view AccountEnabled = "ENABLED";

struct Outcome {
  std::string_view status;
  Order::State state;
  /// What the customer is told when it is not paid.
  const char* reason;
};

// What the server says about a charge; nothing is known of any other status.
constexpr Outcome outcomes[] = {
    {"settlement", Order::State::Paid, ""},
    {"capture", Order::State::Paid, ""},
    {"pending", Order::State::NotPaid, "You have not confirmed the payment in your wallet."},
    {"cancel", Order::State::NotPaid, "You cancelled the payment in your wallet."},
    {"expire", Order::State::NotPaid, "The payment was not confirmed in time."},
    {"deny", Order::State::NotPaid, "Your wallet refused the payment."},
    {"failure", Order::State::NotPaid, "The payment failed."},
    {"", Order::State::Uncertain, "The shop cannot tell what became of the payment."},
};

const Outcome& outcome(const ZLVTransactionResult& result) {
  return *std::ranges::find_if(outcomes, [&](const Outcome& candidate) {
    return candidate.status.empty() || candidate.status == result.transactionStatus().text();
  });
}

/// Whole amounts travel as integers.
ZLVValue amountValue(Cents amount) {
  if (amount % 100 == 0) return amount / 100;
  return static_cast<double>(amount) / 100;
}

std::vector<PaymentOption> readOptions(const ZLVAccountInfo& info) {
  std::vector<PaymentOption> options;
  if (!info.metadata() || !info.metadata()->paymentOptions()) return options;
  for (const auto& option : *info.metadata()->paymentOptions()) {
    const auto& balance = option->balance();
    if (!balance || balance->currency().text() != ShopCurrency) continue;
    const auto amount = parsedMoney(balance->value().description());
    if (!amount) continue;
    options.push_back({option->name().description(), option->token().description(), *amount});
  }
  return options;
}

std::vector<std::shared_ptr<ZLVItemDetails>> itemDetails(const std::vector<BasketLine>& lines) {
  std::vector<std::shared_ptr<ZLVItemDetails>> details;
  details.reserve(lines.size());
  for (const auto& [item, quantity] : lines) {
    details.push_back(ZLVItemDetails::initWithIthItemID(
        item->id, item->name, amountValue(item->price), quantity, item->category));
  }
  return details;
}

}  // namespace

/// Makes the completion of a call: it ends the wait for it, whatever came of it, and goes on from
/// there. Of a call that nobody waits for any more, a failure has been reported.
template <class Record>
ZLVCompletionHandler<Record> Checkout::begin(const char* call, const char* activity,
                                             std::function<void(const Record&)> success,
                                             Failure failure) {
  waited_.emplace(++lastCall_, std::move(failure));
  if (events_.busy) events_.busy(activity);
  return [this, call, number = lastCall_, success = std::move(success)](auto record, auto error) {
    g_debug("%s completed: %s", call, error ? error->debugDescription().c_str() : "no error");
    const auto wait = waited_.extract(number);
    if (wait && waited_.empty() && events_.busy) events_.busy(nullptr);
    if (!error) return success(*record);
    if (wait) wait.mapped()(*error);
  };
}

void Checkout::stopWaiting() {
  const auto given = std::exchange(waited_, {});
  if (events_.busy) events_.busy(nullptr);
  for (const auto& [number, failed] : given) {
    failed(ZLVError::errorWithDomain(NSURLErrorDomain, NSURLErrorTimedOut, {}));
  }
}

Checkout::Failure Checkout::report(std::function<void()> retry) {
  return [this, retry = std::move(retry)](const ZLVError& error) {
    const bool isGone = isAccountGone(error);
    if (isGone && account_) setAccount(std::nullopt);
    if (events_.failed) events_.failed(problemFromError(error), isGone ? nullptr : retry);
  };
}

void Checkout::link(const std::string& phoneNumber, const std::string& countryCode) {
  const auto retry = [=, this] { link(phoneNumber, countryCode); };
  const auto linked = [=, this](const ZLVLinkAccountResult& result) {
    phone_ = "+" + countryCode + " " + phoneNumber;
    const auto accountID = result.accountID().description();
    // The completion says that the wallet's page is gone, not what the customer did there.
    const auto read = [=, this](const ZLVAccountInfo& info) {
      setAccount(accountID, info);
      if (account_ || !events_.failed) return;
      events_.failed({"Your wallet is not linked yet",
                      "The wallet's page was closed before you confirmed. Open it again and press "
                      "Confirm."},
                     retry);
    };
    enquire("Looking at your wallet…", accountID, read, report(retry));
  };
  ZLVClient::linkAccountWithPaymentType(
      PaymentType, ZLVPartnerDetails::initWithPhoneNumber(phoneNumber, countryCode),
      viewController_,
      begin<ZLVLinkAccountResult>("link", "Linking your wallet…", linked, report(retry)));
}

void Checkout::enquire(const char* activity, const std::string& accountID,
                       std::function<void(const ZLVAccountInfo&)> read, Failure failure) {
  ZLVClient::enquireAccountWithAccountID(
      accountID, begin<ZLVAccountInfo>("enquire", activity, std::move(read), std::move(failure)));
}

void Checkout::setAccount(std::optional<LinkedAccount> account) {
  account_ = std::move(account);
  g_debug("account %s", account_ ? "linked" : "not linked");
  if (events_.accountChanged) events_.accountChanged();
}

void Checkout::setAccount(const std::string& accountID, const ZLVAccountInfo& info) {
  if (info.accountStatus().text() != AccountEnabled) return setAccount(std::nullopt);
  setAccount(LinkedAccount{accountID, phone_, readOptions(info)});
}

void Checkout::refresh() {
  if (!account_) return;
  // It may have been unlinked by the time of a late answer.
  const auto read = [this, id = account_->id](const auto& info) {
    if (account_ && account_->id == id) setAccount(id, info);
  };
  enquire("Fetching your balance…", account_->id, read, report([this] { refresh(); }));
}

void Checkout::unlink() {
  if (!account_) return;
  const auto unlinked = [this](const ZLVDisableAccountResult&) { setAccount(std::nullopt); };
  ZLVClient::disableAccountWithAccountID(
      account_->id, begin<ZLVDisableAccountResult>("unlink", "Unlinking your wallet…", unlinked,
                                                   report([this] { unlink(); })));
}

void Checkout::pay(const PaymentOption& option) {
  if (!account_ || basket_.isEmpty()) return;
  auto& order = orders_.unpaid();
  // An earlier try that may still go through pays for what was ordered then.
  if (order.state != Order::State::NotPaid && order.lines != basket_.lines()) {
    return settle(order, Order::State::Uncertain, order.reason);
  }
  order.earlierLines.push_back(std::exchange(order.lines, basket_.lines()));
  order.accountID = account_->id;
  order.option = option;
  charge(order);
}

void Checkout::charge(Order& order) {
  const auto answered = [this, &order](const ZLVTransactionResult& result) {
    order.transactionID = result.transactionId().text().value_or("");
    if (outcome(result).state == Order::State::Paid) return settle(order, Order::State::Paid);
    check(order);  // it was pending when it was made; the customer may have confirmed since
  };
  // A refusal of this try settles nothing that an earlier one has left open.
  const auto refused =
      order.state == Order::State::NotPaid ? Order::State::NotPaid : Order::State::Uncertain;
  const auto failed = [this, &order, refused](const ZLVError& error) {
    if (isRefusal(error, Refusal::PaidBefore)) return check(order);
    if (isRefusal(error, Refusal::BalanceTooSmall)) return explainShortage(order, refused);
    const auto [title, advice] = problemFromError(error);
    if (error.requestMayHaveTakenEffect())
      return settle(order, Order::State::Uncertain, title + ".");
    settle(order, refused, title + ". " + advice);
  };
  order.state = Order::State::Sent;
  ZLVClient::createTransactionWithPaymentType(
      PaymentType, viewController_,
      ZLVZolvaDetails::initWithAccountID(order.accountID, order.option.token),
      ZLVTransactionDetails::initWithGrossAmount(amountValue(order.total()), order.id,
                                                 ShopCurrency),
      ZLVCustomerDetails::initWithPhoneNumber(phone_, ShopCustomer.firstName, ShopCustomer.lastName,
                                              ShopCustomer.email),
      itemDetails(order.lines), begin<ZLVTransactionResult>("charge", "Paying…", answered, failed));
}

void Checkout::explainShortage(Order& order, Order::State state) {
  const auto read = [this, &order, state](const ZLVAccountInfo& info) {
    setAccount(order.accountID, info);
    const auto options = readOptions(info);
    const auto option = std::ranges::find(options, order.option.token, &PaymentOption::token);
    const auto missing = option == options.end() ? 0 : order.total() - option->balance;
    settle(order, state,
           missing > 0 ? "You need " + moneyText(missing) + " more to pay for this."
                       : "Your wallet held too little at that moment.");
  };
  enquire("Fetching your balance…", order.accountID, read, [this, &order, state](const auto&) {
    settle(order, state, "You need more money in your wallet to pay for this.");
  });
}

void Checkout::check(Order& order) {
  const auto answered = [this, &order](const ZLVTransactionResult& result) {
    const auto& [status, state, reason] = outcome(result);
    order.transactionID = result.transactionId().text().value_or("");
    // It may be an earlier try that was confirmed, and that is what was bought.
    if (const auto amount = parsedMoney(result.grossAmount().description())) order.restore(*amount);
    settle(order, state, reason);
  };
  const auto failed = [this, &order](const ZLVError& error) {
    settle(order, order.state == Order::State::Sent ? Order::State::Uncertain : order.state,
           isRefusal(error, Refusal::NotFound) ? "The shop has not heard of a payment so far."
                                               : problemFromError(error).title + ".");
  };
  server_.order(order.id,
                begin<ZLVTransactionResult>("order", "Checking your payment…", answered, failed));
}

/// Nothing that comes after the payment can undo it.
void Checkout::settle(Order& order, Order::State state, std::string reason) {
  if (order.state == Order::State::Paid) return;
  order.state = state;
  order.reason = std::move(reason);
  g_debug("order %s %s", order.id.c_str(), stateName(state));
  if (state == Order::State::Paid) basket_.remove(order.lines);
  if (events_.orderChanged) events_.orderChanged(order);
}
