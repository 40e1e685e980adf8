// What a page's scripts ask, and how the user gets rid of it.

#include <gtest/gtest.h>

#include "Tests/GTK/Host.h"
#include "Tests/Support/AttackPages.h"

namespace {

constexpr const char* stop = "Show No More Messages";

/// The dialog that shows `text`, once there is one.
GtkWidget* waitForDialog(const Host& host, const char* text) {
  EXPECT_TRUE(host.sees(text)) << text;
  GtkWidget* widget = host.find(text);
  while (widget != nullptr && gtk_accessible_get_accessible_role(GTK_ACCESSIBLE(widget)) !=
                                  GTK_ACCESSIBLE_ROLE_ALERT_DIALOG) {
    widget = gtk_widget_get_parent(widget);
  }
  EXPECT_NE(widget, nullptr) << text;
  return widget;
}

bool isInsideWindow(const Host& host, GtkWidget* widget) {
  graphene_rect_t place{};
  graphene_rect_t whole{};
  auto* const window = GTK_WIDGET(host.window);
  return gtk_widget_compute_bounds(widget, window, &place) != FALSE &&
         gtk_widget_compute_bounds(window, window, &whole) != FALSE &&
         graphene_rect_contains_rect(&whole, &place) && place.size.height > 0;
}

TEST(Dialog, StaysInTheWindowUnderTheHostsName) {
  browse(serveAttackPages, [](Host& host, const RawServer& server) {
    for (const char* path : {"/dialog-title.html", "/dialog-large.html"}) {
      SCOPED_TRACE(path);
      host.visit(server.url(path), "#try");
      GtkWidget* const dialog = waitForDialog(host, "OK");
      auto* const title = GTK_LABEL(gtk_widget_get_first_child(dialog));
      EXPECT_STREQ(gtk_label_get_text(title), "127.0.0.1");
      EXPECT_TRUE(gtk_test_accessible_has_relation(GTK_ACCESSIBLE(dialog),
                                                   GTK_ACCESSIBLE_RELATION_LABELLED_BY));
      host.click(GTK_WIDGET(title));  // after it has its place
      for (GtkWidget* widget : {dialog, GTK_WIDGET(title), host.find("OK")}) {
        EXPECT_TRUE(isInsideWindow(host, widget));
      }
      EXPECT_EQ(g_list_model_get_n_items(gtk_window_get_toplevels()), 1U);
      EXPECT_FALSE(isSensitive(GTK_WIDGET(host.webView())));
      host.close();
    }
  });
}

TEST(Dialog, IsAnsweredByKeyboard) {
  const auto questions = pages(
      "<p onclick='answers = [alert(1), confirm(2)]'>first</p>"
      "<b onclick='answers = [prompt(3, \"old\"), confirm(4)]'>second</b>"
      "<script>answers = \"\"</script>");
  const std::pair<const char*, const char*> keys[] = {
      {"Return", "1"}, {"Return", "2"}, {"n e w Return", "3"}, {"Tab shift+Tab Escape", "4"}};
  browse(questions, [&](Host& host, const RawServer& server) {
    host.visit(server.url());
    for (const auto& [key, message] : keys) {
      if (*message == '3') {
        ASSERT_TRUE(waitFor([&] { return host.evaluate("answers") == ",true"; }));
        host.clickElement("b");
      }
      waitForDialog(host, message);
      EXPECT_EQ(host.find(stop) != nullptr, *message == '2' || *message == '4');
      pressKeys(key);
    }
    EXPECT_TRUE(waitFor([&] { return host.evaluate("answers") == "new,false"; }));
  });
}

TEST(Dialog, ComesInARowOnlyUntilTheUserStopsIt) {
  browse(serveAttackPages, [](Host& host, const RawServer& server) {
    host.visit(server.url("/dialog-flood.html"), "#try");
    waitForDialog(host, "1");
    EXPECT_EQ(host.find(stop), nullptr);
    host.click("OK");
    waitForDialog(host, "2");
    host.click(stop);
    EXPECT_TRUE(waitFor([&] { return host.evaluate("count") == "100"; }));
    // What the user does next is in no row; and a page that crashes takes its dialog along.
    host.clickElement("#try");
    waitForDialog(host, "1");
    webkit_web_view_terminate_web_process(host.webView());
    EXPECT_TRUE(host.sees("The page has stopped working"));
    EXPECT_EQ(host.find("1"), nullptr);
  });
}

TEST(Dialog, AsksInOurOwnWordsBeforeAPageIsLeft) {
  browse(serveAttackPages, [](Host& host, const RawServer& server) {
    host.visit(server.url("/dialog-leave.html"), "#try");
    ASSERT_TRUE(waitFor([&] { return host.evaluate("document.activeElement.id") == "try"; }));
    pressKeys("a");
    const auto hasText = [&](const char* text) {
      return waitFor(
          [&] { return host.evaluate("document.querySelector('input').value") == text; });
    };
    ASSERT_TRUE(hasText("a"));
    pressKeys("F5");
    waitForDialog(host, "Leave this page? What you have entered may be lost.");
    host.click("Stay");
    EXPECT_TRUE(hasText("a"));
    pressKeys("F5");
    host.click("Leave");
    EXPECT_TRUE(hasText(""));
  });
}

}  // namespace
