#pragma once

#include <functional>

#include <gtk/gtk.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVSignals.h>

/// A line over the lower end of the page, about what the page wanted and did not get.
class ZLVNotice {
 public:
  /// `page` has the focus after a notice that had it.
  explicit ZLVNotice(GtkWidget* page);
  ZLVNotice(const ZLVNotice&) = delete;
  ZLVNotice& operator=(const ZLVNotice&) = delete;
  ~ZLVNotice();

  [[nodiscard]] GtkWidget* widget() const { return root_.get(); }

  /// For a moment, or, when there is something to do about it, until the user has chosen or
  /// `hide` is called.
  void show(const char* text, std::function<void()> open = {});
  void hide();

 private:
  void stopTimer();

  ZLVGObject<GtkWidget> root_;
  ZLVGObject<GtkWidget> page_;
  GtkWidget* text_;
  GtkWidget* open_;
  std::function<void()> action_;
  guint timer_ = 0;
  ZLVSignals signals_;
};
