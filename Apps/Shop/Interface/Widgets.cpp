#include "Apps/Shop/Interface/Widgets.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "Apps/Shop/Interface/Style.h"

namespace {

constexpr int ColumnWidth = 440;

void measureColumn(GtkWidget* widget, GtkOrientation orientation, int size, int* minimum,
                   int* natural, int* minimumBaseline, int* naturalBaseline) {
  if (orientation == GTK_ORIENTATION_VERTICAL && (size < 0 || size > ColumnWidth))
    size = ColumnWidth;
  gtk_widget_measure(gtk_widget_get_first_child(widget), orientation, size, minimum, natural,
                     minimumBaseline, naturalBaseline);
  if (orientation == GTK_ORIENTATION_HORIZONTAL) *natural = std::max(*minimum, ColumnWidth);
}

void allocateColumn(GtkWidget* widget, int width, int height, int baseline) {
  const int columnWidth = std::min(width, ColumnWidth);
  const int margin = (width - columnWidth) / 2;
  const graphene_point_t start{static_cast<float>(margin), 0};
  gtk_widget_allocate(gtk_widget_get_first_child(widget), columnWidth, height, baseline,
                      gsk_transform_translate(nullptr, &start));
}

}  // namespace

void onSignal(gpointer object, const char* signal, std::function<void()> handler) {
  using Handler = std::function<void()>;
  // Swapped, the handler comes first, and what else the signal brings can be left unread.
  constexpr auto call = +[](Handler* kept) noexcept { (*kept)(); };
  constexpr auto destroy = [](gpointer kept, GClosure* /*closure*/) {
    const std::unique_ptr<Handler> owner(static_cast<Handler*>(kept));
  };
  g_signal_connect_data(object, signal, G_CALLBACK(call),
                        std::make_unique<Handler>(std::move(handler)).release(), destroy,
                        G_CONNECT_SWAPPED);
}

GtkWidget* makeLabel(const std::string& text, const char* classes) {
  GtkWidget* const label = gtk_label_new(text.c_str());
  gtk_label_set_xalign(GTK_LABEL(label), 0);
  gtk_label_set_wrap(GTK_LABEL(label), TRUE);
  gtk_label_set_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
  addClasses(label, classes);
  return label;
}

GtkWidget* makeWord(const std::string& text, const char* classes) {
  GtkWidget* const label = gtk_label_new(text.c_str());
  gtk_label_set_xalign(GTK_LABEL(label), 0);
  gtk_label_set_ellipsize(GTK_LABEL(label), PANGO_ELLIPSIZE_MIDDLE);
  gtk_widget_set_tooltip_text(label, text.c_str());
  addClasses(label, classes);
  return label;
}

GtkWidget* makeTitle(const std::string& text) {
  auto* const label =
      GTK_WIDGET(g_object_new(GTK_TYPE_LABEL, "label", text.c_str(), "xalign", 0.0, "wrap", TRUE,
                              "accessible-role", GTK_ACCESSIBLE_ROLE_HEADING, nullptr));
  addClasses(label, "title");
  return label;
}

void setText(GtkWidget* label, const std::string& text) {
  gtk_label_set_text(GTK_LABEL(label), text.c_str());
}

GtkWidget* makeButton(const std::string& text, const char* classes, std::function<void()> clicked) {
  GtkWidget* const button = gtk_button_new_with_label(text.c_str());
  addClasses(button, classes);
  onSignal(button, "clicked", std::move(clicked));
  return button;
}

GtkWidget* makeIconButton(const char* icon, const char* name, std::function<void()> clicked) {
  GtkWidget* const button = gtk_button_new_from_icon_name(icon);
  gtk_button_set_has_frame(GTK_BUTTON(button), FALSE);
  setAccessibleName(button, name);
  gtk_widget_set_tooltip_text(button, name);
  onSignal(button, "clicked", std::move(clicked));
  return button;
}

void setAccessibleName(GtkWidget* widget, const std::string& name) {
  gtk_accessible_update_property(GTK_ACCESSIBLE(widget), GTK_ACCESSIBLE_PROPERTY_LABEL,
                                 name.c_str(), -1);
}

void addClasses(GtkWidget* widget, const char* classes) {
  char** const names = g_strsplit(classes, " ", -1);
  for (char** name = names; *name != nullptr; ++name) {
    if (**name != '\0') gtk_widget_add_css_class(widget, *name);
  }
  g_strfreev(names);
}

GtkWidget* makeBox(GtkOrientation orientation, int spacing,
                   std::initializer_list<GtkWidget*> children, const char* classes) {
  GtkWidget* const box = gtk_box_new(orientation, spacing);
  for (GtkWidget* child : children) gtk_box_append(GTK_BOX(box), child);
  addClasses(box, classes);
  return box;
}

GtkWidget* makeRow(GtkWidget* start, GtkWidget* end, const char* classes) {
  gtk_widget_set_hexpand(start, TRUE);
  gtk_widget_set_valign(start, GTK_ALIGN_CENTER);
  gtk_widget_set_valign(end, GTK_ALIGN_CENTER);
  return makeBox(GTK_ORIENTATION_HORIZONTAL, 12, {start, end}, classes);
}

void removeChildren(GtkWidget* box) {
  while (GtkWidget* child = gtk_widget_get_first_child(box)) gtk_box_remove(GTK_BOX(box), child);
}

void setVisible(GtkWidget* widget, bool isVisible) {
  gtk_widget_set_visible(widget, static_cast<gboolean>(isVisible));
}

void setSensitive(GtkWidget* widget, bool isSensitive) {
  gtk_widget_set_sensitive(widget, static_cast<gboolean>(isSensitive));
}

GtkWidget* makeColumn(GtkWidget* child) {
  GtkWidget* const column = makeBox(GTK_ORIENTATION_VERTICAL, 0, {child});
  gtk_widget_set_layout_manager(
      column, gtk_custom_layout_new([](GtkWidget*) { return GTK_SIZE_REQUEST_HEIGHT_FOR_WIDTH; },
                                    measureColumn, allocateColumn));
  return column;
}

GtkWidget* makeScroller(GtkWidget* child) {
  GtkWidget* const scroller = gtk_scrolled_window_new();
  gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scroller), GTK_POLICY_NEVER,
                                 GTK_POLICY_AUTOMATIC);
  gtk_scrolled_window_set_child(GTK_SCROLLED_WINDOW(scroller), child);
  gtk_widget_set_vexpand(scroller, TRUE);
  return scroller;
}

GtkWidget* makePage(std::initializer_list<GtkWidget*> children) {
  constexpr int spacing = 16;
  return makeScroller(makeColumn(makeBox(GTK_ORIENTATION_VERTICAL, spacing, children, "page")));
}

GtkWidget* makePicture(const std::string& item, int height) {
  const auto path = std::string(ShopResources) + "pictures/" + item + ".svg";
  GtkWidget* const picture = gtk_picture_new_for_resource(path.c_str());
  gtk_widget_set_size_request(picture, -1, height);
  // The name of the thing stands beside it.
  gtk_accessible_update_state(GTK_ACCESSIBLE(picture), GTK_ACCESSIBLE_STATE_HIDDEN, TRUE, -1);
  return picture;
}
