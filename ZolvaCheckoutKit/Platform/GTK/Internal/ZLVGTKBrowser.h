#pragma once

#include <functional>
#include <memory>
#include <string>

#include <gtk/gtk.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVCertificateAuthorities.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWebEngine.h>
#include <ZolvaCheckoutKit/Platform/ZLVMainQueue.h>
#include <ZolvaCheckoutKit/Platform/ZLVUserInterface.h>

/// A browser inside the presenting window.
///
/// Whatever the user, the page or the window's end does to it happens in the next turn of the main
/// queue: neither GTK nor WebKit likes to lose a widget in the middle of its own work. Only the
/// application's shutdown, after which there is no next turn, ends it on the spot.
class ZLVGTKBrowser final : public ZLVBrowser {
 public:
  /// What the browsers of an application share.
  struct Environment {
    ZLVWeakGObject<GtkApplication> application;
    std::shared_ptr<ZLVMainQueue> mainQueue;
    std::shared_ptr<ZLVCertificateAuthorities> authorities;
    std::shared_ptr<ZLVWebEngine> engine;
  };

  ZLVGTKBrowser(std::string url, std::shared_ptr<const Environment> environment);
  ~ZLVGTKBrowser() override;

  void setDismissButtonStyle(ZLVDismissButtonStyle style) override;
  void show(ZLVViewController& presenter, bool animated, ZLVOnce<void()> closed) override;
  void hide(bool animated) override;

 private:
  struct Shown;

  /// Runs `step` in the next turn of the main queue, if the browser is still there then.
  void later(void (ZLVGTKBrowser::*step)());
  /// The browser's end by other hands than its owner's; the browser may be gone afterwards.
  void end();
  void endUnlessInPlace();

  std::string url_;
  std::shared_ptr<const Environment> environment_;
  ZLVDismissButtonStyle style_ = ZLVDismissButtonStyle::Done;
  std::unique_ptr<Shown> shown_;
  ZLVOnce<void()> closed_;
  /// What is run later looks here whether this is still alive.
  std::shared_ptr<ZLVGTKBrowser*> self_ = std::make_shared<ZLVGTKBrowser*>(this);
};
