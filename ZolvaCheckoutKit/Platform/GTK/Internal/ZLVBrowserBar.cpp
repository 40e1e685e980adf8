#include <utility>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVBrowserBar.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVBrowserStyle.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVLocalizedText.h>

namespace {

const char* dismissLabel(ZLVDismissButtonStyle style) {
  switch (style) {
    case ZLVDismissButtonStyle::Done:
      return ZLVLocalized("Done");
    case ZLVDismissButtonStyle::Close:
      return ZLVLocalized("Close");
    case ZLVDismissButtonStyle::Cancel:
      return ZLVLocalized("Cancel");
  }
  return ZLVLocalized("Close");
}

void setAccessibleLabel(GtkWidget* widget, const char* label) {
  gtk_accessible_update_property(GTK_ACCESSIBLE(widget), GTK_ACCESSIBLE_PROPERTY_LABEL, label, -1);
}

}  // namespace

ZLVBrowserBar::ZLVBrowserBar(ZLVDismissButtonStyle style, Actions actions)
    : bar_(ZLVGObject<GtkWidget>::retain(gtk_header_bar_new())),
      progress_(ZLVGObject<GtkWidget>::retain(gtk_progress_bar_new())) {
  auto* const bar = GTK_HEADER_BAR(bar_.get());
  gtk_header_bar_set_show_title_buttons(bar, FALSE);
  gtk_header_bar_set_title_widget(bar, makeTitle());

  GtkWidget* const close = gtk_button_new_with_label(dismissLabel(style));
  signals_.connect(close, "clicked", [action = std::move(actions.close)](GtkButton*) { action(); });
  gtk_header_bar_pack_start(bar, close);

  reload_ =
      makeButton("view-refresh-symbolic", ZLVLocalized("Reload"), "F5", std::move(actions.reload));
  back_ = makeButton("go-previous-symbolic", ZLVLocalized("Back"), "Alt+Left",
                     std::move(actions.goBack));
  gtk_header_bar_pack_end(bar, reload_);
  gtk_header_bar_pack_end(bar, back_);

  gtk_widget_add_css_class(progress_.get(), ZLVBrowserStyle::progress);
  gtk_widget_set_valign(progress_.get(), GTK_ALIGN_START);
  gtk_widget_set_can_target(progress_.get(), FALSE);
  setAccessibleLabel(progress_.get(), ZLVLocalized("Loading"));
}

GtkWidget* ZLVBrowserBar::makeTitle() {
  lock_ = gtk_image_new_from_icon_name("changes-prevent-symbolic");
  gtk_widget_set_tooltip_text(lock_, ZLVLocalized("Secure connection"));
  setAccessibleLabel(lock_, ZLVLocalized("Secure connection"));
  host_ = gtk_label_new(nullptr);
  gtk_widget_add_css_class(host_, ZLVBrowserStyle::host);
  // Of a name that is too long the end says whose it is; it reads from left to right everywhere.
  gtk_label_set_ellipsize(GTK_LABEL(host_), PANGO_ELLIPSIZE_START);
  gtk_widget_set_direction(host_, GTK_TEXT_DIR_LTR);
  warning_ = gtk_label_new(ZLVLocalized("Not secure"));
  gtk_label_set_ellipsize(GTK_LABEL(warning_), PANGO_ELLIPSIZE_END);
  gtk_widget_add_css_class(warning_, ZLVBrowserStyle::security);
  gtk_widget_add_css_class(warning_, ZLVBrowserStyle::notSecure);

  GtkWidget* const name = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
  gtk_widget_set_halign(name, GTK_ALIGN_CENTER);
  gtk_box_append(GTK_BOX(name), lock_);
  gtk_box_append(GTK_BOX(name), host_);
  GtkWidget* const title = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  gtk_widget_set_valign(title, GTK_ALIGN_CENTER);
  gtk_box_append(GTK_BOX(title), name);
  gtk_box_append(GTK_BOX(title), warning_);

  title_ = gtk_menu_button_new();
  gtk_widget_add_css_class(title_, ZLVBrowserStyle::title);
  gtk_menu_button_set_has_frame(GTK_MENU_BUTTON(title_), FALSE);
  gtk_menu_button_set_child(GTK_MENU_BUTTON(title_), title);
  gtk_menu_button_set_popover(GTK_MENU_BUTTON(title_), connection_.widget());
  return title_;
}

GtkWidget* ZLVBrowserBar::makeButton(const char* icon, const char* label, const char* shortcut,
                                     std::function<void()> action) {
  GtkWidget* const button = gtk_button_new_from_icon_name(icon);
  const ZLVGText tooltip(g_strdup_printf("%s (%s)", label, shortcut));
  gtk_widget_set_tooltip_text(button, tooltip.get());
  setAccessibleLabel(button, label);
  signals_.connect(button, "clicked", [action = std::move(action)](GtkButton*) { action(); });
  return button;
}

void ZLVBrowserBar::setState(ZLVWebPage::State state) {
  const bool isKnown = state.security != ZLVSecurity::Unknown;
  if (!isKnown) closePopover();
  gtk_widget_set_sensitive(title_, ZLVGBoolean(isKnown));
  if (state.host != state_.host || state.security != state_.security ||
      state.certificate.get() != state_.certificate.get()) {
    connection_.setState(state);
    const char* const security = state.security == ZLVSecurity::Secure
                                     ? ZLVLocalized("Secure connection")
                                     : ZLVLocalized("Not secure");
    const auto label = isKnown ? state.host + ", " + security : state.host;
    // The one that takes the focus is inside; both are told of.
    for (GtkWidget* const button : {title_, gtk_widget_get_first_child(title_)}) {
      setAccessibleLabel(button, label.c_str());
    }
  }
  gtk_label_set_text(GTK_LABEL(host_), state.host.c_str());
  gtk_widget_set_tooltip_text(host_, state.host.c_str());
  gtk_widget_set_visible(lock_, ZLVGBoolean(state.security == ZLVSecurity::Secure));
  gtk_widget_set_visible(warning_, ZLVGBoolean(state.security == ZLVSecurity::NotSecure));
  gtk_widget_set_visible(progress_.get(), ZLVGBoolean(state.isLoading));
  gtk_progress_bar_set_fraction(GTK_PROGRESS_BAR(progress_.get()), state.progress);
  gtk_widget_set_sensitive(back_, ZLVGBoolean(state.canGoBack));
  state_ = std::move(state);
}

void ZLVBrowserBar::setCanReload(bool canReload) {
  gtk_widget_set_sensitive(reload_, ZLVGBoolean(canReload));
}

bool ZLVBrowserBar::closePopover() {
  const bool isOpen = gtk_widget_get_visible(connection_.widget()) != FALSE;
  if (isOpen) gtk_menu_button_popdown(GTK_MENU_BUTTON(title_));
  return isOpen;
}
