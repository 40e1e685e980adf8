#pragma once

#include <functional>

#include <webkit/webkit.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVSignals.h>

/// Tells of what the user does on a page, and in whose frame: the engine says of a navigation only
/// whether some press, in any frame, has led to it.
class ZLVPressWatch {
 public:
  struct Events {
    /// A button, a key or a finger went down on the view.
    std::function<void()> began;
    /// It, or what stands for it to a screen reader, was in a frame of the page's own origin, or in
    /// another; of a frame without scripts nothing is told. Before the page itself learns of it.
    std::function<void(bool isInOwnFrame)> arrived;
  };

  /// For a view that has loaded nothing yet.
  ZLVPressWatch(WebKitWebView* view, Events events);

 private:
  /// The engine gives back keys that the page had no use for.
  bool isNew(GdkEvent* event);

  guint32 lastTime_ = GDK_CURRENT_TIME;
  ZLVSignals signals_;
};
