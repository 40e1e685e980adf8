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
  ZLVOptionalText() = default;
  ZLVOptionalText(std::nullopt_t /*nothing*/) {}
  ZLVOptionalText(std::nullptr_t /*nothing*/) {}
  ZLVOptionalText(const char* text) {
    if (text != nullptr) emplace(text);
  }
  ZLVOptionalText(std::string_view text) : optional(std::in_place, text) {}
  ZLVOptionalText(std::string text) : optional(std::move(text)) {}
  ZLVOptionalText(std::optional<std::string> text) : optional(std::move(text)) {}
};
