#include <thread>
#include <utility>

#include <sys/utsname.h>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVLinuxDevice.h>
#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVSystemFile.h>
#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVSystemLanguages.h>
#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVThreadClocks.h>
#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVVendorIdentifier.h>

namespace {

/// Between the two readings of the threads' clocks: long enough to see who is at work, short enough
/// for the main thread.
constexpr std::chrono::milliseconds threadInterval(5);

constexpr const char* firmwareTables = "sys/class/dmi/id";
constexpr const char* boardDescription = "sys/firmware/devicetree/base";

utsname kernelNames() {
  utsname names{};
  uname(&names);
  return names;
}

}  // namespace

ZLVLinuxDevice::ZLVLinuxDevice(ZLVLinuxApplication application, std::filesystem::path root)
    : application_(std::move(application)),
      root_(std::move(root)),
      hasFirmwareTables_(std::filesystem::exists(root_ / firmwareTables)),
      hasBoardDescription_(std::filesystem::exists(root_ / boardDescription)),
      productName_(root_ / firmwareTables, "product_name"),
      boardModel_(root_ / boardDescription, "model"),
      prettyHostname_(root_, "etc/machine-info", "PRETTY_HOSTNAME"),
      versionByAdministrator_(root_, "etc/os-release", "VERSION_ID"),
      versionByVendor_(root_, "usr/lib/os-release", "VERSION_ID") {}

std::optional<std::string> ZLVLinuxDevice::identifierForVendor() const {
  for (const char* file : {"etc/machine-id", "var/lib/dbus/machine-id"}) {
    if (const auto machineIdentifier = ZLVSystemFile::firstLine(root_ / file)) {
      return ZLVVendorIdentifier::identifier(*machineIdentifier, application_.identifier);
    }
  }
  return std::nullopt;
}

std::optional<ZLVSize> ZLVLinuxDevice::mainScreenSize() const { return std::nullopt; }

std::optional<std::string> ZLVLinuxDevice::bundleDisplayName() const {
  if (application_.displayName.empty()) return std::nullopt;
  return application_.displayName;
}

std::optional<std::string> ZLVLinuxDevice::bundleShortVersion() const {
  return application_.shortVersion;
}

std::vector<std::string> ZLVLinuxDevice::preferredLocalizations() const { return {}; }

std::vector<std::string> ZLVLinuxDevice::preferredLanguages() const {
  return ZLVSystemLanguages::preferred();
}

std::optional<std::string> ZLVLinuxDevice::machine() const {
  if (auto name = hasFirmwareTables_ ? productName_.value() : std::nullopt) return name;
  if (auto model = hasBoardDescription_ ? boardModel_.value() : std::nullopt) return model;
  static const auto& kernelMachine = *new std::string(kernelNames().machine);
  return kernelMachine;
}

std::optional<std::string> ZLVLinuxDevice::name() const {
  if (auto name = prettyHostname_.value()) return name;
  return kernelNames().nodename;
}

std::optional<std::string> ZLVLinuxDevice::systemVersion() const {
  if (auto version = versionByAdministrator_.value()) return version;
  if (auto version = versionByVendor_.value()) return version;
  return kernelNames().release;
}

std::optional<ZLVDevice::Threads> ZLVLinuxDevice::threads() const {
  const auto earlier = ZLVThreadClocks::read();
  if (!earlier) return std::nullopt;
  std::this_thread::sleep_for(threadInterval);
  const auto now = ZLVThreadClocks::read();
  if (!now) return std::nullopt;
  return now->usageSince(*earlier);
}
