#pragma once

#include <cstdint>
#include <string>

#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

/// What went wrong, told to the customer.
struct Problem {
  std::string title;
  /// What there is to know and to do.
  std::string advice;
};

Problem problemFromError(const ZLVError& error);

/// What the server's refusals mean.
enum class Refusal : std::int64_t {
  BalanceTooSmall = 402,
  NotLinked = 403,
  NotFound = 404,
  PaidBefore = 406
};

bool isRefusal(const ZLVError& error, Refusal refusal);

/// Whether the account is not linked any more, whoever ended that.
bool isAccountGone(const ZLVError& error);
