#pragma once

#include <chrono>
#include <memory>

#include <ZolvaCheckoutKit/C/Internal/ZLVHost.h>
#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>

/// What stands in for the functions that a host leaves NULL. The build picks the file that defines
/// it: where the library has no backend of its own each operation is a fault that says so.
class ZLVBuiltIn {
 public:
  ZLVBuiltIn() = delete;

  /// A platform with its own part wherever the host has none; its other parts, and the user
  /// interface, may be missing.
  static ZLVPlatform platform(const ZLVHost& host);
  /// Gives the platform, complete otherwise, the console.
  static void setUserInterface(ZLVPlatform& platform);

  // Of the installed platform; faults where that part is the host's.

  static int queueDescriptor();
  /// Waits for a block, for so long at most, and runs what is queued.
  static void turn(std::chrono::milliseconds limit);
  static std::shared_ptr<ZLVViewController> consoleView();
  /// Throws `ZLVGone` when no page is shown.
  static void closePage();
};
