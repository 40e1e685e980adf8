#pragma once

#include <string>
#include <string_view>

// Doubles as decimal text and back, to the last bit and whatever the locale. The only place that
// knows whose code does it.

/// The fewest digits that read back as `number`, written as ECMAScript does: plainly from 1e-6 up
/// to 1e21 ("100000", "0.25"), with an exponent beyond ("1e+21"); zero has no sign.
std::string ZLVDecimalText(double number);

/// The double nearest to `text`, which is a number of JSON. Where there is none near, it is
/// `rough`, which only has to tell what is too large from what is too small.
double ZLVExactNumber(std::string_view text, double rough) noexcept;
