#include <utility>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGTKUserInterface.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVSystemURLOpener.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWindowViewController.h>

ZLVGTKUserInterface::ZLVGTKUserInterface(
    std::shared_ptr<const ZLVGTKBrowser::Environment> environment, URLOpener openURL)
    : environment_(std::move(environment)), openURL_(std::move(openURL)) {}

std::shared_ptr<ZLVViewController> ZLVGTKUserInterface::keyWindowRootViewController() {
  const auto application = environment_->application.lock();
  if (!application) return nullptr;
  GtkWindow* const active = gtk_application_get_active_window(application.get());
  if (auto root = ZLVWindowViewController::rootOfWindow(active)) return root;
  GListModel* const windows = gtk_window_get_toplevels();
  for (guint i = 0; i < g_list_model_get_n_items(windows); ++i) {
    const auto window =
        ZLVGObject<GtkWindow>::take(static_cast<GtkWindow*>(g_list_model_get_item(windows, i)));
    if (auto root = ZLVWindowViewController::rootOfWindow(window.get())) return root;
  }
  return nullptr;
}

std::unique_ptr<ZLVBrowser> ZLVGTKUserInterface::makeBrowser(const ZLVURL& url) {
  return std::make_unique<ZLVGTKBrowser>(url.absoluteString(), environment_);
}

bool ZLVGTKUserInterface::openURL(const ZLVURL& url) {
  return openURL_ ? openURL_(url) : ZLVSystemURLOpener::openURL(url);
}
