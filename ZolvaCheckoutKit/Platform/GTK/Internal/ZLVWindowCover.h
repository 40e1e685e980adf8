#pragma once

#include <gtk/gtk.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>

/// Puts a widget over the content of a window for as long as this object lives. What is underneath,
/// other covers included, takes neither clicks nor keys meanwhile, and is then as it was, focus
/// included. Covers end in any order, also while the host has put something of its own over them.
class ZLVWindowCover {
 public:
  ZLVWindowCover(GtkWindow* window, GtkWidget* cover);
  ZLVWindowCover(const ZLVWindowCover&) = delete;
  ZLVWindowCover& operator=(const ZLVWindowCover&) = delete;
  ~ZLVWindowCover();

  /// Whether the cover is still in its window: not once that was destroyed or given another
  /// content.
  [[nodiscard]] bool isInPlace() const;

 private:
  struct Layer;
  using WeakWidget = ZLVWeakGObject<GtkWidget>;

  [[nodiscard]] bool hasFocus(GtkWindow* window) const;
  void restoreFocus(GtkWindow* window) const;

  ZLVWeakGObject<GtkWindow> window_;
  ZLVGObject<GtkWidget> cover_;
  ZLVGObject<GtkWidget> overlay_;
  WeakWidget focus_;
  WeakWidget defaultWidget_;
};
