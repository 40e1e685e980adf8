#pragma once

#include <string>

#include <gio/gio.h>

/// Why there is no page to look at.
struct ZLVProblem {
  enum class Kind {
    Address,        ///< No page can be shown from there.
    Certificate,    ///< The server's certificate was refused.
    Crashed,        ///< The process that shows the page has ended.
    Empty,          ///< The server has answered that there is nothing to show.
    File,           ///< The server has answered with something that is no page.
    LedOut,         ///< The page led to another application before there was anything to see.
    Login,          ///< The server wants a name and a password of the engine.
    NoApplication,  ///< As LedOut, but there is no such application.
    ProxyLogin,     ///< The proxy does.
    Unreachable     ///< The page could not be fetched.
  };

  Kind kind = Kind::Unreachable;
  /// What was to be shown.
  std::string URL{};
  /// Of that, or of the proxy.
  std::string host{};
  /// What is wrong with the certificate.
  GTlsCertificateFlags certificateFlags{};
  /// The engine's own words, already in the user's language; may be empty.
  std::string detail{};
};
