#pragma once

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include <ZolvaCheckoutKit/Platform/ZLVSystemLog.h>

/// A log for lines that others will read, such as the merchant's support: hands each on to another
/// log without tokens, phone numbers and e-mail addresses.
///
/// ```cpp
/// platform.systemLog = std::make_shared<ZLVRedactingLog>(platform.systemLog);
/// ```
///
/// What a name gives away is taken out whatever it looks like: the value of a key, parameter or
/// header whose name has "token", "phone", "mail" or one of a few others in it. What no name gives
/// away is taken out by its looks: e-mail addresses; numbers with a "+" and seven digits or more,
/// and others of nine digits or more, dates and addresses of machines aside; and what has at least
/// sixteen letters and digits in a row, three digits among them, which many ids have too. Amounts,
/// short ids and the names of people stay.
class ZLVRedactingLog final : public ZLVSystemLog {
 public:
  /// `target`, which must not be null, gets the lines.
  explicit ZLVRedactingLog(std::shared_ptr<ZLVSystemLog> target) : target_(std::move(target)) {}

  /// A line that there is no memory to redact is not written.
  void log(std::string_view line) override {
    std::string text;
    try {
      text = redacted(line);
    } catch (...) {
      return;
    }
    target_->log(text);
  }

  /// What stands in the place of whatever is taken out.
  static constexpr std::string_view Mark = "[redacted]";

  /// The line as it is handed on. Any thread.
  [[nodiscard]] static std::string redacted(std::string_view line) {
    return Redaction(line).made();
  }

 private:
  /// Goes through a line once, from the left. Not std::regex, which calls itself for each character
  /// of a long line.
  class Redaction {
   public:
    explicit Redaction(std::string_view line) : line_(line) {}

    std::string made() {
      while (at_ < line_.size()) {
        if (!takeLogin() && !takeAddress() && !takeNumber() && !takeWord()) keep(1);
      }
      return std::move(made_);
    }

   private:
    using Texts = std::initializer_list<std::string_view>;
    static constexpr std::ptrdiff_t minimumDigits = 9;
    static constexpr std::ptrdiff_t minimumDigitsAfterPlus = 7;
    static constexpr std::size_t minimumTokenSize = 16;
    static constexpr std::ptrdiff_t minimumTokenDigits = 3;

    static bool isDigit(char c) { return c >= '0' && c <= '9'; }
    static bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
    static bool isWord(char c) { return isDigit(c) || isLetter(c) || c == '_' || c == '-'; }
    static bool isBeyondASCII(char c) { return static_cast<unsigned char>(c) >= 0x80; }
    static bool isDomain(char c) {
      return isDigit(c) || isLetter(c) || c == '-' || c == '.' || isBeyondASCII(c);
    }
    static bool isLocal(char c) { return isDomain(c) || c == '_' || c == '+' || c == '%'; }
    static char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

    [[nodiscard]] char character(std::size_t i) const { return i < line_.size() ? line_[i] : '\0'; }
    /// Where those that are not so begin.
    template <class Is>
    [[nodiscard]] std::size_t past(std::size_t i, Is is) const {
      while (i < line_.size() && is(line_[i])) ++i;
      return i;
    }
    [[nodiscard]] std::size_t pastBackslashes(std::size_t i) const {
      return past(i, [](char c) { return c == '\\'; });
    }
    [[nodiscard]] std::size_t pastSpaces(std::size_t i) const {
      return past(i, [](char c) { return c == ' '; });
    }
    /// The size of the one of the texts, in any letter case, that stands at `i`, or 0.
    [[nodiscard]] std::size_t oneOf(std::size_t i, Texts texts) const {
      for (const auto text : texts) {
        const auto here = line_.substr(std::min(i, line_.size()), text.size());
        if (std::ranges::equal(here, text, {}, lowered, lowered)) return text.size();
      }
      return 0;
    }
    static bool hasOneOf(std::string_view name, Texts texts) {
      return std::ranges::any_of(texts, [&](std::string_view text) {
        const auto isSame = [](char a, char b) { return lowered(a) == b; };
        return std::search(name.begin(), name.end(), text.begin(), text.end(), isSame) !=
               name.end();
      });
    }

    void keep(std::size_t size) {
      made_ += line_.substr(at_, size);
      at_ += size;
    }
    bool keepTo(std::size_t end) {
      keep(end - at_);
      return true;
    }
    bool takeTo(std::size_t end) {
      if (end > at_) made_ += Mark;
      at_ = end;
      return true;
    }

    /// "://name:password@".
    bool takeLogin() {
      if (oneOf(at_, {"://"}) == 0) return false;
      keep(3);
      const auto end = std::min(line_.find_first_of("/?#\"'<> ", at_), line_.size());
      const auto sign = line_.substr(at_, end - at_).rfind('@');
      return sign == std::string_view::npos || takeTo(at_ + sign);
    }

    bool takeAddress() {
      const Texts signs{"@", "%40", "\\u0040"};
      if (at_ < noAddressBefore_) return false;
      auto end = at_;
      while (isLocal(character(end)) && oneOf(end, signs) == 0) ++end;
      const auto sign = oneOf(end, signs);
      const auto domain = past(end + sign, isDomain);
      if (end > at_ && sign > 0 && domain > end + sign) return takeTo(domain);
      noAddressBefore_ = end;
      return false;
    }

