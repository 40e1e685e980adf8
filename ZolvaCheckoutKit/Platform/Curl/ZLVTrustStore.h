#pragma once

#include <optional>
#include <string>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlSystem.h>

/// The certificate authorities that a session trusts: the system's and those of the host's file.
///
/// libcurl keeps the authorities of a file that it knows by name from one connection to the next,
/// but takes only one such file, and reads authorities given in any other way for each connection.
/// So both are put together in one file, in memory.
class ZLVTrustStore {
 public:
  explicit ZLVTrustStore(std::optional<std::string> hostFile);

  /// Finds the system's authorities and reads both files, unless that has succeeded before. Whether
  /// it had to.
  bool read();

  /// Whether the system's authorities stand in a file.
  [[nodiscard]] bool hasSystemFile() const { return hasSystemFile_; }

  /// The name of the file to give to libcurl, whose own it is when empty. Where the host's could
  /// not be read it is that one, and libcurl complains of it.
  [[nodiscard]] const std::string& file() const { return file_; }

 private:
  std::optional<std::string> hostFile_;
  std::optional<ZLVMemoryFile> bundle_;
  std::string file_;
  bool hasSystemFile_ = false;
  bool isRead_ = false;
};
