#include <utility>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVBrowserScreen.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVBrowserStyle.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGTKBrowser.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVSignals.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWindowCover.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWindowViewController.h>
#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>

/// What there is while the browser is on the screen; it goes in the reverse order.
struct ZLVGTKBrowser::Shown {
  Shown(ZLVDismissButtonStyle style, const Environment& environment,
        ZLVBrowserScreen::Events events, GtkWindow* window)
      : screen(style, environment.engine->take(), environment.authorities, std::move(events)),
        cover(window, screen.widget()) {}

  ZLVBrowserScreen screen;
  ZLVWindowCover cover;
  ZLVSignals signals;
};

ZLVGTKBrowser::ZLVGTKBrowser(std::string url, std::shared_ptr<const Environment> environment)
    : url_(std::move(url)), environment_(std::move(environment)) {}

ZLVGTKBrowser::~ZLVGTKBrowser() = default;

void ZLVGTKBrowser::setDismissButtonStyle(ZLVDismissButtonStyle style) { style_ = style; }

void ZLVGTKBrowser::show(ZLVViewController& presenter, bool animated, ZLVOnce<void()> closed) {
  closed_ = std::move(closed);
  GtkWindow* const window = ZLVWindowViewController::windowOf(presenter);
  // Where there is no window to show the page in, it ends at once.
  if (window == nullptr) return later(&ZLVGTKBrowser::end);

  ZLVBrowserStyle::install();
  const auto openURL = [this, queue = environment_->mainQueue](const ZLVURL& url) {
    queue->dispatch([url, weak = std::weak_ptr(self_)] {
      if (ZLVPlatform::installed().userInterface->openURL(url)) return;
      const auto self = weak.lock();
      if (self && (*self)->shown_) (*self)->shown_->screen.openingFailed();
    });
  };
  shown_ = std::make_unique<Shown>(
      style_, *environment_,
      ZLVBrowserScreen::Events{.closed = [this] { later(&ZLVGTKBrowser::end); }, .ledOut = openURL},
      window);
  auto& [screen, cover, signals] = *shown_;
  if (animated) gtk_widget_add_css_class(screen.widget(), ZLVBrowserStyle::rising);
  signals.connect(screen.widget(), "notify::root",
                  [this](GtkWidget*, GParamSpec*) { later(&ZLVGTKBrowser::endUnlessInPlace); });
  signals.connect(window, "unrealize",
                  [this](GtkWidget*) { later(&ZLVGTKBrowser::endUnlessInPlace); });
  if (const auto application = environment_->application.lock()) {
    signals.connect(application.get(), "shutdown", [this](GApplication*) { end(); });
  }
  screen.load(url_);
  screen.grabFocus();
}

void ZLVGTKBrowser::hide(bool /*animated*/) {
  closed_ = {};
  shown_.reset();
}

void ZLVGTKBrowser::later(void (ZLVGTKBrowser::*step)()) {
  environment_->mainQueue->dispatch([step, weak = std::weak_ptr(self_)] {
    if (const auto self = weak.lock()) ((*self)->*step)();
  });
}

void ZLVGTKBrowser::end() {
  auto closed = std::move(closed_);
  shown_.reset();
  std::move(closed)();
}

void ZLVGTKBrowser::endUnlessInPlace() {
  if (shown_ != nullptr && !shown_->cover.isInPlace()) end();
}
