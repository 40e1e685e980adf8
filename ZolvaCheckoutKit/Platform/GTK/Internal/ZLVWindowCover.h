#pragma once

#include <list>

#include <gtk/gtk.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>

/// Puts a widget over the content of a window for as long as this object lives. What is underneath
/// takes neither clicks nor keys meanwhile, and is then as it was, focus included.
class ZLVWindowCover {
 public:
  ZLVWindowCover(GtkWindow* window, GtkWidget* cover);
  ZLVWindowCover(const ZLVWindowCover&) = delete;
  ZLVWindowCover& operator=(const ZLVWindowCover&) = delete;
  ~ZLVWindowCover();

  /// Whether the cover is still to be seen: not once the window was destroyed or given another
  /// content.
  [[nodiscard]] bool isInPlace() const;

 private:
  using WeakWidget = ZLVWeakGObject<GtkWidget>;

  void disableTitlebar(GtkWidget* widget);
  void uncover(GtkWindow* window);

  ZLVWeakGObject<GtkWindow> window_;
  ZLVGObject<GtkWidget> overlay_;
  ZLVGObject<GtkWidget> underneath_;
  WeakWidget focus_;
  WeakWidget defaultWidget_;
  std::list<WeakWidget> disabled_;
};
