#include <algorithm>
#include <iterator>
#include <list>
#include <vector>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWindowCover.h>

namespace {

constexpr const char* key = "zlv-layer";

bool containsWindowControls(GtkWidget* widget) {
  if (GTK_IS_WINDOW_CONTROLS(widget) != FALSE) return true;
  for (auto* child = gtk_widget_get_first_child(widget); child != nullptr;
       child = gtk_widget_get_next_sibling(child)) {
    if (containsWindowControls(child)) return true;
  }
  return false;
}

bool isInside(GtkWidget* widget, GtkWindow* window) {
  return widget != nullptr && gtk_widget_get_root(widget) == GTK_ROOT(window);
}

void setCovered(GtkWidget* widget, bool isCovered) {
  gtk_widget_set_sensitive(widget, ZLVGBoolean(!isCovered));
  gtk_accessible_update_state(GTK_ACCESSIBLE(widget), GTK_ACCESSIBLE_STATE_HIDDEN,
                              ZLVGBoolean(isCovered), -1);
}

}  // namespace

/// What stands in a window in the place of its content: an overlay of covers, which owns this. It
/// outlasts them where the host has put it into something of its own, which only the host can open.
struct ZLVWindowCover::Layer {
  /// A container of our own is disabled, so that the host's widgets keep their properties.
  ZLVGObject<GtkWidget> underneath = ZLVGObject<GtkWidget>::retain(gtk_overlay_new());
  /// The one on top is the last.
  std::vector<ZLVWindowCover*> covers;
  /// Of the titlebar's.
  std::list<WeakWidget> disabled;

  static Layer& of(const ZLVGObject<GtkWidget>& overlay) {
    return ZLVUserData<Layer>::of(g_object_get_data(G_OBJECT(overlay.get()), key));
  }

  /// The overlay that the window has already, or that it is given.
  static ZLVGObject<GtkWidget> overlayOf(GtkWindow* window) {
    auto content = ZLVGObject<GtkWidget>::retain(gtk_window_get_child(window));
    if (content && g_object_get_data(G_OBJECT(content.get()), key) != nullptr) return content;
    auto overlay = ZLVGObject<GtkWidget>::retain(gtk_overlay_new());
    g_object_set_data_full(G_OBJECT(overlay.get()), key, ZLVUserData<Layer>::make({}),
                           &ZLVUserData<Layer>::free);
    GtkWidget* const underneath = of(overlay).underneath.get();
    gtk_window_set_child(window, overlay.get());
    gtk_overlay_set_child(GTK_OVERLAY(overlay.get()), underneath);
    gtk_overlay_set_child(GTK_OVERLAY(underneath), content.get());
    return overlay;
  }

  GtkWidget* top() const { return covers.empty() ? underneath.get() : covers.back()->cover_.get(); }

  void disable(GtkWidget* titlebar) {
    // The window's own buttons stay: it can be closed and moved as ever.
    if (GTK_IS_WINDOW_CONTROLS(titlebar) != FALSE) return;
    if (!containsWindowControls(titlebar)) {
      if (gtk_widget_get_sensitive(titlebar) == FALSE) return;
      disabled.emplace_back(titlebar);
      return gtk_widget_set_sensitive(titlebar, FALSE);
    }
    for (auto* child = gtk_widget_get_first_child(titlebar); child != nullptr;
         child = gtk_widget_get_next_sibling(child)) {
      disable(child);
    }
  }

  void enable() {
    for (const auto& widget : disabled) {
      if (const auto alive = widget.lock()) gtk_widget_set_sensitive(alive.get(), TRUE);
    }
    disabled.clear();
  }
};

ZLVWindowCover::ZLVWindowCover(GtkWindow* window, GtkWidget* cover)
    : window_(window),
      cover_(ZLVGObject<GtkWidget>::retain(cover)),
      focus_(gtk_window_get_focus(window)),
      defaultWidget_(gtk_window_get_default_widget(window)) {
  gtk_window_set_focus(window, nullptr);
  overlay_ = Layer::overlayOf(window);
  auto& layer = Layer::of(overlay_);
  setCovered(layer.top(), true);
  GtkWidget* const titlebar = gtk_window_get_titlebar(window);
  if (layer.covers.empty() && titlebar != nullptr) layer.disable(titlebar);
  gtk_overlay_add_overlay(GTK_OVERLAY(overlay_.get()), cover);
  layer.covers.push_back(this);
}

ZLVWindowCover::~ZLVWindowCover() {
  auto& layer = Layer::of(overlay_);
  const auto window = window_.lock();
  const bool isFocused = window && hasFocus(window.get());
  const auto above = layer.covers.erase(std::ranges::find(layer.covers, this));
  if (gtk_widget_get_parent(cover_.get()) == overlay_.get()) {
    gtk_overlay_remove_overlay(GTK_OVERLAY(overlay_.get()), cover_.get());
  }
  if (above != layer.covers.end()) {
    // What that one would give the focus back to has just gone.
    (*above)->focus_.set(focus_.lock().get());
    (*above)->defaultWidget_.set(defaultWidget_.lock().get());
    return;
  }
  // While the content is still in there: it would stay disabled otherwise.
  setCovered(layer.top(), false);
  if (layer.covers.empty()) {
    layer.enable();
    if (window && gtk_window_get_child(window.get()) == overlay_.get()) {
      auto* const underneath = GTK_OVERLAY(layer.underneath.get());
      const auto content = ZLVGObject<GtkWidget>::retain(gtk_overlay_get_child(underneath));
      gtk_overlay_set_child(underneath, nullptr);
      gtk_window_set_child(window.get(), content.get());
    }
  }
  if (isFocused) restoreFocus(window.get());
}

bool ZLVWindowCover::isInPlace() const {
  const auto window = window_.lock();
  return window && gtk_widget_get_realized(GTK_WIDGET(window.get())) != FALSE &&
         isInside(cover_.get(), window.get());
}

bool ZLVWindowCover::hasFocus(GtkWindow* window) const {
  GtkWidget* const focus = gtk_window_get_focus(window);
  return focus == nullptr || gtk_widget_is_ancestor(focus, cover_.get()) != FALSE;
}

void ZLVWindowCover::restoreFocus(GtkWindow* window) const {
  const auto defaultWidget = defaultWidget_.lock();
  if (isInside(defaultWidget.get(), window)) {
    gtk_window_set_default_widget(window, defaultWidget.get());
  }
  const auto focus = focus_.lock();
  if (!isInside(focus.get(), window)) return;
  if (GTK_IS_TEXT(focus.get()) != FALSE) {
    // The other way would select the text, for the next key to replace.
    gtk_text_grab_focus_without_selecting(GTK_TEXT(focus.get()));
  } else {
    gtk_widget_grab_focus(focus.get());
  }
}
