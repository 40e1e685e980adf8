#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

/// A text or nothing, as an argument: what `std::optional<std::string>` is, save that a null C
/// string is nothing too.
class ZLVOptionalText : public std::optional<std::string> {
 public:
  /// Makes nothing.
  ZLVOptionalText() = default;
  /// Makes nothing.
  ZLVOptionalText(std::nullopt_t /*nothing*/) {}
  /// Makes nothing.
  ZLVOptionalText(std::nullptr_t /*nothing*/) {}
  /// Copies the text; a null pointer makes nothing.
  ZLVOptionalText(const char* text) {
    if (text != nullptr) emplace(text);
  }
  /// Copies the text.
  ZLVOptionalText(std::string_view text) : optional(std::in_place, text) {}
  /// Keeps the text.
  ZLVOptionalText(std::string text) : optional(std::move(text)) {}
  /// Keeps the text, if there is one.
  ZLVOptionalText(std::optional<std::string> text) : optional(std::move(text)) {}
};
