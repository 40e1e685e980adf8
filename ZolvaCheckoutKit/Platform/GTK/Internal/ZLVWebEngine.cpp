#include <array>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWebEngine.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWebView.h>

namespace {

void clearSource(guint& source) {
  if (source != 0) g_source_remove(std::exchange(source, 0));
}

/// Where it runs out of descriptors, the engine ends the host's process. For a page that may never
/// be wanted nothing is risked: it takes some thirty.
bool hasDescriptors() {
  std::array<int, 64> taken{};
  for (int& descriptor : taken) descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
  const bool hasAll = taken.back() >= 0;
  for (const int descriptor : taken) {
    if (descriptor >= 0) close(descriptor);
  }
  return hasAll;
}

}  // namespace

void ZLVWebEngine::prepare() {
  const auto application = application_.lock();
  // Without it nothing would end in time what is started.
  if (!application || g_application_get_is_registered(G_APPLICATION(application.get())) == FALSE ||
      gtk_is_initialized() == FALSE) {
    return;
  }
  if (end_ == 0) {
    signals_.connect(application.get(), "shutdown", [this](GApplication*) { discard(); });
    steps_ = g_idle_add(
        [](gpointer self) noexcept -> gboolean {
          return ZLVGBoolean(static_cast<ZLVWebEngine*>(self)->takeStep());
        },
        this);
  }
  clearSource(end_);
  end_ = g_timeout_add(
      static_cast<guint>(timeKept.count()),
      [](gpointer self) noexcept -> gboolean {
        static_cast<ZLVWebEngine*>(self)->discard();
        return G_SOURCE_REMOVE;
      },
      this);
}

bool ZLVWebEngine::takeStep() {
  if (!hasDescriptors()) {
    discard();
    return false;
  }
  if (!view_) {
    view_ = ZLVWebView::make();
    return true;
  }
  // The engine starts a view's processes when there is something to do: a page to load, which would
  // stay in the history, or a script.
  webkit_web_view_evaluate_javascript(view_.get(), "", 0, ZLVWebView::scriptWorld, nullptr, nullptr,
                                      nullptr, nullptr);
  steps_ = 0;
  return false;
}

ZLVGObject<WebKitWebView> ZLVWebEngine::release() {
  clearSource(steps_);
  clearSource(end_);
  signals_.disconnect();
  return std::exchange(view_, {});
}

ZLVGObject<WebKitWebView> ZLVWebEngine::take() {
  auto view = release();
  return view ? std::move(view) : ZLVWebView::make();
}

void ZLVWebEngine::discard() {
  if (const auto view = release()) webkit_web_view_terminate_web_process(view.get());
}
