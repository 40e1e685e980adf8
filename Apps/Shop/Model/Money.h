#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// An amount in hundredths of the currency, so that sums are exact.
using Cents = std::int64_t;

inline constexpr std::string_view ShopCurrency = "EUR";

/// For people: "€4.50".
std::string moneyText(Cents amount);

/// Reads "4.50" or "4"; nothing when that is no amount.
std::optional<Cents> parsedMoney(std::string_view text);
