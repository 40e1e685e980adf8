// Browsers end in any order, and nothing of them stays behind.

#include <algorithm>
#include <iterator>

#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>

#include "Tests/GTK/Host.h"
#include "Tests/Support/RawServer.h"

namespace {

TEST(Browser, EndsWhenItWasBarelyShownOrNotAtAll) {
  Host host;
  host.run([&] {
    host.present("http://127.0.0.1:9/");
    Host::callBack();
    host.viewController()->dismissViewControllerAnimated(false);
    EXPECT_EQ(host.ended, 1);
    // Of a view controller that no window shows, the user would never get rid.
    const auto stray = std::make_shared<ZLVViewController>();
    host.present("http://127.0.0.1:9/", stray);
    EXPECT_EQ(host.ended, 1);
    EXPECT_TRUE(waitFor([&] { return host.ended == 2; }));
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

/// A window with pages over one another that never come, and a host that covers it itself.
class Covers : public testing::Test {
 protected:
  void show(std::vector<std::unique_ptr<ZLVBrowser>>& browsers) {
    browsers.push_back(ZLVPlatform::installed().userInterface->makeBrowser(
        *ZLVURL::URLWithString("http://127.0.0.1:" + std::to_string(listener_.port()))));
    browsers.back()->show(*host_.viewController(), false, [this] { ++closed_; });
  }

  void expectNothingLeft(GtkWidget* content) const {
    EXPECT_EQ(viewsIn(GTK_WIDGET(host_.window)), std::vector<GtkWidget*>{});
    EXPECT_EQ(gtk_window_get_child(host_.window), content);
    EXPECT_TRUE(isSensitive(host_.payButton));
    EXPECT_TRUE(isSensitive(host_.titlebarButton));
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
    GtkWidget* const content = gtk_window_get_child(host_.window);
    gtk_widget_grab_focus(host_.entry);
    std::vector order{0, 1, 2};
    for ([[maybe_unused]] const int first : {0, 1, 2}) {
      SCOPED_TRACE(testing::PrintToString(order));
      std::vector<std::unique_ptr<ZLVBrowser>> browsers;
      for ([[maybe_unused]] const int each : order) show(browsers);
      auto views = viewsIn(GTK_WIDGET(host_.window));
      ASSERT_EQ(views.size(), order.size());
      const auto all = views;
      for (const int ending : order) {
        settle();
        // The page on top is there to be used, and nothing else.
        EXPECT_EQ(gtk_window_get_focus(host_.window), views.back());
        for (GtkWidget* view : views) EXPECT_EQ(isSensitive(view), view == views.back());
        EXPECT_FALSE(isSensitive(host_.payButton));
        EXPECT_FALSE(isSensitive(host_.titlebarButton));
        browsers[static_cast<std::size_t>(ending)]->hide(false);
        std::erase(views, all[static_cast<std::size_t>(ending)]);
        EXPECT_EQ(viewsIn(GTK_WIDGET(host_.window)), views);
      }
      expectNothingLeft(content);
      EXPECT_EQ(gtk_window_get_default_widget(host_.window), host_.payButton);
      EXPECT_TRUE(host_.hasFocusInside(host_.entry));
      std::rotate(order.begin(), order.begin() + 1, order.end());
    }
    EXPECT_EQ(closed_, 0);
  });
}

TEST_F(Covers, EndBelowTheHostsOwn) {
  host_.run([&] {
    GtkWidget* const content = gtk_window_get_child(host_.window);
    std::vector<std::unique_ptr<ZLVBrowser>> browsers;
    show(browsers);
    const auto own = ZLVGObject<GtkWidget>::retain(gtk_overlay_new());
    const auto covered = ZLVGObject<GtkWidget>::retain(gtk_window_get_child(host_.window));
    gtk_window_set_child(host_.window, own.get());
    gtk_overlay_set_child(GTK_OVERLAY(own.get()), covered.get());
    GtkWidget* const button = gtk_button_new_with_label("own");
    gtk_overlay_add_overlay(GTK_OVERLAY(own.get()), button);
    gtk_widget_grab_focus(button);
    settle();
    EXPECT_EQ(viewsIn(own.get()).size(), 1U);
    EXPECT_EQ(closed_, 0);

    show(browsers);
    browsers.front()->hide(false);
    EXPECT_FALSE(isSensitive(host_.payButton));
    EXPECT_EQ(viewsIn(GTK_WIDGET(host_.window)).size(), 1U);
    browsers.back()->hide(false);
    expectNothingLeft(own.get());
    EXPECT_EQ(gtk_window_get_focus(host_.window), button);

    gtk_overlay_set_child(GTK_OVERLAY(own.get()), nullptr);
    gtk_window_set_child(host_.window, covered.get());
    EXPECT_TRUE(gtk_widget_get_mapped(host_.payButton));
    show(browsers);
    browsers.back()->hide(false);
    expectNothingLeft(content);
  });
}

TEST(Browser, LeavesNothingBehind) {
  int living = 0;
  const auto count = [&](gpointer object) {
    ++living;
    g_object_weak_ref(
        G_OBJECT(object), [](gpointer data, GObject*) { --*static_cast<int*>(data); }, &living);
  };
  browse(pages("<p>page"), [&](Host& host, const RawServer& server) {
    for (int visit = 1; visit <= 10; ++visit) {
      host.visit(server.url());
      count(host.webView());
      count(webkit_web_view_get_network_session(host.webView()));
      count(gtk_window_get_child(host.window));
      host.close();
      EXPECT_EQ(host.ended, visit);
      EXPECT_EQ(living, 0);
    }
  });
}

}  // namespace
