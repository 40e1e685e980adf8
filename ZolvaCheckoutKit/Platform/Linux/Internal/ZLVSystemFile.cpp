#include <fstream>
#include <utility>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVSystemFile.h>

namespace {

constexpr std::string_view whiteSpace = " \t\r\n";

std::string_view trimmed(std::string_view text) {
  const auto begin = text.find_first_not_of(whiteSpace);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(whiteSpace) - begin + 1);
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
  std::ifstream stream(file);
  std::string line;
  std::getline(stream, line);
  return unlessEmpty(std::string(trimmed(std::string_view(line).substr(0, line.find('\0')))));
}

std::optional<std::string> ZLVSystemFile::setting(const std::filesystem::path& file,
                                                  std::string_view key) {
  std::ifstream stream(file);
  std::optional<std::string> value;
  for (std::string line; std::getline(stream, line);) {
    const std::string_view assignment = trimmed(line);
    const auto equals = assignment.find('=');
    // As in a shell, the last assignment holds.
    if (assignment.substr(0, equals) == key && equals != std::string_view::npos) {
      value = unlessEmpty(unquoted(assignment.substr(equals + 1)));
    }
  }
  return value;
}
