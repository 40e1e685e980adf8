#pragma once

#include <gtk/gtk.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWebPage.h>

/// Tells of the connection behind the page: to whom, who vouches for that, and how long.
class ZLVConnectionPopover {
 public:
  ZLVConnectionPopover();

  [[nodiscard]] GtkWidget* widget() const { return popover_.get(); }

  void setState(const ZLVWebPage::State& state);

 private:
  ZLVGObject<GtkWidget> popover_;
  GtkWidget* box_;
};
