#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWindowViewController.h>

namespace {

using Owned = ZLVUserData<std::shared_ptr<ZLVViewController>>;

constexpr const char* key = "zlv-view-controller";

/// Null for a window that was not wrapped.
std::shared_ptr<ZLVViewController> ownedBy(GtkWindow* window) {
  auto* const owned = g_object_get_data(G_OBJECT(window), key);
  return owned == nullptr ? nullptr : Owned::of(owned);
}

ZLVViewController& rootOf(ZLVViewController& controller) {
  auto* root = &controller;
  while (true) {
    if (auto* parent = root->parentViewController()) {
      root = parent;
    } else if (auto* presenting = root->presentingViewController()) {
      root = presenting;
    } else {
      return *root;
    }
  }
}

}  // namespace

std::shared_ptr<ZLVViewController> ZLVWindowViewController::ofWindow(GtkWindow* window) {
  if (auto owned = ownedBy(window)) return owned;
  auto controller = std::make_shared<ZLVWindowViewController>();
  g_object_set_data_full(G_OBJECT(window), key, Owned::make(controller), &Owned::free);
  return controller;
}

std::shared_ptr<ZLVViewController> ZLVWindowViewController::rootOfWindow(GtkWindow* window) {
  const auto owned = window == nullptr ? nullptr : ownedBy(window);
  return owned == nullptr ? nullptr : rootOf(*owned).weak_from_this().lock();
}

GtkWindow* ZLVWindowViewController::windowOf(ZLVViewController& controller) {
  GListModel* const windows = gtk_window_get_toplevels();
  for (guint i = 0; i < g_list_model_get_n_items(windows); ++i) {
    const auto window =
        ZLVGObject<GtkWindow>::take(static_cast<GtkWindow*>(g_list_model_get_item(windows, i)));
    const auto owned = ownedBy(window.get());
    if (owned != nullptr && &rootOf(*owned) == &rootOf(controller)) return window.get();
  }
  return nullptr;
}
