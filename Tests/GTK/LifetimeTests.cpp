// However a browser ends, the host learns of it once and nothing stays behind.

#include <algorithm>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>

#include "Tests/GTK/Host.h"
#include "Tests/Support/RawServer.h"

namespace {

RawServer::Reply page(const std::string& body) {
  return {RawServer::response("<!doctype html><style>* { display: block }</style>" + body, "200 OK",
                              "Content-Type: text/html\r\n")};
}

/// A merchant's server that wants every account activated on the page `path`, and that page.
class Merchant {
 public:
  explicit Merchant(std::string path) : path_(std::move(path)) {}

  [[nodiscard]] std::string url() const { return server_.url(""); }
  [[nodiscard]] bool hasServed(const std::string& start) const {
    return std::ranges::any_of(server_.requests(), [&start](const std::string& request) {
      return request.starts_with(start);
    });
  }

 private:
  RawServer::Reply answer(const std::string& request) const {
    if (request.starts_with("POST /v2/pay/account ")) {
      return {RawServer::response(R"({"status_code": "201", "actions": [
          {"name": "activation-deeplink", "url": ")" +
                                  url() + path_ + "\"}]}")};
    }
    if (request.starts_with("POST /1/upload")) return {RawServer::response("{}")};
    if (request.starts_with("GET /stall")) return {"", RawServer::Then::Stall};
    return page(
        "<p>page</p><a href=zolvatest://done>return</a>"
        "<button id=close onclick='window.close()'>close</button>"
        "<button id=alert onclick='while (true) alert(1)'>alert</button>"
        "<button id=hang onclick='while (true);'>hang</button>");
  }

  std::string path_;
  RawServer server_{[this](const std::string& request) { return answer(request); }};
};

struct Ending {
  const char* name;
  std::function<void(Host& host)> end;
  const char* path = "/page";
};

void PrintTo(const Ending& ending, std::ostream* stream) { *stream << ending.name; }

void callBack(Host& /*host*/) {
  ZLVClient::handleCallbackUrl(*ZLVURL::URLWithString(std::string(Host::callbackURL) + "?a=b"));
}

const Ending endings[] = {
    {"CloseButton", [](Host& host) { host.click("Close"); }},
    {"Escape", [](Host&) { pressKeys("Escape"); }},
    {"AllAtOnce",
     [](Host& host) {
       pressKeys("Escape Escape");
       callBack(host);
     }},
    {"CallbackURL", callBack},
    {"LinkToCallbackURL", [](Host& host) { host.clickElement("a"); }},
    {"PageClosesItself", [](Host& host) { host.clickElement("#close"); }},
    {"EndlessAlerts",
     [](Host& host) {
       host.clickElement("#alert");
       host.click("Close");
     }},
    {"EndlessLoop",
     [](Host& host) {
       host.clickElement("#hang");
       host.click("Close");
     }},
    {"PageCrashes",
     [](Host& host) {
       webkit_web_view_terminate_web_process(host.webView());
       host.click("Close");
     }},
    {"DismissalDuringLoad", callBack, "/stall"},
    {"DismissalByTheHost",
     [](Host& host) { host.viewController()->dismissViewControllerAnimated(true); }},
    {"WindowDestroyed", [](Host& host) { gtk_window_destroy(host.window()); }},
    {"WindowDestroyedButHeld",
     [](Host& host) {
       const auto window = ZLVGObject<GtkWindow>::retain(host.window());
       gtk_window_destroy(window.get());
       EXPECT_TRUE(
           waitFor([&] { return host.viewController()->presentedViewController() == nullptr; }));
     }},
    {"ContentReplaced",
     [](Host& host) { gtk_window_set_child(host.window(), gtk_label_new("other")); }},
    {"ApplicationQuits", [](Host& host) { g_application_quit(G_APPLICATION(host.application())); }},
};

class Lifetime : public testing::TestWithParam<Ending> {};

TEST_P(Lifetime, EndsOnce) {
  const Merchant merchant(GetParam().path);
  Host host({.analyticsRootURL = merchant.url() + "/"});
  ZLVClient::initWithMerchantServerURL(merchant.url(), "M-1", Host::callbackURL, false);
  int completions = 0;
  std::weak_ptr<ZLVViewController> controller;
  host.run([&] {
    ZLVClient::linkAccountWithPaymentType(
        "zolva", nullptr, host.viewController(), [&](const auto& account, const auto& error) {
          ++completions;
          EXPECT_NE(account, nullptr);
          EXPECT_FALSE(error.has_value()) << error->debugDescription();
          EXPECT_TRUE(controller.expired());
        });
    ASSERT_TRUE(
        waitFor([&] { return host.viewController()->presentedViewController() != nullptr; }));
    controller = host.viewController()->presentedViewController();
    if (GetParam().path == std::string("/page")) {
      host.clickElement("p");
    } else {
      ASSERT_TRUE(waitFor([&] { return merchant.hasServed("GET /stall"); }));
    }
    EXPECT_EQ(completions, 0);
    GetParam().end(host);
    // An application that ends turns its loop no further.
    if (GetParam().name != std::string("ApplicationQuits")) {
      EXPECT_TRUE(waitFor([&] { return completions > 0; }));
    }
  });
  EXPECT_EQ(completions, 1);
  EXPECT_TRUE(controller.expired());
  EXPECT_TRUE(waitFor([] { return childProcesses() == 0; }));
}

INSTANTIATE_TEST_SUITE_P(Browser, Lifetime, testing::ValuesIn(endings),
                         [](const auto& test) { return test.param.name; });

TEST(Browser, EndsWhenItWasBarelyShownOrNotAtAll) {
  Host host;
  int ended = 0;
  host.run([&] {
    host.present("http://127.0.0.1:9/", &ended);
    callBack(host);
    host.viewController()->dismissViewControllerAnimated(false);
    EXPECT_EQ(ended, 1);
    // Of a view controller that no window shows, the user would never get rid.
    const auto stray = std::make_shared<ZLVViewController>();
    Host::present(stray, "http://127.0.0.1:9/", &ended);
    EXPECT_EQ(ended, 1);
    EXPECT_TRUE(waitFor([&] { return ended == 2; }));
    EXPECT_TRUE(host.waitUntilClosed());
  });
}

/// The web views in the widget, the lowest first.
std::vector<GtkWidget*> viewsIn(GtkWidget* root) {
  if (WEBKIT_IS_WEB_VIEW(root) != FALSE) return {root};
  std::vector<GtkWidget*> found;
  for (auto* child = gtk_widget_get_first_child(root); child != nullptr;
       child = gtk_widget_get_next_sibling(child)) {
    std::ranges::copy(viewsIn(child), std::back_inserter(found));
  }
  return found;
}

bool isSensitive(GtkWidget* widget) { return gtk_widget_is_sensitive(widget) != FALSE; }

/// A window with pages over one another that never come, and a host that covers it itself.
class Covers : public testing::Test {
 protected:
  void show(std::vector<std::unique_ptr<ZLVBrowser>>& browsers) {
    browsers.push_back(ZLVPlatform::installed().userInterface->makeBrowser(
        *ZLVURL::URLWithString("http://127.0.0.1:" + std::to_string(listener_.port()))));
    browsers.back()->show(*host_.viewController(), false, [this] { ++closed_; });
  }

