#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

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
  std::array<char, 32> buffer{};
  auto* const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr;
  return {buffer.data(), end};
}
