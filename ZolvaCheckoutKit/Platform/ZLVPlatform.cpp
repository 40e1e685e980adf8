#include <atomic>
#include <utility>

#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>
#include <ZolvaCheckoutKit/ZLVError.h>

namespace {

std::atomic<const ZLVPlatform*> installedPlatform{nullptr};

}  // namespace

void ZLVPlatform::install(ZLVPlatform platform) {
  const std::pair<bool, std::string_view> parts[] = {
      {static_cast<bool>(platform.makeURLSession), "makeURLSession"},
      {platform.mainQueue != nullptr, "mainQueue"},
      {platform.systemLog != nullptr, "systemLog"},
      {platform.device != nullptr, "device"},
      {platform.userInterface != nullptr, "userInterface"},
  };
  for (const auto& [isPresent, part] : parts) {
    if (!isPresent) {
      throw ZLVProgrammingFault("ZLVPlatform::install: the platform has no " + std::string(part));
    }
  }
  // Never freed: the library has no shutdown, and calls may be under way when the process ends.
  auto kept = std::make_unique<const ZLVPlatform>(std::move(platform));
  const ZLVPlatform* none = nullptr;
  if (!installedPlatform.compare_exchange_strong(none, kept.get())) {
    throw ZLVProgrammingFault("ZLVPlatform::install: a platform is installed already");
  }
  if (kept->localizedText) ZLVError::setTranslation(&kept->localizedText);
  static_cast<void>(kept.release());
}

bool ZLVPlatform::isInstalled() noexcept { return installedPlatform.load() != nullptr; }

const ZLVPlatform& ZLVPlatform::installed() {
  if (const auto* platform = installedPlatform.load()) return *platform;
  throw ZLVProgrammingFault("ZLVPlatform::installed: call ZLVPlatform::install first");
}
