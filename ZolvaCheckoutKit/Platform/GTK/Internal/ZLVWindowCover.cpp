#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVWindowCover.h>

namespace {

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

}  // namespace

ZLVWindowCover::ZLVWindowCover(GtkWindow* window, GtkWidget* cover)
    : window_(window),
      overlay_(ZLVGObject<GtkWidget>::retain(gtk_overlay_new())),
      underneath_(ZLVGObject<GtkWidget>::retain(gtk_overlay_new())),
      focus_(gtk_window_get_focus(window)),
      defaultWidget_(gtk_window_get_default_widget(window)) {
  gtk_window_set_focus(window, nullptr);
  const auto content = ZLVGObject<GtkWidget>::retain(gtk_window_get_child(window));
  // A container of our own is disabled, so that the host's widgets keep their properties.
  gtk_widget_set_sensitive(underneath_.get(), FALSE);
  gtk_accessible_update_state(GTK_ACCESSIBLE(underneath_.get()), GTK_ACCESSIBLE_STATE_HIDDEN, TRUE,
                              -1);
  gtk_window_set_child(window, overlay_.get());
  gtk_overlay_set_child(GTK_OVERLAY(overlay_.get()), underneath_.get());
  gtk_overlay_set_child(GTK_OVERLAY(underneath_.get()), content.get());
  gtk_overlay_add_overlay(GTK_OVERLAY(overlay_.get()), cover);
  if (GtkWidget* titlebar = gtk_window_get_titlebar(window)) disableTitlebar(titlebar);
}

ZLVWindowCover::~ZLVWindowCover() {
  for (const auto& widget : disabled_) {
    if (const auto alive = widget.lock()) gtk_widget_set_sensitive(alive.get(), TRUE);
  }
  const auto window = window_.lock();
  if (window && gtk_window_get_child(window.get()) == overlay_.get()) uncover(window.get());
}

bool ZLVWindowCover::isInPlace() const {
  const auto window = window_.lock();
  return window && gtk_widget_get_realized(GTK_WIDGET(window.get())) != FALSE &&
         gtk_window_get_child(window.get()) == overlay_.get();
}

void ZLVWindowCover::disableTitlebar(GtkWidget* widget) {
  // The window's own buttons stay: it can be closed and moved as ever.
  if (GTK_IS_WINDOW_CONTROLS(widget) != FALSE) return;
  if (!containsWindowControls(widget)) {
    if (gtk_widget_get_sensitive(widget) == FALSE) return;
    disabled_.emplace_back(widget);
    return gtk_widget_set_sensitive(widget, FALSE);
  }
  for (auto* child = gtk_widget_get_first_child(widget); child != nullptr;
       child = gtk_widget_get_next_sibling(child)) {
    disableTitlebar(child);
  }
}

void ZLVWindowCover::uncover(GtkWindow* window) {
  // While the content is still in there: it would stay disabled otherwise.
  gtk_widget_set_sensitive(underneath_.get(), TRUE);
  const auto content =
      ZLVGObject<GtkWidget>::retain(gtk_overlay_get_child(GTK_OVERLAY(underneath_.get())));
  gtk_overlay_set_child(GTK_OVERLAY(underneath_.get()), nullptr);
  gtk_window_set_child(window, content.get());

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
