#include <iterator>
#include <utility>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVBrowserScreen.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVBrowserStyle.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVFocusRing.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVLocalizedText.h>

namespace {

/// The steps that the size of a page goes in.
constexpr double zoomLevels[] = {0.5, 0.67, 0.8, 0.9, 1, 1.1, 1.25, 1.5, 1.75, 2, 2.5, 3};
constexpr std::size_t fullSize = 4;
static_assert(zoomLevels[fullSize] == 1);

GtkWidget* makeSpinner() {
  GtkWidget* const spinner = gtk_spinner_new();
  constexpr int size = 32;
  gtk_widget_set_size_request(spinner, size, size);
  gtk_widget_set_halign(spinner, GTK_ALIGN_CENTER);
  gtk_widget_set_valign(spinner, GTK_ALIGN_CENTER);
  gtk_spinner_start(GTK_SPINNER(spinner));
  return spinner;
}

}  // namespace

ZLVBrowserScreen::ZLVBrowserScreen(ZLVDismissButtonStyle style, ZLVGObject<WebKitWebView> view,
                                   std::shared_ptr<ZLVCertificateAuthorities> authorities,
                                   Events events)
    : events_(std::move(events)),
      page_(std::move(view), std::move(authorities),
            {.stateChanged = [this] { updateBar(); },
             .shown = [this] { setContent(Content::Page); },
             .failed = [this](const auto& problem) { showProblem(problem); },
             .ledOut = events_.ledOut,
             .wantsOut = [this](const auto& url) { offer(url); },
             .fileRefused = [this] { tell(ZLVLocalized("This file cannot be opened here")); },
             .dialogOpened = [this](auto dialog) { openDialog(std::move(dialog)); },
             .pressed = [this] { dialog_.endRow(); },
             .closed = events_.closed}),
      fileChooser_(WEBKIT_WEB_VIEW(page_.widget())),
      bar_(style, {.close = events_.closed,
                   .goBack = [this] { goBack(); },
                   .reload = [this] { reload(); }}),
      problemPage_({.close = events_.closed, .reload = [this] { reload(); }}),
      dialog_(page_.widget()),
      notice_(page_.widget()),
      root_(ZLVGObject<GtkWidget>::retain(ZLVFocusRing::make(GTK_ACCESSIBLE_ROLE_DIALOG))),
      spinner_(makeSpinner()),
      zoomLevel_(fullSize) {
  gtk_widget_add_css_class(root_.get(), ZLVBrowserStyle::browser);
  gtk_accessible_update_property(GTK_ACCESSIBLE(root_.get()), GTK_ACCESSIBLE_PROPERTY_LABEL,
                                 ZLVLocalized("Web page"), GTK_ACCESSIBLE_PROPERTY_MODAL, TRUE, -1);

  GtkWidget* const content = gtk_overlay_new();
  gtk_widget_set_vexpand(content, TRUE);
  gtk_overlay_set_child(GTK_OVERLAY(content), page_.widget());
  for (GtkWidget* above :
       {spinner_, problemPage_.widget(), notice_.widget(), dialog_.widget(), bar_.progressBar()}) {
    gtk_overlay_add_overlay(GTK_OVERLAY(content), above);
  }
  gtk_box_append(GTK_BOX(root_.get()), bar_.widget());
  gtk_box_append(GTK_BOX(root_.get()), content);
  addShortcuts();
  setContent(Content::Loading);
}

void ZLVBrowserScreen::addShortcuts() {
  GtkEventController* const controller = gtk_shortcut_controller_new();
  // Before the page, and wherever the focus is.
  gtk_event_controller_set_propagation_phase(controller, GTK_PHASE_CAPTURE);
  gtk_shortcut_controller_set_scope(GTK_SHORTCUT_CONTROLLER(controller), GTK_SHORTCUT_SCOPE_GLOBAL);
  using Action = std::function<void()>;
  const std::pair<const char*, Action> shortcuts[] = {
      {"Escape", [this] { escape(); }},
      {"<Alt>Left", [this] { goBack(); }},
      {"F5|<Control>r", [this] { reload(); }},
      {"<Control>plus|<Control>equal|<Control>KP_Add", [this] { zoom(zoomLevel_ + 1); }},
      {"<Control>minus|<Control>KP_Subtract", [this] { zoom(zoomLevel_ - 1); }},
      {"<Control>0|<Control>KP_0", [this] { zoom(fullSize); }}};
  for (const auto& [keys, action] : shortcuts) {
    GtkShortcutAction* const run = gtk_callback_action_new(
        [](GtkWidget*, GVariant*, gpointer data) noexcept -> gboolean {
          ZLVUserData<Action>::of(data)();
          return TRUE;
        },
        ZLVUserData<Action>::make(action), &ZLVUserData<Action>::free);
    gtk_shortcut_controller_add_shortcut(
        GTK_SHORTCUT_CONTROLLER(controller),
        gtk_shortcut_new(gtk_shortcut_trigger_parse_string(keys), run));
  }
  gtk_widget_add_controller(root_.get(), controller);
}

