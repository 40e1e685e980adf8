#include "Tests/GTK/Host.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

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

}  // namespace

bool waitFor(const std::function<bool()>& condition) {
  constexpr guint limit = 30000;
  constexpr guint tick = 5;  // for what happens outside the main loop
  bool isLate = false;
  const auto deadline = g_timeout_add(
      limit,
      [](gpointer late) -> gboolean {
        *static_cast<bool*>(late) = true;
        return G_SOURCE_CONTINUE;
      },
      &isLate);
  const auto ticks = g_timeout_add(
      tick, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
  bool holds = condition();
  while (!holds && !isLate) {
    g_main_context_iteration(nullptr, TRUE);
    holds = condition();
  }
  g_source_remove(deadline);
  g_source_remove(ticks);
  return holds;
}

std::size_t childProcesses() {
  std::size_t count = 0;
  for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
    std::ifstream children(task.path() / "children");
    count += static_cast<std::size_t>(
        std::distance(std::istream_iterator<int>(children), std::istream_iterator<int>()));
  }
  return count;
}

Host::Host(ZLVLinuxOptions options)
    : application_(gtk_application_new("com.example.Tests", G_APPLICATION_NON_UNIQUE)) {
  options.applicationName = "Tests";
  options.applicationVersion = "1";
  const auto openURL = [this](const ZLVURL& url) {
    openedURLs_.push_back(url.absoluteString());
    ZLVClient::handleCallbackUrl(url);
    return url.scheme() != unclaimedScheme;
  };
  ZLVPlatform::install(ZLVGTKPlatform::platformWithApplication(application_, std::move(options),
                                                               {.openURL = openURL}));
  bindtextdomain("ZolvaCheckoutKit", ZLV_LOCALES);
}

Host::~Host() { g_object_unref(application_); }

void Host::run(std::function<void()> body) {
  body_ = std::move(body);
  g_signal_connect(application_, "activate", G_CALLBACK(+[](GtkApplication*, gpointer host) {
                     static_cast<Host*>(host)->makeWindow();
                   }),
                   this);
  g_application_run(G_APPLICATION(application_), 0, nullptr);
}

void Host::makeWindow() {
  g_object_set(gtk_settings_get_default(), "gtk-enable-animations", FALSE, nullptr);
  window_ = GTK_WINDOW(gtk_application_window_new(application_));
  g_object_weak_ref(
      G_OBJECT(window_),
      [](gpointer host, GObject*) { static_cast<Host*>(host)->window_ = nullptr; }, this);
  gtk_window_set_default_size(window_, 360, 640);

  entry_ = gtk_entry_new();
  payButton_ = gtk_button_new_with_label("Pay");
  titlebarButton_ = gtk_button_new_with_label("Menu");
  for (GtkWidget* button : {payButton_, titlebarButton_}) {
    g_signal_connect_swapped(button, "clicked", G_CALLBACK(+[](int* clicks) { ++*clicks; }),
                             &clicks_);
  }
  gtk_widget_set_vexpand(payButton_, TRUE);
  GtkWidget* const box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  gtk_box_append(GTK_BOX(box), entry_);
  gtk_box_append(GTK_BOX(box), payButton_);
  gtk_window_set_child(window_, box);
  GtkWidget* const titlebar = gtk_header_bar_new();
  gtk_header_bar_pack_start(GTK_HEADER_BAR(titlebar), titlebarButton_);
  gtk_window_set_titlebar(window_, titlebar);
  gtk_window_set_default_widget(window_, payButton_);

  g_signal_connect(window_, "map", G_CALLBACK(+[](GtkWidget*, gpointer data) {
                     g_idle_add(
                         [](gpointer host) -> gboolean {
                           const auto body = std::move(static_cast<Host*>(host)->body_);
                           auto* const application = static_cast<Host*>(host)->application_;
                           if (body) body();
                           g_application_quit(G_APPLICATION(application));
                           return G_SOURCE_REMOVE;
                         },
                         data);
                   }),
                   this);
  gtk_window_present(window_);
}

std::shared_ptr<ZLVViewController> Host::viewController() const {
  return ZLVGTKPlatform::viewControllerForWindow(window_);
}

