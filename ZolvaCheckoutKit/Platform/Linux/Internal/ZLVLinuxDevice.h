#pragma once

#include <filesystem>

#include <ZolvaCheckoutKit/Platform/ZLVDevice.h>

/// The application as its host describes it.
struct ZLVLinuxApplication {
  std::string identifier;
  std::string displayName;
  std::string shortVersion;
};

/// Facts from the files in which a Linux system keeps them, from the kernel, and from the
/// environment. What stays as it is until the next start is read once.
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
  std::filesystem::path machineInfo_;
  std::string machine_;
  std::string systemVersion_;
};
