#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

#include "Apps/Shop/Checkout/MerchantServer.h"
#include "Apps/Shop/Checkout/Problem.h"
#include "Apps/Shop/Model/Orders.h"

/// A wallet that is linked to the shop.
struct LinkedAccount {
  std::string id;
  std::string phone;
  std::vector<PaymentOption> options;
};

/// Everything the shop asks of the library: links a wallet, pays orders from it and finds out what
/// became of them. The customer begins nothing while there is a call to wait for, but what is found
/// out late may lead to one; main thread only.
class Checkout {
 public:
  /// How the checkout reports; each may be empty.
  struct Events {
    /// A call has begun, in words for the customer; or it has ended, when there are none.
    std::function<void(const char* activity)> busy{};
    std::function<void()> accountChanged{};
    /// Something has become of an order's payment.
    std::function<void(Order& order)> orderChanged{};
    /// A call failed; `retry` makes it again, unless it is empty.
    std::function<void(const Problem& problem, std::function<void()> retry)> failed{};
  };

  Checkout(Basket& basket, Orders& orders) : basket_(basket), orders_(orders) {}

  void setEvents(Events events) { events_ = std::move(events); }
  /// What the wallet's pages are shown over.
  void setViewController(std::shared_ptr<ZLVViewController> viewController) {
    viewController_ = std::move(viewController);
  }

  [[nodiscard]] const std::optional<LinkedAccount>& account() const { return account_; }

  void link(const std::string& phoneNumber, const std::string& countryCode);
  /// Fetches the linked account's balances.
  void refresh();
  void unlink();

  /// Orders what is in the basket, which is emptied once that is paid.
  void pay(const PaymentOption& option);
  /// Asks the shop's server what became of an order that is not paid.
  void check(Order& order);
  /// Tries again as before, under the id that the order has.
  void payAgain(Order& order) { charge(order); }

  /// Ends the wait for all calls under way as if they had timed out. An answer that comes after all
  /// still counts when it is good.
  void stopWaiting();

 private:
  /// What to do when a call fails.
  using Failure = std::function<void(const ZLVError& error)>;

  template <class Record>
  ZLVCompletionHandler<Record> begin(const char* call, const char* activity,
                                     std::function<void(const Record&)> success, Failure failure);
  /// Tells of a failed call that is about the linked account.
  Failure report(std::function<void()> retry);

  void enquire(const char* activity, const std::string& accountID,
               std::function<void(const ZLVAccountInfo&)> read, Failure failure);
  void setAccount(std::optional<LinkedAccount> account);
  void setAccount(const std::string& accountID, const ZLVAccountInfo& info);
  void charge(Order& order);
  /// Settles an order for which the payment option holds too little.
  void explainShortage(Order& order, Order::State state);
  void settle(Order& order, Order::State state, std::string reason = {});

  Basket& basket_;
  Orders& orders_;
  MerchantServer server_;
  Events events_;
  std::shared_ptr<ZLVViewController> viewController_;
  std::optional<LinkedAccount> account_;
  std::string phone_;
  unsigned lastCall_ = 0;
  /// The calls that the customer waits for, by number, and what to do when one fails.
  std::map<unsigned, Failure> waited_;
};
