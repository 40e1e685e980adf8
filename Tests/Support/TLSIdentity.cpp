#include "TLSIdentity.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <vector>

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

namespace {

void addExtension(X509* certificate, int kind, const std::string& value) {
  const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> extension(
      X509V3_EXT_conf_nid(nullptr, nullptr, kind, value.c_str()), &X509_EXTENSION_free);
  X509_add_ext(certificate, extension.get(), -1);
}

}  // namespace

TLSIdentity::TLSIdentity(const Subject& subject, const TLSIdentity* issuer)
    : key_(EVP_EC_gen("P-256"), &EVP_PKEY_free), certificate_(X509_new(), &X509_free) {
  static std::atomic<long> serial = 0;
  X509* certificate = certificate_.get();
  X509_set_version(certificate, X509_VERSION_3);
  ASN1_INTEGER_set(X509_get_serialNumber(certificate), ++serial);
  constexpr long secondsPerDay = 86400;
  X509_gmtime_adj(X509_getm_notBefore(certificate), subject.validFromDays * secondsPerDay);
  X509_gmtime_adj(X509_getm_notAfter(certificate), subject.validToDays * secondsPerDay);
  X509_set_pubkey(certificate, key_.get());

  const auto addName = [certificate](const char* field, const std::string& name) {
    const std::vector<unsigned char> bytes(name.begin(), name.end());
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate), field, MBSTRING_UTF8,
                               bytes.data(), static_cast<int>(bytes.size()), -1, 0);
  };
  addName("CN", "test " + std::to_string(serial));
  if (!subject.organization.empty()) addName("O", subject.organization);
  const X509* signer = issuer == nullptr ? certificate : issuer->certificate_.get();
  X509_set_issuer_name(certificate, X509_get_subject_name(signer));
  addExtension(certificate, NID_basic_constraints,
               subject.isAuthority ? "critical,CA:TRUE" : "CA:FALSE");
  addExtension(certificate, NID_subject_alt_name, "IP:" + subject.address);
  X509_sign(certificate, (issuer == nullptr ? key_ : issuer->key_).get(), EVP_sha256());
}

std::string TLSIdentity::certificatePEM() const {
  const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), &BIO_free);
  PEM_write_bio_X509(memory.get(), certificate_.get());
  char* text = nullptr;
  const auto size = BIO_get_mem_data(memory.get(), &text);
  return {text, static_cast<std::size_t>(size)};
}

std::string TLSIdentity::nameHash() const {
  std::array<char, 9> text{};
  std::snprintf(text.data(), text.size(), "%08lx", X509_subject_name_hash(certificate_.get()));
  return text.data();
}

std::shared_ptr<SSL_CTX> TLSIdentity::serverContext() const {
  std::shared_ptr<SSL_CTX> context(SSL_CTX_new(TLS_server_method()), &SSL_CTX_free);
  SSL_CTX_use_certificate(context.get(), certificate_.get());
  SSL_CTX_use_PrivateKey(context.get(), key_.get());
  return context;
}
