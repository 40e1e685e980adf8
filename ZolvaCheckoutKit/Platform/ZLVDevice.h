#pragma once

#include <optional>
#include <string>
#include <vector>

#include <ZolvaCheckoutKit/ZLVExport.h>

/// A size on the screen.
struct ZLVSize {
  double width = 0;   ///< In points.
  double height = 0;  ///< In points.

  /// Equal width and height.
  friend bool operator==(const ZLVSize&, const ZLVSize&) = default;
};

/// How much processor one thread uses.
struct ZLVThreadUsage {
  int cpuUsage = 0;     ///< Thousandths of one processor.
  bool isIdle = false;  ///< Whether it used none at all.
};

/// Facts about the device and the host application.
///
/// Every operation tells what holds now, returns at once (`threads` may take a few milliseconds),
/// may be called on any thread, also on several at once, and must not throw. Nothing is returned
/// where the system does not know. Each call of the library asks, on the main thread too.
class ZLV_EXPORT ZLVDevice {
 public:
  virtual ~ZLVDevice() = default;

  /// A UUID that is the same for this application on this device and tells nothing else.
  [[nodiscard]] virtual std::optional<std::string> identifierForVendor() const = 0;
  /// Size of the main screen; nothing when there is no screen.
  [[nodiscard]] virtual std::optional<ZLVSize> mainScreenSize() const = 0;
  /// The application's name as the user sees it, localised.
  [[nodiscard]] virtual std::optional<std::string> bundleDisplayName() const = 0;
  /// The application's short version. Without one no analytics event can be built.
  [[nodiscard]] virtual std::optional<std::string> bundleShortVersion() const = 0;
  /// The application's localisations in the user's order of preference; may be empty.
  [[nodiscard]] virtual std::vector<std::string> preferredLocalizations() const = 0;
  /// The user's languages as locale identifiers, preferred first; may be empty.
  [[nodiscard]] virtual std::vector<std::string> preferredLanguages() const = 0;
  /// Hardware model.
  [[nodiscard]] virtual std::optional<std::string> machine() const = 0;
  /// The device's name as its owner gave it.
  [[nodiscard]] virtual std::optional<std::string> name() const = 0;
  /// Version of the operating system, such as "12.4".
  [[nodiscard]] virtual std::optional<std::string> systemVersion() const = 0;

  /// An entry for every thread of the process, absent for a thread that cannot be read.
  using Threads = std::vector<std::optional<ZLVThreadUsage>>;
  /// The threads of this process; nothing when they cannot be listed.
  [[nodiscard]] virtual std::optional<Threads> threads() const = 0;
};
