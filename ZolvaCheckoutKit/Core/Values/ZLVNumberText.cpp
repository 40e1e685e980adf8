#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <version>

#include <ZolvaCheckoutKit/Core/Values/ZLVNumberText.h>

// Not every standard library converts doubles, nor does every phone's copy of one that does; and on
// 32-bit x86 libstdc++ reads some wrong, because it rounds twice.
#if !defined(__cpp_lib_to_chars) || defined(__i386__)
#define fast_float zlv_fast_float  // so that it meets no other copy, as the JSON library
#include <fast_float/fast_float.h>
#undef fast_float
static_assert(FLT_EVAL_METHOD == 0, "Compile this file with -msse2 -mfpmath=sse.");
using zlv_fast_float::from_chars;
#else
using std::from_chars;
#endif

#ifndef __cpp_lib_to_chars
#include <ZolvaCheckoutKit/Core/Values/ZLVJSONLibrary.h>
#endif

namespace {

using Digits = std::array<char, 32>;

/// "d[.ddd]e[+|-]dd", which stands in `digits`.
std::string_view shortest(double number, Digits& digits) {
  char* const begin = digits.data();
#ifdef __cpp_lib_to_chars
  const char* const end =
      std::to_chars(begin, begin + digits.size(), number, std::chars_format::scientific).ptr;
#else
  auto text = zlv_boost::json::serialize(zlv_boost::json::value(number));
  std::ranges::replace(text, 'E', 'e');
  const char* const end = std::ranges::copy(text, begin).out;
#endif
  return {begin, end};
}

}  // namespace

double ZLVExactNumber(std::string_view text, double rough) noexcept {
  from_chars(text.data(), text.data() + text.size(), rough);
  return rough;
}

std::string ZLVDecimalText(double number) {
  if (std::isnan(number)) return "NaN";
  if (std::isinf(number)) return number < 0 ? "-Infinity" : "Infinity";

  Digits digits;
  const auto shortestText = shortest(std::abs(number), digits);
  const auto mark = shortestText.find('e');
  auto power = shortestText.substr(mark + 1);
  if (power.starts_with('+')) power.remove_prefix(1);
  int exponent = 0;
  std::from_chars(power.data(), power.data() + power.size(), exponent);
  std::string text(shortestText.substr(0, mark));
  if (text.size() > 1) text.erase(1, 1);

  const auto count = static_cast<int>(text.size());
  const int whole = exponent + 1;  // digits before the point
  if (whole < -5 || whole > 21) {
    if (count > 1) text.insert(1, 1, '.');
    text += exponent < 0 ? "e-" : "e+";
    text += std::to_string(std::abs(exponent));
  } else if (whole <= 0) {
    text.insert(0, "0." + std::string(static_cast<std::size_t>(-whole), '0'));
  } else if (whole < count) {
    text.insert(static_cast<std::size_t>(whole), 1, '.');
  } else {
    text.append(static_cast<std::size_t>(whole - count), '0');
  }
  return number < 0 ? "-" + text : text;  // minus zero loses its sign
}
