#pragma once

#include <string>

/// The system's certificate authorities and a file of further ones, as one file in memory.
///
/// libcurl keeps the authorities of a file that it knows by name from one connection to the next,
/// but takes only one such file, and reads authorities given in any other way for each connection.
class ZLVCertificateBundle {
 public:
  /// `systemFile` may be null.
  ZLVCertificateBundle(const char* systemFile, const std::string& furtherFile);
  ZLVCertificateBundle(const ZLVCertificateBundle&) = delete;
  ZLVCertificateBundle& operator=(const ZLVCertificateBundle&) = delete;
  ~ZLVCertificateBundle();

  /// The name to give to libcurl, valid as long as the bundle; that of the further file itself,
  /// which libcurl then complains of, where that could not be read.
  [[nodiscard]] const std::string& path() const noexcept { return path_; }

  /// Whether it is both; one that is not may be made again.
  [[nodiscard]] bool isWhole() const noexcept { return isWhole_; }

 private:
  int descriptor_ = -1;
  std::string path_;
  bool isWhole_ = false;
};
