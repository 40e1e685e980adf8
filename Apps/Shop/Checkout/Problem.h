#pragma once

#include <string>

#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

/// What went wrong, told to the customer.
struct Problem {
  std::string title;
  /// What there is to know and to do.
  std::string advice;
};

Problem problemFromError(const ZLVError& error);

/// Whether a charge that ended in this error may have been made all the same: no answer came, or
/// none that can be read, or the server broke down on the way.
bool mayHaveTakenEffect(const ZLVError& error);

/// Whether the account is not linked any more, whoever ended that.
bool isAccountGone(const ZLVError& error);

/// The server's way of saying that it knows the order already.
inline constexpr int OrderChargedBefore = 406;
