#pragma once

#include <deque>
#include <string>
#include <vector>

#include "Apps/Shop/Model/Basket.h"

/// One way of paying from a linked wallet.
struct PaymentOption {
  std::string name;
  std::string token;
  Cents balance = 0;
};

/// An order and what became of its payment.
struct Order {
  enum class State {
    Sent,      ///< The charge is under way.
    Paid,      ///< The money has moved.
    NotPaid,   ///< No money has moved.
    Uncertain  ///< Nobody can tell yet.
  };

  std::string id;
  std::string time;
  BasketLines lines;
  /// What it was to be when it was tried before.
  std::vector<BasketLines> earlierLines{};
  std::string accountID;
  PaymentOption option;
  State state = State::NotPaid;
  /// Why it is not paid, for the customer.
  std::string reason;
  std::string transactionID;

  [[nodiscard]] Cents total() const { return ::total(lines); }
  /// Makes it what it was when it cost `amount`.
  void restore(Cents amount);
};

/// For people: "Paid", "Not paid", …
const char* stateName(Order::State state);

/// The orders of this session, the newest first.
class Orders {
 public:
  /// The order that is not paid yet, under the id that it keeps until it is, whatever becomes of
  /// each try; a new one when there is none. Stays at its address until the session ends.
  Order& unpaid();

  [[nodiscard]] std::deque<Order>& all() { return orders_; }

 private:
  std::deque<Order> orders_;
};
