#pragma once

#include <chrono>

#include <gtk/gtk.h>
#include <webkit/webkit.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVSignals.h>

/// Where the views of pages come from. One can be started before it is wanted: its processes take
/// longer than a server takes to answer. It is a view like any other, which has loaded nothing, and
/// is used once. Main thread only.
class ZLVWebEngine {
 public:
  /// How long a started view waits for its page.
  static constexpr std::chrono::milliseconds timeKept = std::chrono::minutes(1);

  explicit ZLVWebEngine(GtkApplication* application) : application_(application) {}
  ZLVWebEngine(const ZLVWebEngine&) = delete;
  ZLVWebEngine& operator=(const ZLVWebEngine&) = delete;
  ~ZLVWebEngine() { discard(); }

  /// Starts a view when the main loop has nothing better to do, if the application runs and none is
  /// started or about to be; from the last call on it is kept for `timeKept`.
  void prepare();
  /// The started view, or a new one.
  ZLVGObject<WebKitWebView> take();

 private:
  /// In two turns, between which the host can draw and react. Whether there is one more.
  bool takeStep();
  /// The view is let go of, as is everything that would start one.
  ZLVGObject<WebKitWebView> release();
  void discard();

  ZLVWeakGObject<GtkApplication> application_;
  ZLVGObject<WebKitWebView> view_;
  guint steps_ = 0;
  guint end_ = 0;
  ZLVSignals signals_;
};
