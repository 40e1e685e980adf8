#pragma once

#include <optional>
#include <string>

#include <gio/gio.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>

/// The certificate authorities that the host trusts beside the system's.
class ZLVCertificateAuthorities {
 public:
  /// `file` is in PEM; it is read when it is first needed.
  explicit ZLVCertificateAuthorities(std::optional<std::string> file) : file_(std::move(file)) {}

  /// Whether one of them vouches, without reservation, that this is the certificate of `host`.
  /// False for a file that cannot be read.
  [[nodiscard]] bool vouch(GTlsCertificate* certificate, const std::string& host);

 private:
  std::optional<std::string> file_;
  ZLVGObject<GTlsDatabase> database_;
};
