#pragma once

#include <cstdint>
#include <memory>

#include <ZolvaCheckoutKit/Platform/ZLVOnce.h>
#include <ZolvaCheckoutKit/Platform/ZLVViewController.h>
#include <ZolvaCheckoutKit/ZLVExport.h>
#include <ZolvaCheckoutKit/ZLVURL.h>

/// The label of an in-app browser's dismiss button.
enum class ZLVDismissButtonStyle : std::int64_t {
  Done = 0,   ///< "Done", in the user's language, as are the others.
  Close = 1,  ///< "Close"; the library's own pages ask for it.
  Cancel = 2  ///< "Cancel".
};

/// One in-app browser, made for one URL and shown at most once. Main thread only.
class ZLV_EXPORT ZLVBrowser {
 public:
  /// Takes whatever is still on the screen off it, without calling `closed`.
  virtual ~ZLVBrowser() = default;

  /// Called before `show` or never.
  virtual void setDismissButtonStyle(ZLVDismissButtonStyle style) = 0;

  /// Shows the page over the content of `presenter`, which outlives the browser or takes it along.
  /// `closed` is called when the user closes the browser, or when it cannot be shown at all, and
  /// never inside this call; the browser may be destroyed before that call returns.
  virtual void show(ZLVViewController& presenter, bool animated, ZLVOnce<void()> closed) = 0;

  /// Takes the page off the screen, without calling `closed`.
  virtual void hide(bool animated) = 0;
};

/// The application's user interface. Main thread only.
class ZLV_EXPORT ZLVUserInterface {
 public:
  virtual ~ZLVUserInterface() = default;

  /// The root view controller of the window that gets what is typed; null when there is none.
  [[nodiscard]] virtual std::shared_ptr<ZLVViewController> keyWindowRootViewController() = 0;

  /// A browser for an http or https URL, not yet shown; null when there can be none.
  [[nodiscard]] virtual std::unique_ptr<ZLVBrowser> makeBrowser(const ZLVURL& url) = 0;

  /// Hands a URL of another scheme to whatever application claims it. False when it was not taken.
  virtual bool openURL(const ZLVURL& url) = 0;

  /// A hint: a call that may lead to a page is on its way. Where a browser takes long to start,
  /// this is the time to start it, but not to do so before this returns: the user is looking at the
  /// application. Nothing may depend on it. The page may come while the browser starts, a minute
  /// later or never, and without any hint; hints come one after the other, also while a page is
  /// shown. What was started for a page that has not come within a minute is let go of again.
  virtual void prepareBrowser() {}
};
