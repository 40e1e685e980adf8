#pragma once

#include <memory>

#include <gtk/gtk.h>

#include <ZolvaCheckoutKit/Platform/ZLVViewController.h>

/// The view controller of a window of the host's. The window owns it.
class ZLVWindowViewController final : public ZLVViewController {
 public:
  /// The window's, made where there is none yet.
  static std::shared_ptr<ZLVViewController> ofWindow(GtkWindow* window);

  /// The top of the tree that the window's view controller is in; null for a window without one.
  static std::shared_ptr<ZLVViewController> rootOfWindow(GtkWindow* window);

  /// The window that shows the tree which `controller` is in; null when there is none.
  static GtkWindow* windowOf(ZLVViewController& controller);
};
