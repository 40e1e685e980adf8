#include "Tests/Faults/Certificates.h"

#include <iterator>

#include <openssl/pem.h>
#include <openssl/x509.h>

std::string Certificates::revocationList(const TLSIdentity& identity, const TLSIdentity& issuer) {
  const auto revoked = identity.serverContext();
  const auto authority = issuer.serverContext();
  const std::unique_ptr<ASN1_TIME, decltype(&ASN1_TIME_free)> now(X509_gmtime_adj(nullptr, -60),
                                                                  &ASN1_TIME_free);
  const std::unique_ptr<X509_CRL, decltype(&X509_CRL_free)> list(X509_CRL_new(), &X509_CRL_free);
  X509_CRL_set_version(list.get(), X509_CRL_VERSION_2);
  X509_CRL_set_issuer_name(list.get(),
                           X509_get_subject_name(SSL_CTX_get0_certificate(authority.get())));
  X509_CRL_set1_lastUpdate(list.get(), now.get());
  X509_REVOKED* entry = X509_REVOKED_new();  // goes to the list
  X509_REVOKED_set_serialNumber(entry,
                                X509_get_serialNumber(SSL_CTX_get0_certificate(revoked.get())));
  X509_REVOKED_set_revocationDate(entry, now.get());
  X509_CRL_add0_revoked(list.get(), entry);
  X509_CRL_sign(list.get(), SSL_CTX_get0_privatekey(authority.get()), EVP_sha256());

  const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), &BIO_free);
  PEM_write_bio_X509_CRL(memory.get(), list.get());
  char* text = nullptr;
  const auto size = BIO_get_mem_data(memory.get(), &text);
  return {text, static_cast<std::size_t>(size)};
}

std::shared_ptr<SSL_CTX> Certificates::withoutResumption(std::shared_ptr<SSL_CTX> context) {
  SSL_CTX_set_session_cache_mode(context.get(), SSL_SESS_CACHE_OFF);
  SSL_CTX_set_num_tickets(context.get(), 0);
  return context;
}

void Certificates::change(SSL_CTX& context, SSL_CTX& other) {
  SSL_CTX_use_certificate(&context, SSL_CTX_get0_certificate(&other));
  SSL_CTX_use_PrivateKey(&context, SSL_CTX_get0_privatekey(&other));
}

void Certificates::agreeOnHTTP2(SSL_CTX& context) {
  const auto choose = [](SSL* /*connection*/, const unsigned char** chosen, unsigned char* size,
                         const unsigned char* /*offers*/, unsigned int /*offersSize*/,
                         void* /*argument*/) {
    static constexpr unsigned char protocol[] = {'h', '2'};
    *chosen = std::data(protocol);
    *size = std::size(protocol);
    return SSL_TLSEXT_ERR_OK;
  };
  SSL_CTX_set_alpn_select_cb(&context, choose, nullptr);
}
