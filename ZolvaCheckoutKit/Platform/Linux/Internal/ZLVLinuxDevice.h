#pragma once

#include <filesystem>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVSystemFact.h>
#include <ZolvaCheckoutKit/Platform/ZLVDevice.h>

/// The application as its host describes it.
struct ZLVLinuxApplication {
  std::string identifier;
  std::string displayName;
  std::string shortVersion;
};

/// Facts from the files in which a Linux system keeps them, from the kernel, and from the
/// environment, as they are at each call.
class ZLVLinuxDevice final : public ZLVDevice {
 public:
  /// `root` is where the system's files are looked for.
  explicit ZLVLinuxDevice(ZLVLinuxApplication application, std::filesystem::path root = "/");

  [[nodiscard]] std::optional<std::string> identifierForVendor() const override;
  [[nodiscard]] std::optional<ZLVSize> mainScreenSize() const override;
  [[nodiscard]] std::optional<std::string> bundleDisplayName() const override;
  [[nodiscard]] std::optional<std::string> bundleShortVersion() const override;
  [[nodiscard]] std::vector<std::string> preferredLocalizations() const override;
  [[nodiscard]] std::vector<std::string> preferredLanguages() const override;
  [[nodiscard]] std::optional<std::string> machine() const override;
  [[nodiscard]] std::optional<std::string> name() const override;
  [[nodiscard]] std::optional<std::string> systemVersion() const override;
  [[nodiscard]] std::optional<Threads> threads() const override;

 private:
  ZLVLinuxApplication application_;
  std::filesystem::path root_;
  // What the firmware tells at all is settled before the first process starts.
  bool hasFirmwareTables_;
  bool hasBoardDescription_;
  ZLVSystemFact productName_;
  ZLVSystemFact boardModel_;
  ZLVSystemFact prettyHostname_;
  ZLVSystemFact versionByAdministrator_;
  ZLVSystemFact versionByVendor_;
};
