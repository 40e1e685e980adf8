#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <ZolvaCheckoutKit/Platform/ZLVDevice.h>

/// Facts about the device and the host application, asked of the platform at every call. A fact
/// that the platform does not know is absent. Any thread.
class ZLVDeviceHelper {
 public:
  ZLVDeviceHelper() = delete;

  using Text = std::optional<std::string>;

  /// The vendor-scoped identifier of the device, a UUID.
  static Text deviceToken();
  /// Size of the main screen in points; zero without one.
  static ZLVSize screenSize();
  static Text applicationName();
  static Text applicationVersion();
  /// Hardware model of up to 99 bytes; empty when it is longer or unknown.
  static std::string deviceModel();
  /// Language code of the user's first preferred language.
  static Text deviceCurrentLanguage();
  /// The application's preferred localisations, all of them, or "ID" when it has none.
  static std::variant<std::vector<std::string>, std::string> deviceLanguage();
  static Text deviceName();
  static Text osVersion();
  /// Percent of one processor that the process's busy threads use together, or -1 when a thread
  /// cannot be read.
  static float currentCPUUsage();

  /// Whether the operating system's version is `major` or later.
  static bool isOSVersionAtLeast(int major);
};
