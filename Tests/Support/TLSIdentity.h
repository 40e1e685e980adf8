#pragma once

// Certificates made on the spot, for servers that are to be trusted or not.

#include <memory>
#include <optional>
#include <string>

#include <openssl/ssl.h>

/// A key and the certificate for it.
class TLSIdentity {
 public:
  struct Subject {
    std::string address = "127.0.0.1";  ///< The IP address that it is made out to.
    int validFromDays = -1;             ///< Counted from now.
    int validToDays = 1;
    bool isAuthority = false;
    std::string organization = {};
  };

  /// Signed by `issuer`, or by itself.
  explicit TLSIdentity(const Subject& subject, const TLSIdentity* issuer = nullptr);

  [[nodiscard]] std::string certificatePEM() const;

  /// As OpenSSL has it in a folder of authorities.
  [[nodiscard]] std::string nameHash() const;

  /// For a `RawServer`.
  [[nodiscard]] std::shared_ptr<SSL_CTX> serverContext() const;

 private:
  std::shared_ptr<EVP_PKEY> key_;
  std::shared_ptr<X509> certificate_;
};
