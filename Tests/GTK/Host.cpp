#include "Tests/GTK/Host.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <utility>

#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/Core/Checkout/ZLVWebViewController.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>

namespace {

std::string textOf(GtkWidget* widget) {
  if (GTK_IS_LABEL(widget)) return gtk_label_get_text(GTK_LABEL(widget));
  const char* const tooltip = gtk_widget_get_tooltip_text(widget);
  return tooltip == nullptr ? "" : tooltip;
}

/// The first visible widget below `root` that `matches`.
GtkWidget* findWidget(GtkWidget* root, const std::function<bool(GtkWidget*)>& matches) {
  if (gtk_widget_get_child_visible(root) == FALSE || gtk_widget_get_visible(root) == FALSE) {
    return nullptr;
  }
  if (matches(root)) return root;
  for (auto* child = gtk_widget_get_first_child(root); child != nullptr;
       child = gtk_widget_get_next_sibling(child)) {
    if (auto* found = findWidget(child, matches)) return found;
  }
  return nullptr;
}

/// Until then a widget may not be where it will be.
void waitForFrame(GtkWindow* window) {
  bool isPainted = false;
  auto* const clock = gtk_widget_get_frame_clock(GTK_WIDGET(window));
  const auto handler = g_signal_connect_swapped(
      clock, "after-paint", G_CALLBACK(+[](bool* painted) { *painted = true; }), &isPainted);
  gtk_widget_queue_draw(GTK_WIDGET(window));
  EXPECT_TRUE(waitFor([&] { return isPainted; }));
  g_signal_handler_disconnect(clock, handler);
}

}  // namespace

bool waitFor(const std::function<bool()>& condition) {
  const auto deadline = g_get_monotonic_time() + 30 * G_USEC_PER_SEC;
  constexpr guint tick = 5;  // for what happens outside the main loop
  const auto ticks = g_timeout_add(
      tick, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
  bool holds = condition();
  while (!holds && g_get_monotonic_time() < deadline) {
    g_main_context_iteration(nullptr, TRUE);
    holds = condition();
  }
  g_source_remove(ticks);
  return holds;
}

std::vector<pid_t> childProcessIDs() {
  std::vector<pid_t> all;
  for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
    std::ifstream children(task.path() / "children");
    std::copy(std::istream_iterator<pid_t>(children), {}, std::back_inserter(all));
  }
  return all;
}

std::size_t childProcesses() { return childProcessIDs().size(); }

bool isSensitive(GtkWidget* widget) { return gtk_widget_is_sensitive(widget) != FALSE; }

bool hasLabel(GtkWidget* widget, const char* label) {
  return ZLVGText(gtk_test_accessible_check_property(
             GTK_ACCESSIBLE(widget), GTK_ACCESSIBLE_PROPERTY_LABEL, label, nullptr)) == nullptr;
}

RawServer::Reply page(const std::string& body, const std::string& headers) {
  return {RawServer::response("<!doctype html>" + body, "200 OK",
                              "Content-Type: text/html\r\n" + headers)};
}

RawServer::Script pages(const std::string& body) {
  return [body](auto&) { return page(body); };
}

void browse(RawServer::Script script,
            const std::function<void(Host& host, const RawServer& server)>& body) {
  Host host;
  const RawServer server(std::move(script));
  host.run([&] { body(host, server); });
}

Host::Host(ZLVLinuxOptions options)
    : application(gtk_application_new("com.example.Tests", G_APPLICATION_NON_UNIQUE)) {
  options.applicationName = "Tests";
  options.applicationVersion = "1";
  const auto openURL = [this](const ZLVURL& url) {
    openedURLs.push_back(url.absoluteString());
    ZLVClient::handleCallbackUrl(url);
    return url.scheme() != unclaimedScheme;
  };
  ZLVPlatform::install(ZLVGTKPlatform::platformWithApplication(application, std::move(options),
                                                               {.openURL = openURL}));
  bindtextdomain("ZolvaCheckoutKit", ZLV_LOCALES);
}

Host::~Host() { g_object_unref(application); }

void Host::run(const std::function<void()>& body) {
  std::function<void()> activate = [&] {
    makeWindow();
    waitForFrame(window);
    body();
    g_application_quit(G_APPLICATION(application));
  };
  using Activate = decltype(activate);
  g_signal_connect_swapped(application, "activate", G_CALLBACK(+[](Activate* call) { (*call)(); }),
                           &activate);
  g_application_run(G_APPLICATION(application), 0, nullptr);
}

