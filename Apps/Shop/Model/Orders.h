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
    NotPaid,   ///< The customer did not confirm; no money has moved.
    Refused,   ///< The server said no; no money has moved.
    Uncertain  ///< Nobody can tell yet; only ever sent again under the same id.
  };

  std::string id;
  std::string time;
  std::vector<BasketLine> lines;
  std::string accountID;
  /// As it was before the charge.
  PaymentOption option;
  State state = State::Sent;
  /// Why it is not paid, for the customer.
  std::string reason;
  std::string transactionID;

  [[nodiscard]] Cents total() const;
};

/// For people: "Paid", "Not paid", …
const char* stateName(Order::State state);

/// The orders of this session, the newest first.
class Orders {
 public:
  /// An order under a new id, kept at the same address until the session ends.
  Order& add(std::vector<BasketLine> lines, std::string accountID, PaymentOption option);

  [[nodiscard]] std::deque<Order>& all() { return orders_; }

 private:
  std::deque<Order> orders_;
};
