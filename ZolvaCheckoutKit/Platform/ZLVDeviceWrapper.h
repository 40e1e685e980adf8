#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <ZolvaCheckoutKit/Platform/ZLVDevice.h>

/// A device that answers with another one's facts. A backend or a host that knows some of them
/// better derives its own from this and overrides those alone:
///
/// ```cpp
/// class MyDevice final : public ZLVDeviceWrapper {
///  public:
///   using ZLVDeviceWrapper::ZLVDeviceWrapper;
///   std::optional<std::string> name() const override { return "Till 4"; }
/// };
/// platform.device = std::make_shared<MyDevice>(platform.device);
/// ```
class ZLV_EXPORT ZLVDeviceWrapper : public ZLVDevice {
 public:
  /// `target` must not be null; it is kept as long as this.
  explicit ZLVDeviceWrapper(std::shared_ptr<const ZLVDevice> target) : target_(std::move(target)) {}

  [[nodiscard]] std::optional<std::string> identifierForVendor() const override {
    return target_->identifierForVendor();
  }
  [[nodiscard]] std::optional<ZLVSize> mainScreenSize() const override {
    return target_->mainScreenSize();
  }
  [[nodiscard]] std::optional<std::string> bundleDisplayName() const override {
    return target_->bundleDisplayName();
  }
  [[nodiscard]] std::optional<std::string> bundleShortVersion() const override {
    return target_->bundleShortVersion();
  }
  [[nodiscard]] std::vector<std::string> preferredLocalizations() const override {
    return target_->preferredLocalizations();
  }
  [[nodiscard]] std::vector<std::string> preferredLanguages() const override {
    return target_->preferredLanguages();
  }
  [[nodiscard]] std::optional<std::string> machine() const override { return target_->machine(); }
  [[nodiscard]] std::optional<std::string> name() const override { return target_->name(); }
  [[nodiscard]] std::optional<std::string> systemVersion() const override {
    return target_->systemVersion();
  }
  [[nodiscard]] std::optional<Threads> threads() const override { return target_->threads(); }

 private:
  std::shared_ptr<const ZLVDevice> target_;
};
