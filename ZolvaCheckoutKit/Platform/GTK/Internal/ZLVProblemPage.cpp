#include <algorithm>
#include <iterator>
#include <utility>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVBrowserStyle.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVLocalizedText.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVProblemPage.h>

namespace {

/// What is said about a problem; texts are translated where they are shown, and "%s" is the host.
struct Words {
  ZLVProblem::Kind kind = ZLVProblem::Kind::Unreachable;
  const char* icon = nullptr;
  const char* title = nullptr;
  const char* text = nullptr;
  const char* reload = nullptr;  ///< Null where fetching the page again would change nothing.
  bool isReloadUsual = false;
  bool isPageKept = false;  ///< The one that the problem came up on can still be used.
};

using Kind = ZLVProblem::Kind;

/// The last one stands for any other.
constexpr Words allWords[] = {
    {Kind::Address, "dialog-warning-symbolic", N_("This address cannot be shown"),
     N_("The page has led to an address that no page can be shown from."), nullptr, false, true},
    {Kind::Certificate, "dialog-error-symbolic", N_("This page is not safe")},
    {Kind::Crashed, "dialog-warning-symbolic", N_("The page has stopped working"),
     N_("Reload it to go on. What you had entered may be lost."), N_("Reload"), true},
    {Kind::Empty, "dialog-information-symbolic", N_("There is nothing to show"),
     N_("%s has answered without a page. Close this one if you are done."), N_("Try Again")},
    {Kind::File, "text-x-generic-symbolic", N_("This file cannot be opened here"),
     N_("%s has sent a file instead of a page. Files are neither opened nor kept here."), nullptr},
    {Kind::LedOut, "dialog-information-symbolic", N_("Continue in the other app"),
     N_("%s has sent you to another app. Close this page when you are done there."),
     N_("Try Again")},
    {Kind::Login, "dialog-password-symbolic", N_("The page asks for a login"),
     N_("%s wants a user name and a password before it shows the page. For your safety they are "
        "not asked for here."),
     nullptr, false, true},
    {Kind::NoApplication, "dialog-warning-symbolic", N_("No app opens this link"),
     N_("%s has sent you to an app that is not on this device. Install it and try again."),
     N_("Try Again")},
    {Kind::ProxyLogin, "dialog-password-symbolic", N_("Your network asks for a login"),
     N_("The proxy %s wants a user name and a password. Log in to your network and try again."),
     N_("Try Again"), true, true},
    {Kind::Unreachable, "network-server-symbolic", N_("The page cannot be shown"),
     N_("%s does not answer. Check your internet connection and try again."), N_("Try Again"), true,
     true},
};

const Words& wordsFor(Kind kind) {
  const auto* const found = std::find_if(std::begin(allWords), std::end(allWords) - 1,
                                         [kind](const Words& words) { return words.kind == kind; });
  return *found;
}

/// The worst comes first.
constexpr std::pair<GTlsCertificateFlags, const char*> certificateTexts[] = {
    {G_TLS_CERTIFICATE_REVOKED, N_("The certificate of %s has been withdrawn.")},
    {G_TLS_CERTIFICATE_BAD_IDENTITY, N_("The server shows a certificate that is not for %s.")},
    {G_TLS_CERTIFICATE_UNKNOWN_CA,
     N_("The certificate of %s comes from nobody that this device trusts.")},
    {G_TLS_CERTIFICATE_EXPIRED, N_("The certificate of %s has expired.")},
    {G_TLS_CERTIFICATE_NOT_ACTIVATED,
     N_("The certificate of %s is not valid yet. Check the clock of this device.")},
    {G_TLS_CERTIFICATE_INSECURE, N_("The certificate of %s is too weak to be relied on.")},
};

const char* textFor(const ZLVProblem& problem) {
  if (const char* text = wordsFor(problem.kind).text) return text;
  for (const auto& [flag, text] : certificateTexts) {
    if ((problem.certificateFlags & flag) != 0) return text;
  }
  return N_("The certificate of %s could not be checked.");
}

std::string filledIn(const char* text, const std::string& host) {
  std::string filled = text;
  // The host reads from left to right in any language: U+2066 and U+2069 set it apart.
  // NOLINTNEXTLINE(misc-misleading-bidirectional): together they are none
  const std::string isolated = "\xE2\x81\xA6" + host + "\xE2\x81\xA9";
  if (const auto place = filled.find("%s"); place != std::string::npos) {
    filled.replace(place, 2, isolated);
  }
  return filled;
}

GtkWidget* makeLabel() {
  GtkWidget* const label = gtk_label_new(nullptr);
  gtk_label_set_wrap(GTK_LABEL(label), TRUE);
  gtk_label_set_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
  gtk_label_set_justify(GTK_LABEL(label), GTK_JUSTIFY_CENTER);
  constexpr int readableWidth = 40;
  gtk_label_set_max_width_chars(GTK_LABEL(label), readableWidth);
  return label;
}

}  // namespace

