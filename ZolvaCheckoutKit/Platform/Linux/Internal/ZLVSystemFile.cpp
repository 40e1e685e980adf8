#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVSystemFile.h>

namespace {

constexpr std::string_view whiteSpace = " \t\r\n";

std::string_view trimmed(std::string_view text) {
  const auto begin = text.find_first_not_of(whiteSpace);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(whiteSpace) - begin + 1);
}

/// All of a small file; empty when it cannot be read. A stream would bring its locales into
/// processes that have no other use for them.
std::string contents(const std::filesystem::path& file) {
  const std::unique_ptr<std::FILE, decltype(&std::fclose)> stream(std::fopen(file.c_str(), "re"),
                                                                  &std::fclose);
  std::string text;
  if (stream == nullptr) return text;
  std::array<char, 4096> part{};
  while (const auto size = std::fread(part.data(), 1, part.size(), stream.get())) {
    text.append(part.data(), size);
  }
  return text;
}

std::optional<std::string> unlessEmpty(std::string text) {
  if (text.empty()) return std::nullopt;
  return text;
}

/// What a shell makes of one word: quotes go, and a backslash outside single quotes stands for the
/// character behind it.
std::string unquoted(std::string_view word) {
  std::string text;
  char quote = 0;
  for (std::size_t i = 0; i < word.size(); ++i) {
    const char c = word[i];
    if (c == quote) {
      quote = 0;
    } else if (quote == 0 && (c == '"' || c == '\'')) {
      quote = c;
    } else if (c == '\\' && quote != '\'' && i + 1 < word.size()) {
      text += word[++i];
    } else {
      text += c;
    }
  }
  return text;
}

}  // namespace

std::optional<std::string> ZLVSystemFile::firstLine(const std::filesystem::path& file) {
  constexpr std::string_view ends("\n\0", 2);
  const std::string text = contents(file);
  return unlessEmpty(
      std::string(trimmed(std::string_view(text).substr(0, text.find_first_of(ends)))));
}

std::optional<std::string> ZLVSystemFile::setting(const std::filesystem::path& file,
                                                  std::string_view key) {
  const std::string text = contents(file);
  std::optional<std::string> value;
  for (std::string_view rest = text; !rest.empty();) {
    const auto end = std::min(rest.find('\n'), rest.size() - 1);
    const std::string_view assignment = trimmed(rest.substr(0, end + 1));
    rest.remove_prefix(end + 1);
    const auto equals = assignment.find('=');
    // As in a shell, the last assignment holds.
    if (assignment.substr(0, equals) == key && equals != std::string_view::npos) {
      value = unlessEmpty(unquoted(assignment.substr(equals + 1)));
    }
  }
  return value;
}
