#include <algorithm>
#include <array>

#include <ZolvaCheckoutKit/Core/Values/ZLVText.h>
#include <ZolvaCheckoutKit/ZLVURL.h>

namespace {

constexpr bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

using Characters = std::array<bool, 256>;

/// The characters of `others` and those that may stand anywhere.
constexpr Characters charactersWith(std::string_view others) {
  constexpr std::string_view unreservedMarks = "-._~";
  constexpr std::string_view subDelimiters = "!$&'()*+,;=";
  Characters characters{};
  for (std::size_t i = 0; i < characters.size(); ++i) {
    const char c = static_cast<char>(i);
    characters[i] =
        isLetter(c) || isDigit(c) || unreservedMarks.find(c) != std::string_view::npos ||
        subDelimiters.find(c) != std::string_view::npos || others.find(c) != std::string_view::npos;
  }
  return characters;
}

constexpr Characters hostCharacters = charactersWith("");
constexpr Characters authorityCharacters = charactersWith(":");
constexpr Characters pathCharacters = charactersWith(":@/");
constexpr Characters fragmentCharacters = charactersWith(":@/?");
constexpr Characters queryCharacters = charactersWith(":@/?[]");

/// Whether `text` is made of `characters` and percent-escapes.
bool consistsOf(std::string_view text, const Characters& characters) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '%') {
      if (i + 2 >= text.size() || ZLVHexDigit(text[i + 1]) < 0 || ZLVHexDigit(text[i + 2]) < 0) {
        return false;
      }
      i += 2;
    } else if (!characters[static_cast<unsigned char>(c)]) {
      return false;
    }
  }
  return true;
}

bool isScheme(std::string_view text) {
  return !text.empty() && isLetter(text.front()) &&
         std::all_of(text.begin(), text.end(), [](char c) {
           return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
         });
}

/// Cuts `text` off at the first of `delimiters` and returns what stood before it.
std::string_view takeUntil(std::string_view& text, std::string_view delimiters) {
  const auto* const end =
      std::find_first_of(text.begin(), text.end(), delimiters.begin(), delimiters.end());
  const auto taken = text.substr(0, static_cast<std::size_t>(end - text.begin()));
  text.remove_prefix(taken.size());
  return taken;
}

bool isIPLiteral(std::string_view text) {
  if (text.starts_with('v') || text.starts_with('V')) return consistsOf(text, authorityCharacters);
  return text.find(':') != std::string_view::npos &&
         std::all_of(text.begin(), text.end(),
                     [](char c) { return ZLVHexDigit(c) >= 0 || c == ':' || c == '.'; });
}

/// Reads `[userinfo@]host[:port]`; nothing when it is malformed.
std::optional<std::string_view> hostOfAuthority(std::string_view authority) {
  if (const auto at = authority.find('@'); at != std::string_view::npos) {
    if (!consistsOf(authority.substr(0, at), authorityCharacters)) return std::nullopt;
    authority.remove_prefix(at + 1);
  }
  std::string_view host;
  if (authority.starts_with('[')) {
    const auto end = authority.find(']');
    if (end == std::string_view::npos) return std::nullopt;
    host = authority.substr(1, end - 1);
    if (!isIPLiteral(host)) return std::nullopt;
    authority.remove_prefix(end + 1);
  } else {
    host = takeUntil(authority, ":");
    if (!consistsOf(host, hostCharacters)) return std::nullopt;
  }
  if (authority.empty()) return host;
  const auto port = authority.substr(1);
  const bool isPort = authority.front() == ':' && std::all_of(port.begin(), port.end(), isDigit);
  return isPort ? std::optional(host) : std::nullopt;
}

}  // namespace

std::optional<ZLVURL> ZLVURL::URLWithString(std::string_view text) {
  ZLVURL url;
  url.text_ = text;

  const auto beforeColon = text.substr(0, text.find_first_of(":/?#"));
  if (beforeColon.size() < text.size() && text[beforeColon.size()] == ':') {
    if (!isScheme(beforeColon)) return std::nullopt;
    url.scheme_ = beforeColon;
    std::transform(url.scheme_.begin(), url.scheme_.end(), url.scheme_.begin(), [](char c) {
      return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    text.remove_prefix(beforeColon.size() + 1);
  }
  if (text.starts_with("//")) {
    text.remove_prefix(2);
    const auto host = hostOfAuthority(takeUntil(text, "/?#"));
    if (!host) return std::nullopt;
    url.host_ = *host;
  }
  if (!consistsOf(takeUntil(text, "?#"), pathCharacters)) return std::nullopt;
  if (text.starts_with('?')) {
    text.remove_prefix(1);
    if (!consistsOf(takeUntil(text, "#"), queryCharacters)) return std::nullopt;
  }
  if (text.starts_with('#') && !consistsOf(text.substr(1), fragmentCharacters)) return std::nullopt;
  return url;
}