ZLVProblemPage::ZLVProblemPage(Actions actions)
    : page_(ZLVGObject<GtkWidget>::retain(gtk_scrolled_window_new())),
      icon_(gtk_image_new()),
      title_(makeLabel()),
      text_(makeLabel()),
      detail_(makeLabel()),
      reload_(gtk_button_new()),
      close_(gtk_button_new_with_label(ZLVLocalized("Close"))) {
  constexpr int spacing = 12;
  constexpr int iconSize = 64;
  GtkWidget* const box = gtk_box_new(GTK_ORIENTATION_VERTICAL, spacing);
  gtk_widget_add_css_class(box, ZLVBrowserStyle::problem);
  gtk_widget_set_valign(box, GTK_ALIGN_CENTER);
  gtk_image_set_pixel_size(GTK_IMAGE(icon_), iconSize);
  gtk_widget_add_css_class(title_, "title");
  gtk_widget_add_css_class(detail_, "dim-label");
  GtkWidget* const buttons = gtk_box_new(GTK_ORIENTATION_VERTICAL, spacing);
  gtk_widget_set_halign(buttons, GTK_ALIGN_CENTER);
  gtk_widget_set_margin_top(buttons, spacing);
  for (GtkWidget* button : {reload_, close_}) gtk_box_append(GTK_BOX(buttons), button);
  for (GtkWidget* child : {icon_, title_, text_, detail_, buttons}) {
    gtk_box_append(GTK_BOX(box), child);
  }
  gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(page_.get()), GTK_POLICY_NEVER,
                                 GTK_POLICY_AUTOMATIC);
  gtk_scrolled_window_set_child(GTK_SCROLLED_WINDOW(page_.get()), box);

  signals_.connect(close_, "clicked",
                   [action = std::move(actions.close)](GtkButton*) { action(); });
  signals_.connect(reload_, "clicked",
                   [action = std::move(actions.reload)](GtkButton*) { action(); });
}

bool ZLVProblemPage::canReload(const ZLVProblem& problem) {
  return wordsFor(problem.kind).reload != nullptr;
}

bool ZLVProblemPage::isPageKept(const ZLVProblem& problem) {
  return wordsFor(problem.kind).isPageKept;
}

void ZLVProblemPage::setProblem(const ZLVProblem& problem) {
  const auto& words = wordsFor(problem.kind);
  gtk_image_set_from_icon_name(GTK_IMAGE(icon_), words.icon);
  gtk_label_set_text(GTK_LABEL(title_), ZLVLocalized(words.title));
  const auto text = filledIn(ZLVLocalized(textFor(problem)), problem.host);
  gtk_label_set_text(GTK_LABEL(text_), text.c_str());
  gtk_label_set_text(GTK_LABEL(detail_), problem.detail.c_str());
  gtk_widget_set_visible(detail_, ZLVGBoolean(!problem.detail.empty()));
  gtk_widget_set_visible(reload_, ZLVGBoolean(canReload(problem)));
  if (canReload(problem)) gtk_button_set_label(GTK_BUTTON(reload_), ZLVLocalized(words.reload));
  usual_ = words.isReloadUsual ? reload_ : close_;
  for (GtkWidget* button : {reload_, close_}) {
    if (button == usual_) {
      gtk_widget_add_css_class(button, "suggested-action");
    } else {
      gtk_widget_remove_css_class(button, "suggested-action");
    }
  }
}

void ZLVProblemPage::grabFocus() { gtk_widget_grab_focus(usual_); }
