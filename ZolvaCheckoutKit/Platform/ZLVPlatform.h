#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <ZolvaCheckoutKit/Platform/ZLVDevice.h>
#include <ZolvaCheckoutKit/Platform/ZLVMainQueue.h>
#include <ZolvaCheckoutKit/Platform/ZLVSystemLog.h>
#include <ZolvaCheckoutKit/Platform/ZLVURLSession.h>
#include <ZolvaCheckoutKit/Platform/ZLVUserInterface.h>
#include <ZolvaCheckoutKit/ZLVExport.h>

/// Everything that the library asks of the machine it runs on, in one place.
///
/// A backend fills one in; a host may replace any part of it before installing it:
///
/// ```cpp
/// ZLVPlatform platform = ZLVLinuxPlatform::platformWithOptions(options);
/// platform.userInterface = std::make_shared<MyUserInterface>();
/// ZLVPlatform::install(std::move(platform));
/// ```
struct ZLV_EXPORT ZLVPlatform {
  /// Makes a session; called on any thread, once for each network executor.
  std::function<std::unique_ptr<ZLVURLSession>()> makeURLSession;
  /// Runs what has to run on the host's main thread.
  std::shared_ptr<ZLVMainQueue> mainQueue;
  /// Takes the diagnostic lines, which are written while `ZLVVendor::isLoggingEnabled`.
  std::shared_ptr<ZLVSystemLog> systemLog;
  /// Tells the facts that usage events carry.
  std::shared_ptr<ZLVDevice> device;
  /// Shows the pages.
  std::shared_ptr<ZLVUserInterface> userInterface;
  /// Base URL of the analytics service, ending in "/", where it is not the usual one.
  std::optional<std::string> analyticsRootURL;
  /// The most memory that a decoded answer may take, in bytes, its text aside; counted while it is
  /// decoded, and rounded up. A larger one fails with `NSURLErrorDataLengthExceedsMaximum`. Enough
  /// for an account with 10,000 payment options; more would hold up the main thread, on which the
  /// records are made.
  std::size_t maximumDecodedSize = std::size_t{32} * 1024 * 1024;
  /// Gives what the library itself says of an error in the user's language, as
  /// `ZLVError::localizedDescription` shows it; log lines, usage events and user info stay English.
  /// Called on any thread, each time, with an English text in which "%s" may stand for a name; "%s"
  /// stands for it in what is returned, too. A text that it does not know it returns as it is.
  /// Absent: all of them stay as they are.
  std::function<std::string(const char* text)> localizedText = {};

  /// Gives the library its platform, which it keeps until the process ends. Once, on the main
  /// thread, before anything else. Throws `ZLVProgrammingFault` when a part is missing or a
  /// platform is installed already.
  static void install(ZLVPlatform platform);

  /// Whether there is one yet; any thread.
  static bool isInstalled() noexcept;

  /// The installed platform; any thread. Throws `ZLVProgrammingFault` when there is none.
  static const ZLVPlatform& installed();
};
