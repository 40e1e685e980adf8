#pragma once

#include <string>

#include <gio/gio.h>

/// Why there is no page to look at.
struct ZLVProblem {
  enum class Kind {
    Certificate,  ///< The server's certificate was refused.
    Unreachable,  ///< The page could not be fetched.
    LedOut,       ///< The page led to another application before there was anything to see.
    Crashed       ///< The process that shows the page has ended.
  };

  Kind kind = Kind::Unreachable;
  /// What was to be shown.
  std::string URL{};
  std::string host{};
  /// What is wrong with the certificate.
  GTlsCertificateFlags certificateFlags{};
  /// The engine's own words, already in the user's language; may be empty.
  std::string detail{};
};
