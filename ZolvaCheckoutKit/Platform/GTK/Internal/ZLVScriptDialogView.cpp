#include <utility>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVBrowserStyle.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVLocalizedText.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVScriptDialogView.h>

namespace {

struct Words {
  const char* confirm = nullptr;
  const char* cancel = nullptr;   ///< Null where there is nothing to choose.
  const char* message = nullptr;  ///< Null where the page says it.
};

const Words& wordsFor(WebKitScriptDialogType type) {
  static constexpr Words alert{N_("OK")};
  static constexpr Words question{N_("OK"), N_("Cancel")};
  static constexpr Words leave{N_("Leave"), N_("Stay"),
                               N_("Leave this page? What you have entered may be lost.")};
  switch (type) {
    case WEBKIT_SCRIPT_DIALOG_ALERT:
      return alert;
    case WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM:
      return leave;
    case WEBKIT_SCRIPT_DIALOG_CONFIRM:
    case WEBKIT_SCRIPT_DIALOG_PROMPT:
      break;
  }
  return question;
}

/// What nobody reads through takes long to lay out.
ZLVGText shortened(const char* text) {
  constexpr glong limit = 5000;
  if (text == nullptr) return ZLVGText(g_strdup(""));
  if (g_utf8_strlen(text, -1) <= limit) return ZLVGText(g_strdup(text));
  const ZLVGText start(g_utf8_substring(text, 0, limit));
  return ZLVGText(g_strconcat(start.get(), "…", nullptr));
}

/// A label that is as wide as there is room, up to a line that reads well.
GtkWidget* makeMessage() {
  GtkWidget* const message = gtk_label_new(nullptr);
  gtk_label_set_wrap(GTK_LABEL(message), TRUE);
  gtk_label_set_wrap_mode(GTK_LABEL(message), PANGO_WRAP_WORD_CHAR);
  gtk_label_set_xalign(GTK_LABEL(message), 0);
  constexpr int readableWidth = 44;
  gtk_label_set_max_width_chars(GTK_LABEL(message), readableWidth);
  return message;
}

GtkWidget* makeScroller(GtkWidget* content) {
  GtkWidget* const scroller = gtk_scrolled_window_new();
  auto* const window = GTK_SCROLLED_WINDOW(scroller);
  gtk_scrolled_window_set_policy(window, GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
  gtk_scrolled_window_set_propagate_natural_height(window, TRUE);
  gtk_scrolled_window_set_propagate_natural_width(window, TRUE);
  gtk_scrolled_window_set_child(window, content);
  return scroller;
}

}  // namespace

ZLVScriptDialogView::ZLVScriptDialogView(GtkWidget* page)
    : root_(ZLVGObject<GtkWidget>::retain(gtk_scrolled_window_new())),
      page_(ZLVGObject<GtkWidget>::retain(page)) {
  gtk_widget_add_css_class(root_.get(), ZLVBrowserStyle::shade);
  gtk_widget_set_visible(root_.get(), FALSE);
  makeCard();
  // For a window that is too low even for the buttons.
  gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(root_.get()), GTK_POLICY_NEVER,
                                 GTK_POLICY_AUTOMATIC);
  gtk_scrolled_window_set_child(GTK_SCROLLED_WINDOW(root_.get()), card_);
}

