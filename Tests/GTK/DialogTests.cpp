// What a page's scripts ask, and how the user gets rid of it.

#include <gtest/gtest.h>

#include "Tests/GTK/Host.h"
#include "Tests/Support/AttackPages.h"

namespace {

constexpr const char* stop = "Show No More Messages";

/// The dialog that shows `text`, once there is one.
GtkWidget* waitForDialog(const Host& host, const char* text) {
  GtkWidget* widget = nullptr;
  EXPECT_TRUE(waitFor([&] { return (widget = host.find(text)) != nullptr; })) << text;
  while (widget != nullptr && gtk_accessible_get_accessible_role(GTK_ACCESSIBLE(widget)) !=
                                  GTK_ACCESSIBLE_ROLE_ALERT_DIALOG) {
    widget = gtk_widget_get_parent(widget);
  }
  EXPECT_NE(widget, nullptr);
  return widget;
}

bool isInsideWindow(const Host& host, GtkWidget* widget) {
  graphene_rect_t place{};
  graphene_rect_t whole{};
  auto* const window = GTK_WIDGET(host.window());
  return gtk_widget_compute_bounds(widget, window, &place) &&
         gtk_widget_compute_bounds(window, window, &whole) &&
         graphene_rect_contains_rect(&whole, &place) && place.size.height > 0;
}

TEST(Dialog, StaysInTheWindowUnderTheHostsName) {
  Host host;
  const RawServer server(serveAttackPages);
  host.run([&] {
    for (const char* path : {"/dialog-title.html", "/dialog-large.html"}) {
      SCOPED_TRACE(path);
      host.present(server.url(path));
      host.clickElement("#try");
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
      EXPECT_FALSE(gtk_widget_is_sensitive(GTK_WIDGET(host.webView())));
      host.click("Close");
      ASSERT_TRUE(host.waitUntilClosed());
    }
  });
}

TEST(Dialog, IsAnsweredByKeyboard) {
  Host host;
  const RawServer server([](auto&) {
    return RawServer::Reply{
        RawServer::response("<p onclick='answers = [alert(1), confirm(2)]'>first</p>"
                            "<b onclick='answers = [prompt(3, \"old\"), confirm(4)]'>second</b>"
                            "<script>answers = \"\"</script>",
                            "200 OK", "Content-Type: text/html\r\n")};
  });
  const std::pair<const char*, const char*> keys[] = {
      {"Return", "1"}, {"Return", "2"}, {"n e w Return", "3"}, {"Tab shift+Tab Escape", "4"}};
  host.run([&] {
    host.present(server.url());
    host.clickElement("p");
    for (const auto& [key, message] : keys) {
      if (*message == '3') {
        ASSERT_TRUE(waitFor([&] { return host.evaluate("answers") == ",true"; }));
        host.clickElement("b");
      }
      EXPECT_NE(waitForDialog(host, message), nullptr);
      EXPECT_EQ(host.find(stop) != nullptr, *message == '2' || *message == '4');
      pressKeys(key);
    }
    EXPECT_TRUE(waitFor([&] { return host.evaluate("answers") == "new,false"; }));
  });
}

TEST(Dialog, ComesInARowOnlyUntilTheUserStopsIt) {
  Host host;
  const RawServer server(serveAttackPages);
  host.run([&] {
    host.present(server.url("/dialog-flood.html"));
    host.clickElement("#try");
    EXPECT_NE(waitForDialog(host, "1"), nullptr);
    EXPECT_EQ(host.find(stop), nullptr);
    host.click("OK");
    EXPECT_NE(waitForDialog(host, "2"), nullptr);
    host.click(stop);
    EXPECT_TRUE(waitFor([&] { return host.evaluate("count") == "100"; }));
    // What the user does next is in no row; and a page that crashes takes its dialog along.
    host.clickElement("#try");
    EXPECT_NE(waitForDialog(host, "1"), nullptr);
    webkit_web_view_terminate_web_process(host.webView());
    EXPECT_TRUE(waitFor([&] { return host.find("The page has stopped working") != nullptr; }));
    EXPECT_EQ(host.find("1"), nullptr);
  });
}

TEST(Dialog, AsksInOurOwnWordsBeforeAPageIsLeft) {
  Host host;
  const RawServer server(serveAttackPages);
  host.run([&] {
    host.present(server.url("/dialog-leave.html"));
    host.clickElement("#try");
    ASSERT_TRUE(waitFor([&] { return host.evaluate("document.activeElement.id") == "try"; }));
    pressKeys("a");
    const auto hasText = [&](const char* text) {
      return waitFor(
          [&] { return host.evaluate("document.querySelector('input').value") == text; });
    };
    ASSERT_TRUE(hasText("a"));
    pressKeys("F5");
    EXPECT_NE(waitForDialog(host, "Leave this page? What you have entered may be lost."), nullptr);
    host.click("Stay");
    EXPECT_TRUE(hasText("a"));
    pressKeys("F5");
    host.click("Leave");
    EXPECT_TRUE(hasText(""));
  });
}

}  // namespace
