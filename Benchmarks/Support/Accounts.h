#pragma once

#include <string>

/// What a merchant server answers to an enquiry: an account with so many payment options.
std::string accountDocument(int paymentOptions);

/// An answer of some 700 bytes, and one of some 98 KB.
inline constexpr int fewPaymentOptions = 2;
inline constexpr int manyPaymentOptions = 500;
