#include <utility>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVBrowserStyle.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVLocalizedText.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVNotice.h>

ZLVNotice::ZLVNotice(GtkWidget* page)
    : root_(ZLVGObject<GtkWidget>::retain(
          g_object_new(GTK_TYPE_BOX, "spacing", 6, "accessible-role", GTK_ACCESSIBLE_ROLE_ALERT,
                       "halign", GTK_ALIGN_CENTER, "valign", GTK_ALIGN_END, nullptr))),
      page_(ZLVGObject<GtkWidget>::retain(page)),
      text_(gtk_label_new(nullptr)),
      open_(gtk_button_new_with_label(ZLVLocalized("Open"))) {
  gtk_widget_add_css_class(root_.get(), ZLVBrowserStyle::notice);
  gtk_label_set_wrap(GTK_LABEL(text_), TRUE);
  gtk_label_set_wrap_mode(GTK_LABEL(text_), PANGO_WRAP_WORD_CHAR);
  gtk_label_set_xalign(GTK_LABEL(text_), 0);
  gtk_widget_set_hexpand(text_, TRUE);
  GtkWidget* const dismiss = gtk_button_new_from_icon_name("window-close-symbolic");
  gtk_widget_add_css_class(dismiss, "flat");
  gtk_widget_set_tooltip_text(dismiss, ZLVLocalized("Dismiss"));
  for (GtkWidget* button : {open_, dismiss}) gtk_widget_set_valign(button, GTK_ALIGN_CENTER);
  for (GtkWidget* child : {text_, open_, dismiss}) gtk_box_append(GTK_BOX(root_.get()), child);
  signals_.connect(dismiss, "clicked", [this](GtkButton*) { hide(); });
  signals_.connect(open_, "clicked", [this](GtkButton*) {
    const auto action = std::move(action_);
    hide();
    if (action) action();
  });
  hide();
}

ZLVNotice::~ZLVNotice() { stopTimer(); }

void ZLVNotice::show(const char* text, std::function<void()> open) {
  stopTimer();
  action_ = std::move(open);
  // What is there already is not announced again.
  if (g_strcmp0(gtk_label_get_text(GTK_LABEL(text_)), text) != 0) {
    gtk_label_set_text(GTK_LABEL(text_), text);
    gtk_accessible_update_property(GTK_ACCESSIBLE(root_.get()), GTK_ACCESSIBLE_PROPERTY_LABEL, text,
                                   -1);
  }
  gtk_widget_set_visible(open_, ZLVGBoolean(static_cast<bool>(action_)));
  gtk_widget_set_visible(root_.get(), TRUE);
  if (action_) return;
  constexpr guint seconds = 8;
  timer_ = g_timeout_add_seconds(
      seconds,
      [](gpointer notice) noexcept -> gboolean {
        static_cast<ZLVNotice*>(notice)->timer_ = 0;
        static_cast<ZLVNotice*>(notice)->hide();
        return G_SOURCE_REMOVE;
      },
      this);
}

void ZLVNotice::hide() {
  stopTimer();
  action_ = {};
  if (gtk_widget_get_focus_child(root_.get()) != nullptr) gtk_widget_grab_focus(page_.get());
  gtk_widget_set_visible(root_.get(), FALSE);
}

void ZLVNotice::stopTimer() {
  if (timer_ != 0) g_source_remove(std::exchange(timer_, 0));
}
