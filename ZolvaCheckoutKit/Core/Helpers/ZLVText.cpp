#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include <ZolvaCheckoutKit/Core/Helpers/ZLVText.h>

std::string ZLVStringWithFormat(std::string_view format,
                                std::initializer_list<std::optional<std::string_view>> arguments) {
  constexpr std::string_view placeholder = "%@";
  std::string text;
  for (const auto& argument : arguments) {
    const auto position = format.find(placeholder);
    if (position == std::string_view::npos) break;
    text += format.substr(0, position);
    text += argument.value_or(ZLVMissingObjectText);
    format.remove_prefix(position + placeholder.size());
  }
  return text += format;
}

bool ZLVIsUTF8(std::string_view bytes) noexcept {
  struct Form {
    std::uint8_t mask, lead;
    std::size_t continuations;
    char32_t least;
  };
  constexpr std::array<Form, 3> forms{
      {{0xE0, 0xC0, 1, 0x80}, {0xF0, 0xE0, 2, 0x800}, {0xF8, 0xF0, 3, 0x10000}}};
  constexpr auto isOther = [](char byte) { return static_cast<std::uint8_t>(byte) >= 0x80; };

  for (;;) {
    bytes.remove_prefix(
        static_cast<std::size_t>(std::ranges::find_if(bytes, isOther) - bytes.begin()));
    if (bytes.empty()) return true;
    const auto lead = static_cast<std::uint8_t>(bytes.front());
    const Form* form = nullptr;
    for (const auto& candidate : forms) {
      if ((lead & candidate.mask) == candidate.lead) form = &candidate;
    }
    if (form == nullptr || bytes.size() <= form->continuations) return false;

    auto character = static_cast<char32_t>(lead & static_cast<std::uint8_t>(~form->mask));
    for (const char byte : bytes.substr(1, form->continuations)) {
      const auto continuation = static_cast<std::uint8_t>(byte);
      if ((continuation & 0xC0) != 0x80) return false;
      character = (character << 6) | (continuation & 0x3F);
    }
    const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
    if (character < form->least || character > 0x10FFFF || isSurrogate) return false;
    bytes.remove_prefix(1 + form->continuations);
  }
}

std::string ZLVOneLine(std::string_view text) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string line;
  line.reserve(text.size());
  for (const char character : text) {
    const auto byte = static_cast<std::uint8_t>(character);
    if (byte >= 0x20 && byte != 0x7F) {
      line += character;
    } else if (character == '\n') {
      line += "\\n";
    } else if (character == '\r') {
      line += "\\r";
    } else if (character == '\t') {
      line += "\\t";
    } else {
      line += "\\u00";
      line += digits[byte >> 4];
      line += digits[byte & 0xF];
    }
  }
  return line;
}

std::string ZLVDecimalText(double number) {
  if (std::isnan(number)) return "NaN";
  if (std::isinf(number)) return number < 0 ? "-Infinity" : "Infinity";
  if (number == 0) return "0";

  // "d[.ddd]e(+|-)dd". No other place turns a double into digits.
  std::array<char, 32> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(number),
                                 std::chars_format::scientific);
  auto* const mark = std::find(buffer.data(), end.ptr, 'e');
  int exponent = 0;
  std::from_chars(mark + 2, end.ptr, exponent);
  if (mark[1] == '-') exponent = -exponent;
  std::string text(buffer.data(), mark);
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
  return number < 0 ? "-" + text : text;
}
