#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <ZolvaCheckoutKit/Platform/ZLVMainQueue.h>
#include <ZolvaCheckoutKit/Platform/ZLVUserInterface.h>
#include <ZolvaCheckoutKit/ZLVExport.h>

/// A user interface without windows: showing a page prints the line "open URL" on standard error
/// and, when a command is given, starts it with the URL as its only argument.
class ZLV_EXPORT ZLVConsoleUserInterface final : public ZLVUserInterface {
 public:
  /// `mainQueue` is where a closed browser's `closed` runs. `openWithCommand` is a program, found
  /// in PATH and started directly, without a shell.
  explicit ZLVConsoleUserInterface(std::shared_ptr<ZLVMainQueue> mainQueue,
                                   std::optional<std::string> openWithCommand = std::nullopt);
  ZLVConsoleUserInterface(const ZLVConsoleUserInterface&) = delete;
  ZLVConsoleUserInterface& operator=(const ZLVConsoleUserInterface&) = delete;
  ~ZLVConsoleUserInterface() override;

  /// What a host without view controllers of its own passes to the library's operations.
  [[nodiscard]] std::shared_ptr<ZLVViewController> keyWindowRootViewController() override;
  [[nodiscard]] std::unique_ptr<ZLVBrowser> makeBrowser(const ZLVURL& url) override;
  bool openURL(const ZLVURL& url) override;

  /// What the user's close button does: the browser shown last goes, and its `closed` is called
  /// later, on the main queue. False when no browser is shown.
  bool closeBrowser();

 private:
  class Browser;
  struct Page;

  std::shared_ptr<ZLVMainQueue> mainQueue_;
  std::optional<std::string> openWithCommand_;
  std::shared_ptr<ZLVViewController> root_;
  std::vector<std::weak_ptr<Page>> pages_;  // shown, the last one on top
};