  void expectNothingLeft(GtkWidget* content) const {
    EXPECT_EQ(viewsIn(GTK_WIDGET(host_.window())), std::vector<GtkWidget*>{});
    EXPECT_EQ(gtk_window_get_child(host_.window()), content);
    EXPECT_TRUE(isSensitive(host_.payButton()));
    EXPECT_TRUE(isSensitive(host_.titlebarButton()));
  }

  /// Lets everything happen that is due.
  static void settle() {
    bool isDone = false;
    ZLVPlatform::installed().mainQueue->dispatch([&] { isDone = true; });
    ASSERT_TRUE(waitFor([&] { return isDone; }));
  }

  SilentListener listener_;
  Host host_;
  int closed_ = 0;
};

TEST_F(Covers, EndInAnyOrder) {
  host_.run([&] {
    GtkWidget* const content = gtk_window_get_child(host_.window());
    gtk_widget_grab_focus(host_.entry());
    std::vector order{0, 1, 2};
    for ([[maybe_unused]] const int first : {0, 1, 2}) {
      SCOPED_TRACE(testing::PrintToString(order));
      std::vector<std::unique_ptr<ZLVBrowser>> browsers;
      for ([[maybe_unused]] const int each : order) show(browsers);
      auto views = viewsIn(GTK_WIDGET(host_.window()));
      ASSERT_EQ(views.size(), order.size());
      const auto all = views;
      for (const int ending : order) {
        settle();
        // The page on top is there to be used, and nothing else.
        EXPECT_EQ(gtk_window_get_focus(host_.window()), views.back());
        for (GtkWidget* view : views) EXPECT_EQ(isSensitive(view), view == views.back());
        EXPECT_FALSE(isSensitive(host_.payButton()));
        EXPECT_FALSE(isSensitive(host_.titlebarButton()));
        browsers[static_cast<std::size_t>(ending)]->hide(false);
        std::erase(views, all[static_cast<std::size_t>(ending)]);
        EXPECT_EQ(viewsIn(GTK_WIDGET(host_.window())), views);
      }
      expectNothingLeft(content);
      EXPECT_EQ(gtk_window_get_default_widget(host_.window()), host_.payButton());
      EXPECT_NE(gtk_widget_get_state_flags(host_.entry()) & GTK_STATE_FLAG_FOCUS_WITHIN, 0);
      std::rotate(order.begin(), order.begin() + 1, order.end());
    }
    EXPECT_EQ(closed_, 0);
  });
}

TEST_F(Covers, EndBelowTheHostsOwn) {
  host_.run([&] {
    GtkWidget* const content = gtk_window_get_child(host_.window());
    std::vector<std::unique_ptr<ZLVBrowser>> browsers;
    show(browsers);
    const auto own = ZLVGObject<GtkWidget>::retain(gtk_overlay_new());
    const auto covered = ZLVGObject<GtkWidget>::retain(gtk_window_get_child(host_.window()));
    gtk_window_set_child(host_.window(), own.get());
    gtk_overlay_set_child(GTK_OVERLAY(own.get()), covered.get());
    GtkWidget* const button = gtk_button_new_with_label("own");
    gtk_overlay_add_overlay(GTK_OVERLAY(own.get()), button);
    gtk_widget_grab_focus(button);
    settle();
    EXPECT_EQ(viewsIn(own.get()).size(), 1U);
    EXPECT_EQ(closed_, 0);

    show(browsers);
    browsers.front()->hide(false);
    EXPECT_FALSE(isSensitive(host_.payButton()));
    EXPECT_EQ(viewsIn(GTK_WIDGET(host_.window())).size(), 1U);
    browsers.back()->hide(false);
    expectNothingLeft(own.get());
    EXPECT_EQ(gtk_window_get_focus(host_.window()), button);

    gtk_overlay_set_child(GTK_OVERLAY(own.get()), nullptr);
    gtk_window_set_child(host_.window(), covered.get());
    EXPECT_TRUE(gtk_widget_get_mapped(host_.payButton()));
    show(browsers);
    browsers.back()->hide(false);
    expectNothingLeft(content);
  });
}

/// The memory of this process, in KiB.
long residentMemory() {
  std::ifstream statistics("/proc/self/statm");
  long total = 0;
  long resident = 0;
  statistics >> total >> resident;
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

TEST(Browser, LeavesNothingBehindAfterThirtyVisits) {
  Host host;
  const RawServer server([](auto&) { return page("<p>page"); });
  int ended = 0;
  int living = 0;
  const auto count = [&](gpointer object) {
    ++living;
    g_object_weak_ref(
        G_OBJECT(object), [](gpointer data, GObject*) { --*static_cast<int*>(data); }, &living);
  };
  host.run([&] {
    long warm = 0;
    for (int visit = 1; visit <= 30; ++visit) {
      host.present(server.url(), &ended);
      host.clickElement("p");
      count(host.webView());
      count(webkit_web_view_get_network_session(host.webView()));
      count(gtk_window_get_child(host.window()));
      pressKeys("Escape");
      ASSERT_TRUE(host.waitUntilClosed());
      EXPECT_EQ(ended, visit);
      EXPECT_EQ(living, 0);
      if (visit == 10) warm = residentMemory();
    }
    constexpr long tolerance = 8192;
    EXPECT_LT(residentMemory(), warm + tolerance);
  });
}

}  // namespace
