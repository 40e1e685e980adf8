#include <algorithm>
#include <cstdint>

#include <ZolvaCheckoutKit/Core/Values/ZLVText.h>

std::string ZLVStringWithFormat(std::string_view format,
                                std::initializer_list<std::optional<std::string_view>> arguments) {
  constexpr std::string_view placeholder = "%@";
  std::size_t size = format.size();
  for (const auto& argument : arguments) size += argument.value_or(ZLVMissingObjectText).size();
  std::string text;
  text.reserve(size);
  for (const auto& argument : arguments) {
    const auto position = format.find(placeholder);
    if (position == std::string_view::npos) break;
    text += format.substr(0, position);
    text += argument.value_or(ZLVMissingObjectText);
    format.remove_prefix(position + placeholder.size());
  }
  return text += format;
}

std::string_view ZLVBeginning(std::string_view text, std::size_t size) noexcept {
  if (text.size() <= size) return text;
  while (size > 0 && (static_cast<std::uint8_t>(text[size]) & 0xC0) == 0x80) --size;
  return text.substr(0, size);
}

namespace {

struct Sequence {
  std::size_t size;
  bool isCharacter;
};

/// The character that the bytes start with, or what of them could have become one.
Sequence firstSequence(std::string_view bytes) noexcept {
  const auto lead = static_cast<std::uint8_t>(bytes.front());
  if (lead < 0x80) return {1, true};
  if (lead < 0xC2 || lead > 0xF4) return {1, false};
  const std::size_t size = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  // The second byte rules out overlong forms, surrogates and what is above U+10FFFF.
  std::uint8_t least = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  std::uint8_t most = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  for (std::size_t i = 1; i < size; ++i) {
    if (i == bytes.size()) return {i, false};
    const auto byte = static_cast<std::uint8_t>(bytes[i]);
    if (byte < least || byte > most) return {i, false};
    least = 0x80;
    most = 0xBF;
  }
  return {size, true};
}

/// How many of the bytes are UTF-8 before the first that are not.
std::size_t sizeOfUTF8(std::string_view bytes) noexcept {
  constexpr auto isOther = [](char byte) { return static_cast<std::uint8_t>(byte) >= 0x80; };
  auto rest = bytes;
  for (;;) {
    rest.remove_prefix(
        static_cast<std::size_t>(std::ranges::find_if(rest, isOther) - rest.begin()));
    if (rest.empty()) return bytes.size();
    const auto sequence = firstSequence(rest);
    if (!sequence.isCharacter) return bytes.size() - rest.size();
    rest.remove_prefix(sequence.size);
  }
}

}  // namespace

bool ZLVIsUTF8(std::string_view bytes) noexcept { return sizeOfUTF8(bytes) == bytes.size(); }

std::string ZLVUTF8Text(std::string_view bytes) {
  std::string text;
  for (;;) {
    const auto size = sizeOfUTF8(bytes);
    text += bytes.substr(0, size);
    bytes.remove_prefix(size);
    if (bytes.empty()) return text;
    text += "\uFFFD";
    bytes.remove_prefix(firstSequence(bytes).size);
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