void Host::makeWindow() {
  g_object_set(gtk_settings_get_default(), "gtk-enable-animations", FALSE, nullptr);
  g_set_weak_pointer(&window, GTK_WINDOW(gtk_application_window_new(application)));
  gtk_window_set_default_size(window, 360, 640);

  entry = gtk_entry_new();
  payButton = gtk_button_new_with_label("Pay");
  titlebarButton = gtk_button_new_with_label("Menu");
  for (GtkWidget* button : {payButton, titlebarButton}) {
    g_signal_connect_swapped(button, "clicked", G_CALLBACK(+[](int* count) { ++*count; }), &clicks);
  }
  gtk_widget_set_vexpand(payButton, TRUE);
  GtkWidget* const box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  gtk_box_append(GTK_BOX(box), entry);
  gtk_box_append(GTK_BOX(box), payButton);
  gtk_window_set_child(window, box);
  GtkWidget* const titlebar = gtk_header_bar_new();
  gtk_header_bar_pack_start(GTK_HEADER_BAR(titlebar), titlebarButton);
  gtk_window_set_titlebar(window, titlebar);
  gtk_window_set_default_widget(window, payButton);
  gtk_window_present(window);
}

std::shared_ptr<ZLVViewController> Host::viewController() const {
  return ZLVGTKPlatform::viewControllerForWindow(window);
}

void Host::present(const std::string& url, std::shared_ptr<ZLVViewController> presenter) {
  if (!presenter) presenter = viewController();
  presenter->presentViewController(
      ZLVWebViewController::initWithURL(*ZLVURL::URLWithString(url), [this] { ++ended; }), true);
}

void Host::visit(const std::string& url, const std::string& selector) {
  // As after a call that took its time.
  const auto before = childProcesses();
  ZLVPlatform::installed().userInterface->prepareBrowser();
  ASSERT_TRUE(waitFor([=] { return childProcesses() > before; }));
  present(url);
  clickElement(selector);
}

bool Host::waitUntilClosed() const {
  return waitFor([this] {
    return (window == nullptr || viewController()->presentedViewController() == nullptr) &&
           childProcesses() == 0;
  });
}

void Host::close() const {
  click("Close");
  ASSERT_TRUE(waitUntilClosed());
}

void Host::callBack() {
  ZLVClient::handleCallbackUrl(*ZLVURL::URLWithString(std::string(callbackURL) + "?a=b"));
}

GtkWidget* Host::find(const std::string& text) const {
  return findWidget(GTK_WIDGET(window), [&](GtkWidget* widget) { return textOf(widget) == text; });
}

bool Host::sees(const std::string& text) const {
  return waitFor([&] { return find(text) != nullptr; });
}

bool Host::hasFocusInside(GtkWidget* place) const {
  auto* const focus = gtk_window_get_focus(window);
  return focus != nullptr && (focus == place || gtk_widget_is_ancestor(focus, place) != FALSE);
}

void Host::click(const std::string& text) const {
  ASSERT_TRUE(sees(text)) << text;
  click(find(text));
}

void Host::click(GtkWidget* widget, std::optional<graphene_point_t> point) const {
  waitForFrame(window);
  const graphene_point_t centre{static_cast<float>(gtk_widget_get_width(widget)) / 2,
                                static_cast<float>(gtk_widget_get_height(widget)) / 2};
  const auto inside = point.value_or(centre);
  graphene_point_t place{};
  ASSERT_TRUE(gtk_widget_compute_point(widget, GTK_WIDGET(window), &inside, &place));
  clickAt(window, place.x, place.y);
}

WebKitWebView* Host::webView() const {
  auto* const view = findWidget(
      GTK_WIDGET(window), [](GtkWidget* widget) { return WEBKIT_IS_WEB_VIEW(widget) != FALSE; });
  return view == nullptr ? nullptr : WEBKIT_WEB_VIEW(view);
}

std::optional<std::string> Host::evaluate(const std::string& script) const {
  using Result = ZLVGObject<GAsyncResult>;
  Result result;
  const auto view = ZLVGObject<WebKitWebView>::retain(webView());
  webkit_web_view_evaluate_javascript(
      view.get(), script.c_str(), -1, nullptr, nullptr, nullptr,
      [](GObject*, GAsyncResult* answer, gpointer data) {
        *static_cast<Result*>(data) = Result::retain(answer);
      },
      &result);
  if (!waitFor([&] { return static_cast<bool>(result); })) return std::nullopt;
  const auto value = ZLVGObject<JSCValue>::take(
      webkit_web_view_evaluate_javascript_finish(view.get(), result.get(), nullptr));
  if (!value) return std::nullopt;
  return ZLVGText(jsc_value_to_string(value.get())).get();
}

bool Host::hasElement(const std::string& selector) const {
  return webView() != nullptr &&
         evaluate("document.querySelector('" + selector + "') !== null") == "true";
}

void Host::clickElement(const std::string& selector) const {
  ASSERT_TRUE(waitFor([&] { return hasElement(selector); })) << selector;
  const auto middle =
      evaluate("(() => { const box = document.querySelector('" + selector +
               "').getBoundingClientRect();"
               "return (box.x + box.width / 2) + ' ' + (box.y + box.height / 2); })()");
  ASSERT_TRUE(middle.has_value());
  graphene_point_t point{};
  std::istringstream(*middle) >> point.x >> point.y;
  click(GTK_WIDGET(webView()), point);
}
