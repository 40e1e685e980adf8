#include <ZolvaCheckoutKit/Core/Helpers/ZLVDeviceHelper.h>
#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

namespace {

constexpr std::size_t machineBufferSize = 100;
constexpr float usageScale = 1000.0F;
constexpr std::string_view fallbackLanguage = "ID";

const ZLVDevice& device() { return *ZLVPlatform::installed().device; }

}  // namespace

ZLVDeviceHelper::Text ZLVDeviceHelper::deviceToken() { return device().identifierForVendor(); }

ZLVSize ZLVDeviceHelper::screenSize() { return device().mainScreenSize().value_or(ZLVSize{}); }

ZLVDeviceHelper::Text ZLVDeviceHelper::applicationName() { return device().bundleDisplayName(); }

ZLVDeviceHelper::Text ZLVDeviceHelper::applicationVersion() {
  return device().bundleShortVersion();
}

std::string ZLVDeviceHelper::deviceModel() {
  auto machine = device().machine().value_or("");
  return machine.size() < machineBufferSize ? machine : std::string();
}

ZLVDeviceHelper::Text ZLVDeviceHelper::deviceCurrentLanguage() {
  const auto languages = device().preferredLanguages();
  if (languages.empty()) return std::nullopt;
  const auto& identifier = languages.front();
  const auto beforeUnderscore = identifier.substr(0, identifier.find('_'));
  return beforeUnderscore.substr(0, beforeUnderscore.find_first_of("-@."));
}

std::variant<std::vector<std::string>, std::string> ZLVDeviceHelper::deviceLanguage() {
  auto localizations = device().preferredLocalizations();
  if (localizations.empty()) return std::string(fallbackLanguage);
  return localizations;
}

ZLVDeviceHelper::Text ZLVDeviceHelper::deviceName() { return device().name(); }

ZLVDeviceHelper::Text ZLVDeviceHelper::osVersion() { return device().systemVersion(); }

float ZLVDeviceHelper::currentCPUUsage() {
  const auto threads = device().threads();
  if (!threads) return -1;
  float total = 0;
  for (const auto& thread : *threads) {
    if (!thread) return -1;
    if (thread->isIdle) continue;
    const float share = static_cast<float>(thread->cpuUsage) / usageScale;
    total = static_cast<float>(static_cast<double>(share) * 100.0 + static_cast<double>(total));
  }
  return total;
}

bool ZLVDeviceHelper::isOSVersionAtLeast(int major) {
  return ZLVValue(osVersion()).integerValue() >= major;
}
