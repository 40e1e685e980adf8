#pragma once

#include <ZolvaCheckoutKit/C/Internal/ZLVHost.h>
#include <ZolvaCheckoutKit/Platform/ZLVDevice.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

/// The device as the host's `device_fact` has it.
class ZLVHostDevice final : public ZLVDevice {
 public:
  explicit ZLVHostDevice(const ZLVHost& host) : host_(host) {}

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
  /// What the host answers; absent when it does not.
  [[nodiscard]] ZLVValue fact(std::int32_t fact) const;
  [[nodiscard]] std::optional<std::string> text(std::int32_t fact) const;
  [[nodiscard]] std::vector<std::string> texts(std::int32_t fact) const;

  const ZLVHost& host_;
};