    bool takeNumber() {
      const auto plus = oneOf(at_, {"+", "%2B"});
      if (plus == 0 && !isDigit(character(at_))) return false;
      if (keepDate() || keepMachine()) return true;
      std::ptrdiff_t digits = 0;
      auto end = at_;
      for (auto i = at_ + plus;;) {
        const auto group = past(i, isDigit);
        if (isLetter(character(group)) || character(group) == '_') break;  // is of a word
        if (group > i) end = group;
        digits += static_cast<std::ptrdiff_t>(group - i);
        i = group;
        for (std::size_t count = 0, size = 1; count < 3 && size > 0; ++count, i += size) {
          size = oneOf(i, {" ", "-", ".", "(", ")", "%20"});
        }
        if (!isDigit(character(i))) break;
      }
      if (digits < (plus > 0 ? minimumDigitsAfterPlus : minimumDigits)) return false;
      return takeTo(end);
    }

    /// As in "2026-11-23".
    bool keepDate() {
      constexpr std::string_view form = "0000-00-00";
      for (std::size_t i = 0; i < form.size(); ++i) {
        const char c = character(at_ + i);
        if (form[i] == '0' ? !isDigit(c) : c != form[i]) return false;
      }
      const auto end = at_ + form.size();
      return !isDigit(character(end)) && character(end) != '-' && keepTo(end);
    }

    /// As in "192.168.100.200".
    bool keepMachine() {
      auto end = at_;
      for (int group = 0; group < 4; ++group) {
        if (group > 0 && character(end++) != '.') return false;
        const auto from = end;
        end = past(end, isDigit);
        if (end == from || end > from + 3) return false;
      }
      const bool goesOn = character(end) == '.' && isDigit(character(end + 1));
      return !goesOn && !isWord(character(end)) && keepTo(end);
    }

    bool takeWord() {
      const auto end = past(at_, isWord);
      if (end == at_) return false;
      const auto word = line_.substr(at_, end - at_);
      auto value = pastBackslashes(end);
      value = pastSpaces(value + oneOf(value, {"\"", "'", "%22"}));
      const auto sign = oneOf(value, {":", "=", "%3A", "%3D"});
      value += sign;
      if (sign > 0 && oneOf(value, {"//"}) == 0 &&
          hasOneOf(word, {"token", "phone", "mail", "mobile", "msisdn", "authorization", "cookie",
                          "secret", "password", "passcode", "api-key", "api_key", "apikey"})) {
        keepTo(pastSpaces(value));
        return takeValue(word);
      }
      if (oneOf(at_, {"bearer "}) > 0) {
        keepTo(end + 1);
        return takeTo(std::min(line_.find_first_of(" ,;\"'}", at_), line_.size()));
      }
      const bool isToken = word.size() >= minimumTokenSize &&
                           std::ranges::count_if(word, isDigit) >= minimumTokenDigits;
      const bool isNumber = std::search_n(word.begin(), word.end(), minimumDigits, true,
                                          [](char c, bool) { return isDigit(c); }) != word.end();
      return isToken || isNumber ? takeTo(end) : keepTo(end);
    }

    bool takeValue(std::string_view name) {
      const auto mark = pastBackslashes(at_);
      if (const auto quote = oneOf(mark, {"\"", "'", "%22"}); quote > 0) {
        const auto closing = line_.substr(at_, mark + quote - at_);
        keep(closing.size());
        return takeTo(endOfText(closing));
      }
      const bool isPhone = hasOneOf(name, {"phone", "mobile", "msisdn"});
      if (!isPhone && oneOf(at_, {"{", "[", "("}) > 0) return takeTo(endOfGroup());
      // A header's value may have anything in it.
      const std::string_view ends = hasOneOf(name, {"cookie"})          ? "}"
                                    : hasOneOf(name, {"authorization"}) ? "};"
                                                                        : " ,;&}])\"'#<>|\\";
      auto end = std::min(line_.find_first_of(ends, at_), line_.size());
      if (isPhone) {
        end = past(at_, [](char c) {
          return isWord(c) || std::string_view("+%.() ").find(c) != std::string_view::npos;
        });
      }
      return line_.substr(at_, end - at_) == "null" ? keepTo(end) : takeTo(end);
    }

    /// Of a text that closes as it opened. Other backslashes before a quote make it the text's own.
    [[nodiscard]] std::size_t endOfText(std::string_view closing) const {
      const auto escapes = closing.find_first_not_of('\\');
      for (auto i = at_; i < line_.size();) {
        const auto mark = pastBackslashes(i);
        const auto count = mark - i;
        if (line_.substr(mark).starts_with(closing.substr(escapes)) &&
            (escapes == 0 ? count % 2 == 0 : count == escapes)) {
          return mark - escapes;
        }
        i = mark + 1;
      }
      return line_.size();
    }

    /// Of a list or an object, with what its texts hold.
    [[nodiscard]] std::size_t endOfGroup() const {
      std::size_t depth = 0;
      bool isText = false;
      for (auto i = at_; i < line_.size(); ++i) {
        const char c = line_[i];
        if (c == '\\') {
          ++i;
        } else if (c == '"') {
          isText = !isText;
        } else if (!isText && (c == '{' || c == '[' || c == '(')) {
          ++depth;
        } else if (!isText && (c == '}' || c == ']' || c == ')') && --depth == 0) {
          return i + 1;
        }
      }
      return line_.size();
    }

    std::string_view line_;
    std::size_t at_ = 0;
    std::size_t noAddressBefore_ = 0;
    std::string made_;
  };

  const std::shared_ptr<ZLVSystemLog> target_;
};
