#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWindowViewController.h>

namespace {

using Owned = std::shared_ptr<ZLVViewController>;

constexpr const char* key = "zlv-view-controller";

Owned* ownedBy(GtkWindow* window) {
  return static_cast<Owned*>(g_object_get_data(G_OBJECT(window), key));
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
  if (auto* owned = ownedBy(window)) return *owned;
  auto controller = std::make_shared<ZLVWindowViewController>();
  g_object_set_data_full(G_OBJECT(window), key, new Owned(controller),
                         [](gpointer owned) { delete static_cast<Owned*>(owned); });
  return controller;
}

std::shared_ptr<ZLVViewController> ZLVWindowViewController::rootOfWindow(GtkWindow* window) {
  auto* owned = window == nullptr ? nullptr : ownedBy(window);
  return owned == nullptr ? nullptr : rootOf(**owned).shared_from_this();
}

GtkWindow* ZLVWindowViewController::windowOf(ZLVViewController& controller) {
  GListModel* const windows = gtk_window_get_toplevels();
  for (guint i = 0; i < g_list_model_get_n_items(windows); ++i) {
    const auto window =
        ZLVGObject<GtkWindow>::take(static_cast<GtkWindow*>(g_list_model_get_item(windows, i)));
    auto* owned = ownedBy(window.get());
    if (owned != nullptr && &rootOf(**owned) == &rootOf(controller)) return window.get();
  }
  return nullptr;
}
