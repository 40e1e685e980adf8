#include "Apps/Shop/Model/Orders.h"

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
    case Order::State::Refused:
      return "Refused";
    case Order::State::Uncertain:
      return "Not certain";
  }
  return "";
}

Cents Order::total() const {
  Cents sum = 0;
  for (const auto& line : lines) sum += line.price();
  return sum;
}

Order& Orders::add(std::vector<BasketLine> lines, std::string accountID, PaymentOption option) {
  // The others stay where they are.
  return orders_.emplace_front(Order{.id = newOrderID(),
                                     .time = now(),
                                     .lines = std::move(lines),
                                     .accountID = std::move(accountID),
                                     .option = std::move(option),
                                     .state = Order::State::Sent,
                                     .reason = {},
                                     .transactionID = {}});
}
