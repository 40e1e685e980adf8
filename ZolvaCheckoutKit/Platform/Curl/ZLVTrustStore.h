#pragma once

#include <optional>
#include <string>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlSystem.h>

/// The certificate authorities that a session trusts: the system's and those of the host's file.
///
/// Debian, for one, keeps each authority in a file whose name tells which it is, and of those
/// OpenSSL reads only the ones that a server's certificate leads to. Elsewhere all are read from
/// one file, which takes 20 ms. libcurl keeps the authorities of a file that it knows by name from
/// one connection to the next, but takes only one such file, so the host's is put together with the
/// system's in memory.
class ZLVTrustStore {
 public:
  /// `folder` is the system's, where libcurl's own is not meant.
  ZLVTrustStore(std::optional<std::string> hostFile, std::optional<std::string> folder);

  /// Finds the system's authorities, and reads both files where it has to, unless that has
  /// succeeded before. Whether it looked.
  bool read();

  /// What to give to libcurl as the folder of authorities, none where empty; absent where libcurl
  /// knows of no folders.
  [[nodiscard]] const std::optional<std::string>& folder() const { return folder_; }

  /// The same as the file. Where the host's could not be read it is that one, and libcurl complains
  /// of it.
  [[nodiscard]] const std::string& file() const { return file_; }

 private:
  std::optional<std::string> hostFile_;
  std::optional<std::string> systemFolder_;
  std::optional<ZLVMemoryFile> bundle_;
  std::optional<std::string> folder_;
  std::string file_;
  bool isRead_ = false;
};
