#include "Apps/Shop/Model/Money.h"

#include <charconv>
#include <cmath>

std::string moneyText(Cents amount) {
  const auto cents = std::to_string(amount % 100);
  return "€" + std::to_string(amount / 100) + (cents.size() == 1 ? ".0" : ".") + cents;
}

std::optional<Cents> parsedMoney(std::string_view text) {
  double amount = 0;
  const auto* end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, amount);
  constexpr double limit = 1e15;  // hundredths stay exact below it
  if (error != std::errc() || last != end || std::abs(amount) > limit / 100) return std::nullopt;
  return std::llround(amount * 100);
}
