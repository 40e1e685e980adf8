#pragma once

#include <memory>
#include <optional>
#include <string>

struct Curl_URL;

/// A URL and its parts as libcurl itself takes it apart, so that what is decided by them holds for
/// the request that it sends.
struct ZLVWebURL {
  std::string text = {};    ///< What is sent.
  std::string scheme = {};  ///< Lower case.
  std::string host = {};    ///< Lower case; IPv6 addresses in brackets.
  std::string port = {};    ///< The scheme's own where the text has none.
  /// The same for libcurl, where it has been taken apart.
  std::shared_ptr<Curl_URL> parts = {};

  /// Nothing when libcurl cannot read the URL; http and https are not the only schemes it reads.
  static std::optional<ZLVWebURL> parsed(const std::string& text);

  /// The URL that a Location header sends to; spaces and the like in it are escaped.
  [[nodiscard]] std::optional<ZLVWebURL> resolved(const std::string& location) const;

  [[nodiscard]] bool hasSameOrigin(const ZLVWebURL& other) const;

  /// Scheme, host and port: a server's name.
  [[nodiscard]] std::string origin() const { return scheme + ':' + host + ':' + port; }

  /// Whether the host is this machine by name or address.
  [[nodiscard]] bool isLoopback() const;

  /// `text`, which need not be a URL, without a user name and password.
  static std::string withoutCredentials(std::string text);
};
