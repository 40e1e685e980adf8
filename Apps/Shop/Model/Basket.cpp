#include "Apps/Shop/Model/Basket.h"

#include <algorithm>
#include <numeric>

Cents total(const BasketLines& lines) {
  Cents sum = 0;
  for (const auto& line : lines) sum += line.price();
  return sum;
}

void Basket::add(std::size_t item, int change) {
  constexpr int most = 99;
  auto& quantity = quantities_.at(item);
  quantity = std::clamp(quantity + change, 0, most);
  changed();
}

void Basket::remove(const BasketLines& lines) {
  for (const auto& [item, quantity] : lines) {
    add(static_cast<std::size_t>(item - ShopMenu.data()), -quantity);
  }
}

int Basket::count() const { return std::accumulate(quantities_.begin(), quantities_.end(), 0); }

BasketLines Basket::lines() const {
  BasketLines lines;
  for (std::size_t item = 0; item < ShopMenu.size(); ++item) {
    if (quantities_[item] > 0) lines.push_back({&ShopMenu[item], quantities_[item]});
  }
  return lines;
}

void Basket::changed() const {
  for (const auto& observer : observers_) observer();
}
