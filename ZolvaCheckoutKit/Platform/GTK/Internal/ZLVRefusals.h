#pragma once

#include <functional>

#include <webkit/webkit.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVSignals.h>

/// What a page that one pays on has no need of and is refused: downloads, permissions, printing,
/// the menu items that lead out of it.
class ZLVRefusals {
 public:
  /// For a view that has loaded nothing yet.
  ZLVRefusals(WebKitWebView* view, std::function<void()> downloadRefused);

 private:
  ZLVSignals signals_;
};
