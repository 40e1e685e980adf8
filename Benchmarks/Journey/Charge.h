#pragma once

// The charge of every contender that has to make it itself, and what it makes of the answer.

#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>

#include <ZolvaCheckoutKit/ZLVTransactionRecords.h>

#include "Benchmarks/Comparison/Contender.h"

inline constexpr const char* chargePath = "/v2/charge";

inline std::string orderID(int number) { return "order-" + std::to_string(number); }

/// EUR 150.00, more than the sandbox settles without its page.
inline std::string chargeBody(int number) {
  return R"({"payment_type":"zolva","zolva":{"account_id":"acc-1","payment_option_token":"option-1",)"
         R"("enable_callback":true,"callback_url":"journey://done"},"transaction_details":)"
         R"({"order_id":")" +
         orderID(number) +
         R"(","gross_amount":150,"currency":"EUR"},"customer_details":{"first_name":"Kim",)"
         R"("phone":"+44 7700 900123","email":"kim@example.com"}})";
}

/// The page that the answer to a charge leads to.
inline std::string pageOf(std::string_view answer) {
  const auto record = ZLVTransactionResponse::initWithDictionary(decoded(answer));
  const auto& actions = record->actions();
  if (!actions || actions->empty()) throw std::runtime_error("no page");
  return std::string(actions->back()->url().text().value_or(""));
}

/// Writes the moment by the clock that pages know as well, in seconds.
inline void tellTime() {
  const std::chrono::duration<double> now = std::chrono::system_clock::now().time_since_epoch();
  std::printf("%.6f\n", now.count());
  std::fflush(stdout);
}
