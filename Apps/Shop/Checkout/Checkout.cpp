#include "Apps/Shop/Checkout/Checkout.h"

#include <algorithm>
#include <utility>

#include <glib.h>

#include "Apps/Shop/Model/Customer.h"

namespace {

constexpr const char* PaymentType = "zolva";
constexpr std::string_view AccountEnabled = "ENABLED";

// What the server says about a charge that it has made up its mind about.
constexpr std::string_view PaidStatuses[] = {"settlement", "capture"};
constexpr std::string_view RefusedStatuses[] = {"deny", "cancel", "expire", "failure"};

bool isOneOf(const ZLVValue& status, const auto& statuses) {
  return std::ranges::find(statuses, status.text()) != std::end(statuses);
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

/// Makes the completion of a call: it ends the call, whatever came of it, and goes on from there.
template <class Record>
ZLVCompletionHandler<Record> Checkout::begin(const char* call, const char* activity,
                                             std::function<void(const Record&)> success,
                                             Failure failure) {
  if (events_.busy) events_.busy(activity);
  return [this, call, success = std::move(success), failure = std::move(failure)](auto record,
                                                                                  auto error) {
    g_debug("%s completed: %s", call, error ? error->debugDescription().c_str() : "no error");
    if (events_.busy) events_.busy(nullptr);
    if (!error) return success(*record);
    failure(*error);
  };
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
  const auto read = [this, id = account_->id](const auto& info) { setAccount(id, info); };
  enquire("Fetching your balance…", account_->id, read, report([this] { refresh(); }));
}

void Checkout::unlink() {
  if (!account_) return;
  const auto unlinked = [this](const ZLVDisableAccountResult&) { setAccount(std::nullopt); };
  ZLVClient::disableAccountWithAccountID(
      account_->id, begin<ZLVDisableAccountResult>("unlink", "Unlinking your wallet…", unlinked,
                                                   report([this] { unlink(); })));
}

void Checkout::pay(Basket& basket, const PaymentOption& option) {
  if (!account_ || basket.isEmpty()) return;
  auto& order = orders_.add(basket.lines(), account_->id, option);
  basket.clear();
  charge(order);
}

void Checkout::charge(Order& order) {
  const auto answered = [this, &order](const ZLVTransactionResult& result) {
    order.transactionID = result.transactionId().description();
    const auto& status = result.transactionStatus();
    if (isOneOf(status, PaidStatuses)) return settle(order, Order::State::Paid);
    if (isOneOf(status, RefusedStatuses)) {
      return settle(order, Order::State::Refused, result.statusMessage().description());
    }
    check(order);  // it was pending when it was made; the customer may have confirmed since
  };
  const auto failed = [this, &order](const ZLVError& error) {
    // An earlier attempt has reached the server after all.
    if (error.domain() == ZLVErrorDomain && error.code() == OrderChargedBefore) return check(order);
    const auto problem = problemFromError(error);
    settle(order, mayHaveTakenEffect(error) ? Order::State::Uncertain : Order::State::Refused,
           problem.title + ". " + problem.advice);
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

void Checkout::check(Order& order) {
  if (&order != &orders_.all().front()) {
    return settle(order, order.state == Order::State::Sent ? Order::State::Uncertain : order.state,
                  "You have ordered again since, so that your balance tells nothing about this "
                  "order. Ask at the counter.");
  }
  const auto read = [this, &order](const ZLVAccountInfo& info) {
    if (account_ && account_->id == order.accountID) setAccount(order.accountID, info);
    judge(order, readOptions(info));
  };
  const auto failed = [this, &order](const ZLVError& error) {
    const auto problem = problemFromError(error);
    settle(order, Order::State::Uncertain, problem.title + ". " + problem.advice);
  };
  enquire("Checking your payment…", order.accountID, read, failed);
}

/// Judges the last order by its payment option's balance, for want of a better witness: a shop of
/// your own asks its server, which the wallet tells what became of each charge.
void Checkout::judge(Order& order, const std::vector<PaymentOption>& options) const {
  const auto option = std::ranges::find(options, order.option.token, &PaymentOption::token);
  if (option != options.end() && option->balance == order.option.balance - order.total()) {
    return settle(order, Order::State::Paid);
  }
  if (option != options.end() && option->balance == order.option.balance) {
    return settle(order, Order::State::NotPaid,
                  "You did not confirm the payment, and " + moneyText(order.total()) +
                      " has not left your wallet.");
  }
  settle(order, Order::State::Uncertain, "Your balance does not tell whether it was paid.");
}

void Checkout::settle(Order& order, Order::State state, std::string reason) const {
  order.state = state;
  order.reason = std::move(reason);
  g_debug("order %s %s", order.id.c_str(), stateName(state));
  if (events_.orderChanged) events_.orderChanged(order);
}
