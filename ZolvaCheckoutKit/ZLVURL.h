#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <ZolvaCheckoutKit/ZLVExport.h>

/// A URL, absolute or relative, kept as it was written. An immutable value, which any thread may
/// read. A getter refers to the URL, so keep it while you use what it hands out; of a temporary URL
/// it copies.
class ZLV_EXPORT ZLVURL {
 public:
  /// Parses by RFC 3986 without changing or escaping anything; `[` and `]` are also accepted in a
  /// query. Nothing when the text is no URL: percent-encode spaces and whatever else a URL may not
  /// hold before you make one.
  static std::optional<ZLVURL> URLWithString(std::string_view text);

  /// The text it was parsed from.
  [[nodiscard]] const std::string& absoluteString() const& noexcept { return text_; }
  [[nodiscard]] std::string absoluteString() const&& { return text_; }

  /// Lower-case scheme without its colon; empty for a relative URL.
  [[nodiscard]] const std::string& scheme() const& noexcept { return scheme_; }
  [[nodiscard]] std::string scheme() const&& { return scheme_; }

  /// Host as written, IPv6 addresses without their brackets; empty when there is none.
  [[nodiscard]] const std::string& host() const& noexcept { return host_; }
  [[nodiscard]] std::string host() const&& { return host_; }

  /// Equal texts: "HTTP://a" and "http://a" are not equal.
  friend bool operator==(const ZLVURL& left, const ZLVURL& right) noexcept {
    return left.text_ == right.text_;
  }

 private:
  ZLVURL() = default;

  std::string text_;
  std::string scheme_;
  std::string host_;
};
