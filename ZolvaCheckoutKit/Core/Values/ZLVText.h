#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

/// What stands for a missing object in a formatted text.
inline constexpr std::string_view ZLVMissingObjectText = "(null)";

/// `format` with each "%@" replaced by the next of `arguments`; a missing one prints as "(null)",
/// one too many is not printed.
std::string ZLVStringWithFormat(std::string_view format,
                                std::initializer_list<std::optional<std::string_view>> arguments);

/// As much of the UTF-8 text as has its place in `size` bytes, without a broken character.
std::string_view ZLVBeginning(std::string_view text, std::size_t size) noexcept;

/// Whether the bytes are UTF-8 as RFC 3629 has it: no overlong forms, no surrogates.
bool ZLVIsUTF8(std::string_view bytes) noexcept;

/// `bytes` as UTF-8: the longest starts of a character that came to nothing, and the bytes that
/// start none, become U+FFFD each.
std::string ZLVUTF8Text(std::string_view bytes);

/// `text` with its control characters written as JSON writes them, so that it stays one line.
std::string ZLVOneLine(std::string_view text);

/// The value of a hexadecimal digit, or -1.
constexpr int ZLVHexDigit(char character) noexcept {
  if (character >= '0' && character <= '9') return character - '0';
  if (character >= 'a' && character <= 'f') return character - 'a' + 10;
  if (character >= 'A' && character <= 'F') return character - 'A' + 10;
  return -1;
}
