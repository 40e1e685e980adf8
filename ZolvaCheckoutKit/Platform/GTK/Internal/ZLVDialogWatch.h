#pragma once

#include <webkit/webkit.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVSignals.h>

/// Tells the dialogs that a page itself opens from those of a frame of another origin, which would
/// stand under the page's name: of a dialog the engine does not say whose it is.
class ZLVDialogWatch {
 public:
  /// For a view that has loaded nothing yet.
  explicit ZLVDialogWatch(WebKitWebView* view);

  /// Whether the dialog that has just opened is the page's own.
  [[nodiscard]] bool isOwn(WebKitScriptDialog* dialog);

 private:
  bool isAnnounced_ = false;
  ZLVSignals signals_;
};
