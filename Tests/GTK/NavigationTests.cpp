// Where a page can lead: what stays in the view, what goes to another application, what nowhere.

#include <map>

#include <gtest/gtest.h>

#include "Tests/GTK/Host.h"
#include "Tests/Support/AttackPages.h"

namespace {

constexpr const char* control = "app://control";

/// What the browser says where a page is not all that one sees.
const std::map<std::string, const char*> words = {
    {"notice", "This file cannot be opened here"}, {"offer", "The page wants to open another app"},
    {"other app", "Continue in the other app"},    {"address", "This address cannot be shown"},
    {"empty", "There is nothing to show"},         {"end", "This file cannot be opened here"},
    {"file", "This file cannot be opened here"},   {"login", "The page asks for a login"},
};

void expectSeen(const Host& host, const std::string& shown) {
  EXPECT_TRUE(shown == "page" || host.sees(words.at(shown))) << shown;
}

/// What was opened after the first so many.
std::vector<std::string> openedSince(const Host& host, std::size_t seen) {
  return {host.openedURLs.begin() + static_cast<std::ptrdiff_t>(seen), host.openedURLs.end()};
}

/// In a browser of its own.
void playFirst(Host& host, const std::string& url, const AttackPage& attack) {
  const auto seen = host.openedURLs.size();
  host.present(url);
  expectSeen(host, attack.shown);
  EXPECT_EQ(host.webView() != nullptr, attack.shown == "end");
  EXPECT_EQ(openedSince(host, seen), attack.opened);
  host.close();
}

void playPage(const Host& host, const std::string& url, const AttackPage& attack) {
  host.evaluate("location = '" + url + "'");
  ASSERT_TRUE(waitFor(
      [&] { return host.evaluate("document.readyState + location.href") == "complete" + url; }));
  const auto seen = host.openedURLs.size();
  const auto settled = [&] {
    return webkit_web_view_is_loading(host.webView()) == FALSE &&
           host.evaluate("window.tried !== false") == "true";
  };
  for (const char* element : {"#first", "#try"}) {
    if (host.hasElement(element)) host.clickElement(element);
  }
  EXPECT_TRUE(waitFor(settled));
  EXPECT_TRUE(waitFor([&] { return host.openedURLs.size() >= seen + attack.opened.size(); }));
  expectSeen(host, attack.shown);
  host.clickElement("#control");
  ASSERT_TRUE(
      waitFor([&] { return host.openedURLs.size() > seen && host.openedURLs.back() == control; }));
  auto opened = attack.opened;
  opened.emplace_back(control);
  EXPECT_EQ(openedSince(host, seen), opened);
  EXPECT_EQ(host.evaluate("location.href"), url);
  EXPECT_EQ(g_list_model_get_n_items(gtk_window_get_toplevels()), 1U);
}

TEST(Navigation, WithstandsAttackPages) {
  const auto attacks = attackPages();
  ASSERT_FALSE(attacks.empty());
  browse(serveAttackPages, [&](Host& host, const RawServer& server) {
    const auto isFirst = [](const AttackPage& attack) {
      return attack.path.ends_with(".http") || attack.shown == "end";
    };
    for (const auto& attack : attacks) {
      SCOPED_TRACE(attack.path);
      if (isFirst(attack)) playFirst(host, server.url(attack.path), attack);
    }
    host.visit(server.url("/link.html?first"), "#control");
    ASSERT_TRUE(waitFor([&] { return host.openedURLs.back() == control; }));
    for (const auto& attack : attacks) {
      SCOPED_TRACE(attack.path);
      if (isFirst(attack) || attack.shown == "dialog") continue;
      playPage(host, server.url(attack.path), attack);
    }
  });
}

TEST(Navigation, OpensAnotherApplicationAfterAKeyOrWhenTheUserAgrees) {
  browse(serveAttackPages, [](Host& host, const RawServer& server) {
    // The engine gives back a key that the page has no use for; it is not a second one.
    host.present(server.url("/script-key.html"));
    ASSERT_TRUE(waitFor([&] { return host.hasElement("#control"); }));
    pressKeys("x");
    ASSERT_TRUE(waitFor(
        [&] { return openedSince(host, 0) == std::vector<std::string>{"app://redirected"}; }));
    host.close();

    // A page that nobody has touched may have waited for what the user does elsewhere.
    host.present(server.url("/flood.html"));
    host.click("Open");
    ASSERT_TRUE(waitFor([&] { return host.openedURLs.size() == 2; }));
    EXPECT_TRUE(waitFor([&] { return host.evaluate("tried") == "true"; }));
    EXPECT_EQ(host.openedURLs.size(), 2U);
  });
}

TEST(Navigation, OpensNewWindowsInTheSameView) {
  const auto windows = [](const std::string& request) {
    return page(
        request.find(" /popup ") != std::string::npos
            ? "<p id=popup>popup</p>"
            : "<a id=link target=_blank href=/popup>link</a>"
              "<p id=script onclick='window.open(\"/popup\")'>script</p>"
              "<script>window.open('/popup')</script>"
              "<form method=post action=/popup target=_blank><input type=hidden name=a value=b>"
              "<button>form</button></form>");
  };
  browse(windows, [](Host& host, const RawServer& server) {
    for (const char* element : {"#link", "#script", "button"}) {
      SCOPED_TRACE(element);
      host.visit(server.url(), element);
      host.clickElement("#popup");
      EXPECT_EQ(g_list_model_get_n_items(gtk_window_get_toplevels()), 1U);
      host.close();
    }
    EXPECT_NE(server.requests().back().find("\r\n\r\na=b"), std::string::npos);
  });
}

}  // namespace
