#pragma once

#include <array>
#include <functional>
#include <vector>

#include "Apps/Shop/Model/Menu.h"

/// Some of one thing on the menu.
struct BasketLine {
  const MenuItem* item;
  int quantity;

  [[nodiscard]] Cents price() const { return item->price * quantity; }
};

/// What the customer is about to buy.
class Basket {
 public:
  /// Puts some of the menu's `item` in, or takes some out when `change` is negative.
  void add(std::size_t item, int change);
  void add(const std::vector<BasketLine>& lines);
  void clear();

  [[nodiscard]] int quantity(std::size_t item) const { return quantities_.at(item); }
  [[nodiscard]] int count() const;
  [[nodiscard]] Cents total() const;
  [[nodiscard]] bool isEmpty() const { return count() == 0; }
  /// In the menu's order.
  [[nodiscard]] std::vector<BasketLine> lines() const;

  /// `observer` is called after each change, for as long as the basket lives.
  void observe(std::function<void()> observer) { observers_.push_back(std::move(observer)); }

 private:
  void changed() const;

  std::array<int, ShopMenu.size()> quantities_{};
  std::vector<std::function<void()>> observers_;
};
