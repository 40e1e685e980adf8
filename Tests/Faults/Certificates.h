#pragma once

#include "Tests/Support/TLSIdentity.h"

/// What servers and authorities do with certificates.
struct Certificates {
  /// A list, as PEM, that says `identity` is revoked by its issuer.
  static std::string revocationList(const TLSIdentity& identity, const TLSIdentity& issuer);
  /// Makes clients look at the certificate in each connection.
  static std::shared_ptr<SSL_CTX> withoutResumption(std::shared_ptr<SSL_CTX> context);
  /// New connections are served with the certificate of `other`.
  static void change(SSL_CTX& context, SSL_CTX& other);
  static void agreeOnHTTP2(SSL_CTX& context);
};