void ZLVBrowserScreen::load(const std::string& url) {
  page_.load(url);
  updateBar();
}

void ZLVBrowserScreen::grabFocus() {
  if (content_ == Content::Problem) return problemPage_.grabFocus();
  gtk_widget_grab_focus(page_.widget());
}

void ZLVBrowserScreen::setContent(Content content) {
  content_ = content;
  dialog_.dismiss();
  notice_.hide();
  // The page stays mapped below the spinner, where it gets ready to be seen, but not below a
  // problem, where it could still be used.
  gtk_widget_set_visible(page_.widget(), ZLVGBoolean(content != Content::Problem));
  gtk_widget_set_opacity(page_.widget(), content == Content::Page ? 1 : 0);
  gtk_widget_set_visible(spinner_, ZLVGBoolean(content == Content::Loading));
  gtk_widget_set_visible(problemPage_.widget(), ZLVGBoolean(content == Content::Problem));
}

void ZLVBrowserScreen::showProblem(const ZLVProblem& problem) {
  problem_ = problem;
  problemPage_.setProblem(problem);
  setContent(Content::Problem);
  updateBar();
  grabFocus();
}

bool ZLVBrowserScreen::canReload() const {
  return content_ != Content::Problem || ZLVProblemPage::canReload(problem_);
}

bool ZLVBrowserScreen::canReturn() const {
  return ZLVProblemPage::isPageKept(problem_) && page_.hasPage();
}

void ZLVBrowserScreen::openingFailed() {
  if (content_ == Content::Page) return tell(ZLVLocalized("No app opens this link"));
  page_.openingFailed();
}

void ZLVBrowserScreen::openDialog(ZLVScriptDialog dialog) {
  // What cannot be seen cannot be answered, other than with no.
  if (content_ == Content::Page) dialog_.open(page_.state().host, std::move(dialog));
}

void ZLVBrowserScreen::tell(const char* text) {
  if (content_ == Content::Page) notice_.show(text);
}

void ZLVBrowserScreen::offer(const ZLVURL& url) {
  if (content_ != Content::Page) return;
  notice_.show(ZLVLocalized("The page wants to open another app"),
               [this, url] { events_.ledOut(url); });
}

void ZLVBrowserScreen::escape() {
  if (bar_.closePopover()) return;
  if (dialog_.isOpen()) return dialog_.cancel();
  events_.closed();
}

void ZLVBrowserScreen::goBack() {
  dialog_.dismiss();
  if (content_ == Content::Page) return page_.goBack();
  if (content_ != Content::Problem || !canReturn()) return;
  setContent(Content::Page);
  updateBar();
  grabFocus();
}

void ZLVBrowserScreen::reload() {
  if (!canReload()) return;
  dialog_.dismiss();
  dialog_.endRow();
  if (content_ != Content::Problem) return page_.reload();
  setContent(Content::Loading);
  page_.load(problem_.URL);
  updateBar();
  grabFocus();
}

void ZLVBrowserScreen::updateBar() {
  auto state = page_.state();
  if (content_ == Content::Problem) {
    const bool isUnsafe = problem_.kind == ZLVProblem::Kind::Certificate;
    state.host = problem_.host;
    state.security = isUnsafe ? ZLVSecurity::NotSecure : ZLVSecurity::Unknown;
    state.canGoBack = canReturn();
  }
  bar_.setState(std::move(state));
  bar_.setCanReload(canReload());
}

void ZLVBrowserScreen::zoom(std::size_t level) {
  if (level >= std::size(zoomLevels)) return;
  zoomLevel_ = level;
  webkit_web_view_set_zoom_level(WEBKIT_WEB_VIEW(page_.widget()), zoomLevels[level]);
}
