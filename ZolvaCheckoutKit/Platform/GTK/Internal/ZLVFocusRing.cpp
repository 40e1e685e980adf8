#include <algorithm>
#include <deque>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVFocusRing.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>

namespace {

/// What any box does.
gboolean moveAsBox(GtkWidget* ring, GtkDirectionType direction) {
  auto* const parent = g_type_class_peek(GTK_TYPE_BOX);
  return GTK_WIDGET_CLASS(parent)->focus(ring, direction);
}

gboolean moveFocus(GtkWidget* ring, GtkDirectionType direction) noexcept {
  // A page that passes the focus on does not say, as the toolkit does, that it is to be seen.
  gtk_window_set_focus_visible(GTK_WINDOW(gtk_widget_get_root(ring)), TRUE);
  if (moveAsBox(ring, direction) != FALSE) return TRUE;
  if (direction != GTK_DIR_TAB_FORWARD && direction != GTK_DIR_TAB_BACKWARD) return FALSE;
  // Each widget remembers where the focus was, and would go on from there.
  for (auto* widget = ring; widget != nullptr;) {
    GtkWidget* const child = gtk_widget_get_focus_child(widget);
    gtk_widget_set_focus_child(widget, nullptr);
    widget = child;
  }
  return moveAsBox(ring, direction);
}

/// The last keys, and where they went.
class KeyFilter {
 public:
  /// Whether the key is an old one, and another widget has had the focus since. The web engine
  /// gives back what a page had no use for, the Tab too by which it has just passed on the focus;
  /// it may be slow to, and the focus back by then.
  bool isLate(GtkEventController* keys) {
    GdkEvent* const event = gtk_event_controller_get_current_event(keys);
    GtkRoot* const root = gtk_widget_get_root(gtk_event_controller_get_widget(keys));
    const GtkWidget* const focus = gtk_root_get_focus(root);
    const auto known =
        std::ranges::find(pressed_, event, [](auto& key) { return key.event.get(); });
    if (known != pressed_.end()) {
      const auto isElsewhere = [&](const Key& key) { return key.focus != known->focus; };
      return focus != known->focus || std::any_of(known, pressed_.end(), isElsewhere);
    }
    constexpr std::size_t enough = 16;
    if (pressed_.size() == enough) pressed_.pop_front();
    pressed_.push_back({Event(gdk_event_ref(event)), focus});
    return false;
  }

 private:
  using Event = ZLVGOwned<GdkEvent, gdk_event_unref>;
  struct Key {
    Event event;
    const GtkWidget* focus = nullptr;
  };

  std::deque<Key> pressed_;
};

GtkEventController* makeKeyFilter() {
  GtkEventController* const keys = gtk_event_controller_key_new();
  gtk_event_controller_set_propagation_phase(keys, GTK_PHASE_CAPTURE);
  constexpr auto filter = [](GtkEventController* sender, guint, guint, GdkModifierType,
                             gpointer data) noexcept -> gboolean {
    return ZLVGBoolean(ZLVUserData<KeyFilter>::of(data).isLate(sender));
  };
  g_signal_connect_data(
      keys, "key-pressed", G_CALLBACK(+filter), ZLVUserData<KeyFilter>::make({}),
      [](gpointer data, GClosure*) { ZLVUserData<KeyFilter>::free(data); },
      static_cast<GConnectFlags>(0));
  return keys;
}

GType ringType() {
  static const GType type = g_type_register_static_simple(
      GTK_TYPE_BOX, "ZLVFocusRing", sizeof(GtkBoxClass),
      [](gpointer ring, gpointer) { GTK_WIDGET_CLASS(ring)->focus = moveFocus; }, sizeof(GtkBox),
      nullptr, static_cast<GTypeFlags>(0));
  return type;
}

}  // namespace

GtkWidget* ZLVFocusRing::make(GtkAccessibleRole role) {
  auto* const ring = GTK_WIDGET(g_object_new(ringType(), "orientation", GTK_ORIENTATION_VERTICAL,
                                             "accessible-role", role, nullptr));
  gtk_widget_add_controller(ring, makeKeyFilter());
  return ring;
}