void Host::present(const std::string& url, int* ended) const {
  present(viewController(), url, ended);
}

void Host::present(const std::shared_ptr<ZLVViewController>& presenter, const std::string& url,
                   int* ended) {
  presenter->presentViewController(ZLVWebViewController::initWithURL(*ZLVURL::URLWithString(url),
                                                                     [ended] {
                                                                       if (ended != nullptr)
                                                                         ++*ended;
                                                                     }),
                                   true);
}

bool Host::waitUntilClosed() const {
  return waitFor([this] {
    return (window_ == nullptr || viewController()->presentedViewController() == nullptr) &&
           childProcesses() == 0;
  });
}

GtkWidget* Host::find(const std::string& text) const {
  return findWidget(GTK_WIDGET(window_), [&](GtkWidget* widget) { return textOf(widget) == text; });
}

void Host::click(const std::string& text) const {
  ASSERT_TRUE(waitFor([&] { return find(text) != nullptr; })) << text;
  click(find(text));
}

void Host::waitForFrame() const {
  bool isPainted = false;
  const auto handler =
      g_signal_connect_swapped(gtk_widget_get_frame_clock(GTK_WIDGET(window_)), "after-paint",
                               G_CALLBACK(+[](bool* painted) { *painted = true; }), &isPainted);
  gtk_widget_queue_draw(GTK_WIDGET(window_));
  EXPECT_TRUE(waitFor([&] { return isPainted; }));
  g_signal_handler_disconnect(gtk_widget_get_frame_clock(GTK_WIDGET(window_)), handler);
}

void Host::click(GtkWidget* widget) const {
  waitForFrame();
  graphene_point_t point{};
  const graphene_point_t centre{static_cast<float>(gtk_widget_get_width(widget)) / 2,
                                static_cast<float>(gtk_widget_get_height(widget)) / 2};
  ASSERT_TRUE(gtk_widget_compute_point(widget, GTK_WIDGET(window_), &centre, &point));
  clickAt(window_, point.x, point.y);
}

WebKitWebView* Host::webView() const {
  auto* const view = findWidget(
      GTK_WIDGET(window_), [](GtkWidget* widget) { return WEBKIT_IS_WEB_VIEW(widget) != FALSE; });
  return view == nullptr ? nullptr : WEBKIT_WEB_VIEW(view);
}

std::optional<std::string> Host::evaluate(const std::string& script) const {
  struct Answer {
    bool isThere = false;
    std::optional<std::string> text;
  } answer;
  webkit_web_view_evaluate_javascript(
      webView(), script.c_str(), -1, nullptr, nullptr, nullptr,
      [](GObject* view, GAsyncResult* result, gpointer data) {
        auto& answered = *static_cast<Answer*>(data);
        answered.isThere = true;
        const auto value = ZLVGObject<JSCValue>::take(
            webkit_web_view_evaluate_javascript_finish(WEBKIT_WEB_VIEW(view), result, nullptr));
        if (value) answered.text = ZLVGText(jsc_value_to_string(value.get())).get();
      },
      &answer);
  waitFor([&] { return answer.isThere; });
  return answer.text;
}

bool Host::hasElement(const std::string& selector) const {
  return webView() != nullptr &&
         evaluate("document.querySelector('" + selector + "') !== null") == "true";
}

void Host::clickElement(const std::string& selector) const {
  const auto script = "(() => { const box = document.querySelector('" + selector +
                      "').getBoundingClientRect();"
                      "return (box.x + box.width / 2) + ' ' + (box.y + box.height / 2); })()";
  ASSERT_TRUE(waitFor([&] { return hasElement(selector); })) << selector;
  const auto place = evaluate(script);
  ASSERT_TRUE(place.has_value());
  std::istringstream numbers(*place);
  float x = 0;
  float y = 0;
  numbers >> x >> y;
  graphene_point_t point{};
  const graphene_point_t inView{x, y};
  ASSERT_TRUE(
      gtk_widget_compute_point(GTK_WIDGET(webView()), GTK_WIDGET(window_), &inView, &point));
  clickAt(window_, point.x, point.y);
}
