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

  friend bool operator==(const BasketLine&, const BasketLine&) = default;
};

using BasketLines = std::vector<BasketLine>;

Cents total(const BasketLines& lines);

/// What the customer is about to buy.
class Basket {
 public:
  /// Puts some of the menu's `item` in, or takes some out when `change` is negative.
  void add(std::size_t item, int change);
  /// Takes out what has been bought.
  void remove(const BasketLines& lines);

  [[nodiscard]] int quantity(std::size_t item) const { return quantities_.at(item); }
  [[nodiscard]] int count() const;
  [[nodiscard]] Cents total() const { return ::total(lines()); }
  [[nodiscard]] bool isEmpty() const { return count() == 0; }
  /// In the menu's order.
  [[nodiscard]] BasketLines lines() const;

  /// `observer` is called after each change, for as long as the basket lives.
  void observe(std::function<void()> observer) { observers_.push_back(std::move(observer)); }

 private:
  void changed() const;

  std::array<int, ShopMenu.size()> quantities_{};
  std::vector<std::function<void()>> observers_;
};
