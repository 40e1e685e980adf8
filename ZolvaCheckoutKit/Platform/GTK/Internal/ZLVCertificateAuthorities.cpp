#include <filesystem>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVCertificateAuthorities.h>

bool ZLVCertificateAuthorities::vouch(GTlsCertificate* certificate, const std::string& host) {
  if (!file_) return false;
  if (!database_) {
    // GLib wants an absolute path.
    const auto file = std::filesystem::absolute(*file_);
    database_ = ZLVGObject<GTlsDatabase>::take(
        G_TLS_DATABASE(g_tls_file_database_new(file.c_str(), nullptr)));
    if (!database_) return false;
  }
  constexpr guint16 anyPort = 0;
  const auto identity = ZLVGObject<GSocketConnectable>::take(
      G_SOCKET_CONNECTABLE(g_network_address_new(host.c_str(), anyPort)));
  return g_tls_database_verify_chain(database_.get(), certificate,
                                     G_TLS_DATABASE_PURPOSE_AUTHENTICATE_SERVER, identity.get(),
                                     nullptr, G_TLS_DATABASE_VERIFY_NONE, nullptr, nullptr) == 0;
}
