#include "Apps/Shop/Model/Orders.h"

#include <algorithm>
#include <ctime>
#include <random>

namespace {

/// Never the same twice, not even in another session.
std::string newOrderID() {
  constexpr std::string_view digits = "23456789ABCDEFGHJKMNPQRSTVWXYZ";
  std::random_device random;
  std::uniform_int_distribution<std::size_t> choose(0, digits.size() - 1);
  std::string id = "CC-";
  for (int count = 0; count < 8; ++count) id += digits[choose(random)];
  return id;
}

std::string now() {
  const auto time = std::time(nullptr);
  std::tm local{};
  localtime_r(&time, &local);
  char text[16];
  return {text, std::strftime(text, sizeof text, "%H:%M", &local)};
}

}  // namespace

const char* stateName(Order::State state) {
  switch (state) {
    case Order::State::Sent:
      return "Under way";
    case Order::State::Paid:
      return "Paid";
    case Order::State::NotPaid:
      return "Not paid";
    case Order::State::Uncertain:
      return "Not certain";
  }
  return "";
}

void Order::restore(Cents amount) {
  const auto found = std::ranges::find(earlierLines, amount, ::total);
  if (total() != amount && found != earlierLines.end()) lines.swap(*found);
}

Order& Orders::unpaid() {
  if (!orders_.empty() && orders_.front().state != Order::State::Paid) return orders_.front();
  auto& order = orders_.emplace_front();  // the others stay where they are
  order.id = newOrderID();
  order.time = now();
  return order;
}