void ZLVScriptDialogView::makeCard() {
  constexpr int spacing = 12;
  card_ = GTK_WIDGET(g_object_new(GTK_TYPE_BOX, "orientation", GTK_ORIENTATION_VERTICAL, "spacing",
                                  spacing, "accessible-role", GTK_ACCESSIBLE_ROLE_ALERT_DIALOG,
                                  "halign", GTK_ALIGN_CENTER, "valign", GTK_ALIGN_CENTER, "vexpand",
                                  TRUE, nullptr));
  constexpr int width = 260;
  gtk_widget_set_size_request(card_, width, -1);
  gtk_widget_add_css_class(card_, ZLVBrowserStyle::dialog);
  // As in the bar: of a name that is too long the end says whose it is.
  host_ = gtk_label_new(nullptr);
  gtk_label_set_ellipsize(GTK_LABEL(host_), PANGO_ELLIPSIZE_START);
  gtk_widget_set_direction(host_, GTK_TEXT_DIR_LTR);
  gtk_widget_add_css_class(host_, ZLVBrowserStyle::host);
  message_ = makeMessage();
  entry_ = gtk_entry_new();
  signals_.connect(entry_, "activate", [this](GtkEntry*) { confirm(); });
  GtkWidget* const buttons = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, spacing);
  gtk_box_set_homogeneous(GTK_BOX(buttons), TRUE);
  cancel_ = makeButton(buttons, &ZLVScriptDialogView::dismiss);
  confirm_ = makeButton(buttons, &ZLVScriptDialogView::confirm);
  gtk_widget_add_css_class(confirm_, "suggested-action");
  for (GtkWidget* child : {host_, makeScroller(message_), entry_, buttons}) {
    gtk_box_append(GTK_BOX(card_), child);
  }
  stop_ = makeButton(card_, &ZLVScriptDialogView::stop);
  gtk_button_set_label(GTK_BUTTON(stop_), ZLVLocalized("Show No More Messages"));
  gtk_widget_add_css_class(stop_, "flat");
  gtk_accessible_update_property(GTK_ACCESSIBLE(card_), GTK_ACCESSIBLE_PROPERTY_MODAL, TRUE, -1);
  gtk_accessible_update_relation(GTK_ACCESSIBLE(card_), GTK_ACCESSIBLE_RELATION_LABELLED_BY, host_,
                                 nullptr, GTK_ACCESSIBLE_RELATION_DESCRIBED_BY, message_, nullptr,
                                 -1);
  gtk_accessible_update_relation(GTK_ACCESSIBLE(entry_), GTK_ACCESSIBLE_RELATION_LABELLED_BY,
                                 message_, nullptr, -1);
}

GtkWidget* ZLVScriptDialogView::makeButton(GtkWidget* parent,
                                           void (ZLVScriptDialogView::*action)()) {
  GtkWidget* const button = gtk_button_new_with_label("");
  gtk_widget_set_hexpand(button, TRUE);
  signals_.connect(button, "clicked", [this, action](GtkButton*) { (this->*action)(); });
  gtk_box_append(GTK_BOX(parent), button);
  return button;
}

void ZLVScriptDialogView::open(const std::string& host, ZLVScriptDialog dialog) {
  if (isStopped_ && dialog.type() == WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM) {
    dialog.confirm(nullptr);
  }
  if (isStopped_ || isOpen()) return;
  ++shownInRow_;

  const auto& words = wordsFor(dialog.type());
  const bool isPrompt = dialog.type() == WEBKIT_SCRIPT_DIALOG_PROMPT;
  const auto message = words.message == nullptr ? shortened(dialog.message())
                                                : shortened(ZLVLocalized(words.message));
  gtk_label_set_text(GTK_LABEL(host_), host.c_str());
  gtk_label_set_text(GTK_LABEL(message_), message.get());
  gtk_editable_set_text(GTK_EDITABLE(entry_),
                        isPrompt ? shortened(dialog.defaultText()).get() : "");
  gtk_widget_set_visible(entry_, ZLVGBoolean(isPrompt));
  gtk_button_set_label(GTK_BUTTON(confirm_), ZLVLocalized(words.confirm));
  gtk_widget_set_visible(cancel_, ZLVGBoolean(words.cancel != nullptr));
  if (words.cancel != nullptr)
    gtk_button_set_label(GTK_BUTTON(cancel_), ZLVLocalized(words.cancel));
  gtk_widget_set_visible(stop_, ZLVGBoolean(isInRow()));
  gtk_widget_set_sensitive(page_.get(), FALSE);
  gtk_widget_set_visible(root_.get(), TRUE);
  gtk_widget_grab_focus(isPrompt ? entry_ : confirm_);
  dialog_ = std::move(dialog);
}

void ZLVScriptDialogView::confirm() {
  if (dialog_) dialog_->confirm(gtk_editable_get_text(GTK_EDITABLE(entry_)));
  dismiss();
}

void ZLVScriptDialogView::cancel() {
  if (isInRow()) return stop();
  dismiss();
}

void ZLVScriptDialogView::stop() {
  isStopped_ = true;
  dismiss();
}

void ZLVScriptDialogView::dismiss() {
  // The answer goes out last: the page may ask the next thing at once.
  const auto answered = std::exchange(dialog_, std::nullopt);
  if (!answered) return;
  gtk_widget_set_sensitive(page_.get(), TRUE);
  gtk_widget_grab_focus(page_.get());
  gtk_widget_set_visible(root_.get(), FALSE);
}

void ZLVScriptDialogView::endRow() {
  shownInRow_ = 0;
  isStopped_ = false;
}
