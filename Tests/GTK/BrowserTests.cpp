// What a person sees and does in the browser.

#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>

#include "Tests/GTK/Host.h"
#include "Tests/Support/RawServer.h"
#include "Tests/Support/TLSIdentity.h"

namespace {

const std::string html = "Content-Type: text/html\r\n";

RawServer::Reply page(const std::string& body) {
  return {RawServer::response("<!doctype html>" + body, "200 OK", html)};
}

bool isSensitive(GtkWidget* widget) { return gtk_widget_is_sensitive(widget) != FALSE; }

bool hasFocusInside(const Host& host, const GtkWidget* place) {
  auto* widget = gtk_window_get_focus(host.window());
  while (widget != nullptr && widget != place) widget = gtk_widget_get_parent(widget);
  return widget != nullptr;
}

TEST(Browser, CoversTheWindowAndGivesItBackAsItWas) {
  Host host;
  const RawServer server(
      [](auto&) { return page("<input id=input onclick='clicked = true'><a href=/>link</a>"); });
  host.run([&] {
    GtkWidget* const content = gtk_window_get_child(host.window());
    gtk_widget_grab_focus(host.entry());
    pressKeys("a");
    ASSERT_TRUE(waitFor(
        [&] { return gtk_editable_get_text(GTK_EDITABLE(host.entry())) == std::string("a"); }));

    host.present(server.url());
    host.clickElement("input");
    ASSERT_TRUE(waitFor([&] { return host.evaluate("clicked") == "true"; }));
    // Neither clicks nor keys nor the way round by Tab reach the host's widgets.
    pressKeys("b Return");
    ASSERT_TRUE(waitFor([&] { return host.evaluate("input.value") == "b"; }));
    host.click(host.titlebarButton());
    host.click(GTK_WIDGET(host.window()));
    GtkWidget* const browser = gtk_widget_get_parent(host.find("127.0.0.1"));
    ASSERT_NE(browser, nullptr);
    for (const char* keys : {"Tab", "shift+Tab"}) {
      for (int i = 0; i < 12; ++i) {
        pressKeys(keys);
        host.evaluate("0");
        EXPECT_FALSE(hasFocusInside(host, content));
        EXPECT_FALSE(hasFocusInside(host, host.titlebarButton()));
      }
    }
    EXPECT_EQ(host.clicks(), 0);

    pressKeys("Escape");
    ASSERT_TRUE(host.waitUntilClosed());
    EXPECT_EQ(gtk_window_get_child(host.window()), content);
    EXPECT_EQ(gtk_window_get_default_widget(host.window()), host.payButton());
    EXPECT_TRUE(hasFocusInside(host, host.entry()));
    pressKeys("c");
    EXPECT_TRUE(waitFor(
        [&] { return gtk_editable_get_text(GTK_EDITABLE(host.entry())) == std::string("ac"); }));
    host.click(host.titlebarButton());
    host.click(host.payButton());
    EXPECT_TRUE(waitFor([&] { return host.clicks() == 2; }));
  });
}

TEST(Browser, GoesBackAndReloadsButNeverSendsAFormAgain) {
  Host host;
  const RawServer server([](auto& request) {
    const bool isForm = request.starts_with("GET /first");
    return page(isForm ? "<form method=post action=/paid><button>Pay</button></form>" : "<p>paid");
  });
  const auto count = [&](const std::string& start) {
    int found = 0;
    for (const auto& request : server.requests()) found += request.starts_with(start) ? 1 : 0;
    return found;
  };
  host.run([&] {
    host.present(server.url("/first"));
    host.clickElement("button");
    ASSERT_TRUE(waitFor([&] { return isSensitive(host.find("Back (Alt+Left)")); }));
    host.click("Reload (F5)");
    ASSERT_TRUE(waitFor([&] { return count("GET /paid") == 1; }));
    host.click("Back (Alt+Left)");
    host.clickElement("button");
    ASSERT_TRUE(waitFor([&] { return count("POST /paid") == 2; }));
    host.clickElement("p");
    pressKeys("alt+Left");
    host.clickElement("form");
    EXPECT_EQ(count("POST /paid"), 2);
  });
}

TEST(Browser, SpeaksTheUsersLanguageFromRightToLeft) {
  g_setenv("LANGUAGE", "ar", TRUE);
  Host host;
  const RawServer server([](auto&) { return page("<p>page"); });
  host.run([&] {
    host.present(server.url());
    ASSERT_TRUE(waitFor([&] { return host.find("غير آمن") != nullptr; }));
    host.click("إغلاق");
    EXPECT_TRUE(host.waitUntilClosed());
  });
}

TEST(Browser, TellsWhatItsWidgetsAre) {
  Host host;
  const RawServer server([](auto&) { return page("<p>page"); });
  host.run([&] {
    host.present(server.url());
    const std::pair<const char*, const char*> labels[] = {{"Back (Alt+Left)", "Back"},
                                                          {"Reload (F5)", "Reload"}};
    for (const auto& [text, label] : labels) {
      const ZLVGText mismatch(gtk_test_accessible_check_property(
          GTK_ACCESSIBLE(host.find(text)), GTK_ACCESSIBLE_PROPERTY_LABEL, label, nullptr));
      EXPECT_EQ(mismatch, nullptr) << mismatch.get();
    }
  });
}

TEST(Browser, ShowsWhatIsWrongAndTriesAgain) {
  Host host;
  int port = 0;
  {
    const SilentListener free;
    port = free.port();
  }
  host.run([&] {
    const RawServer server([](auto& request) {
      if (!request.starts_with("GET /login")) return page("<p>page</p><a href=/login>log in</a>");
      return RawServer::Reply{
          RawServer::response("", "401 Unauthorized", "WWW-Authenticate: Basic realm=page\r\n")};
    });
    host.present("http://127.0.0.1:" + std::to_string(port) + "/");
    ASSERT_TRUE(waitFor([&] { return host.find("The page cannot be shown") != nullptr; }));
    EXPECT_TRUE(hasFocusInside(host, gtk_widget_get_parent(host.find("Try Again"))));
    host.click("Close");
    ASSERT_TRUE(host.waitUntilClosed());
    host.present("http://127.0.0.1:1/");  // the engine refuses this port without a word
    ASSERT_TRUE(waitFor([&] { return host.find("This address cannot be shown") != nullptr; }));
    host.click("Close");
    ASSERT_TRUE(host.waitUntilClosed());

    host.present(server.url());
    host.clickElement("a");
    ASSERT_TRUE(waitFor([&] { return host.find("The page asks for a login") != nullptr; }));
    host.click("Back (Alt+Left)");
    host.clickElement("p");
    webkit_web_view_terminate_web_process(host.webView());
    ASSERT_TRUE(waitFor([&] { return host.find("The page has stopped working") != nullptr; }));
    EXPECT_EQ(host.webView(), nullptr);
    host.click("Reload");
    host.clickElement("p");
  });
}

TEST(Browser, TellsThatNoApplicationOpensTheLink) {
  Host host;
  const std::string link = std::string(Host::unclaimedScheme) + "://x";
  const RawServer server([&](auto& request) {
    if (request.starts_with("GET /redirect")) {
      return RawServer::Reply{RawServer::redirect(302, link)};
    }
    return page("<a href=" + link + ">link</a>");
  });
  host.run([&] {
    host.present(server.url("/redirect"));
    ASSERT_TRUE(waitFor([&] { return host.find("No app opens this link") != nullptr; }));
    EXPECT_EQ(host.webView(), nullptr);
    host.click("Close");
    ASSERT_TRUE(host.waitUntilClosed());

    host.present(server.url());
    host.clickElement("a");
    ASSERT_TRUE(waitFor([&] { return host.find("No app opens this link") != nullptr; }));
    EXPECT_NE(host.webView(), nullptr);
    GtkWidget* const notice = gtk_widget_get_parent(host.find("No app opens this link"));
    EXPECT_EQ(gtk_accessible_get_accessible_role(GTK_ACCESSIBLE(notice)),
              GTK_ACCESSIBLE_ROLE_ALERT);
    const ZLVGText mismatch(gtk_test_accessible_check_property(
        GTK_ACCESSIBLE(notice), GTK_ACCESSIBLE_PROPERTY_LABEL, "No app opens this link", nullptr));
    EXPECT_EQ(mismatch, nullptr) << mismatch.get();
    host.click("Dismiss");
    EXPECT_TRUE(waitFor([&] { return host.find("No app opens this link") == nullptr; }));
    EXPECT_TRUE(hasFocusInside(host, GTK_WIDGET(host.webView())));
  });
}

TEST(Browser, TellsAProxysLoginFromAPages) {
  const RawServer proxy([](auto&) {
    return RawServer::Reply{RawServer::response("", "407 Proxy Authentication Required",
                                                "Proxy-Authenticate: Basic realm=proxy\r\n")};
  });
  g_setenv("http_proxy", proxy.url().c_str(), TRUE);
  g_unsetenv("no_proxy");
  Host host;
  host.run([&] {
    host.present("http://wallet.example/");
    ASSERT_TRUE(waitFor([&] { return host.find("Your network asks for a login") != nullptr; }));
    EXPECT_EQ(host.find("wallet.example"), nullptr);
    host.click("Try Again");
    EXPECT_TRUE(waitFor([&] { return proxy.requests().size() == 2; }));
  });
}

TEST(Browser, RefusesCertificatesThatDoNotHold) {
  const auto directory = std::filesystem::temp_directory_path();
  const auto CAFile = std::filesystem::path(g_get_home_dir()) / "authority.pem";
  const TLSIdentity authority({.isAuthority = true});
  std::ofstream(CAFile) << authority.certificatePEM();
  Host host({.CAFile = CAFile});
  struct Case {
    TLSIdentity identity;
    std::string text;
  };
  const std::string place = "\u2066127.0.0.1\u2069";
  const Case refused[] = {
      {TLSIdentity({}),
       "The certificate of " + place + " comes from nobody that this device trusts."},
      {TLSIdentity({.validFromDays = -2, .validToDays = -1}, &authority), ""},
      {TLSIdentity({.address = "127.0.0.2"}, &authority),
       "The server shows a certificate that is not for " + place + "."},
  };
  host.run([&] {
    for (const auto& item : refused) {
      const RawServer server([](auto&) { return page("<p>page"); }, item.identity.serverContext());
      host.present(server.url());
      ASSERT_TRUE(waitFor([&] { return host.find("This page is not safe") != nullptr; }));
      EXPECT_TRUE(item.text.empty() || host.find(item.text) != nullptr) << item.text;
      EXPECT_NE(host.find("Not secure"), nullptr);
      EXPECT_EQ(host.find("Secure connection"), nullptr);
      EXPECT_FALSE(isSensitive(host.find("Reload (F5)")));
      EXPECT_EQ(host.find("Try Again"), nullptr);
      EXPECT_TRUE(server.requests().empty());
      host.click("Close");
      ASSERT_TRUE(host.waitUntilClosed());
    }
    const TLSIdentity good({}, &authority);
    const RawServer server([](auto&) { return page("<p>page"); }, good.serverContext());
    host.present(server.url());
    EXPECT_TRUE(waitFor([&] { return host.find("Secure connection") != nullptr; }));
    EXPECT_EQ(host.find("Not secure"), nullptr);
  });
}

/// The files below the home, the caches and the data folders that hold `text` or are named so.
std::vector<std::string> tracesOf(const std::string& text) {
  std::vector<std::string> traces;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(g_get_home_dir())) {
    const auto path = entry.path().string();
    std::stringstream content;
    if (entry.is_regular_file()) content << std::ifstream(path).rdbuf();
    if (path.find(text) != std::string::npos || content.str().find(text) != std::string::npos) {
      traces.push_back(path);
    }
  }
  return traces;
}

TEST(Browser, ForgetsEverything) {
  Host host;
  const std::string mark = "unforgettable";
  const RawServer server([&](auto& request) {
    if (request.starts_with("GET /stored")) return page("<p>stored");
    return RawServer::Reply{RawServer::response(
        "<!doctype html><p>page<script>"
        "localStorage.setItem('" +
            mark +
            "', 1);"
            "const open = indexedDB.open('" +
            mark +
            "');"
            "open.onupgradeneeded = () => open.result.createObjectStore('" +
            mark +
            "').put(1, 1);"
            "open.onsuccess = () => location = '/stored';"
            "</script>",
        "200 OK",
        html + "Set-Cookie: " + mark + "=1; Max-Age=100000\r\nCache-Control: max-age=100000\r\n")};
  });
  host.run([&] {
    for (std::size_t visit = 1; visit <= 2; ++visit) {
      host.present(server.url("/" + mark));
      ASSERT_TRUE(waitFor([&] { return server.requests().size() == 2 * visit; }));
      const auto requests = server.requests();
      EXPECT_EQ(requests[2 * visit - 2].find(mark + "=1"), std::string::npos);
      EXPECT_NE(requests[2 * visit - 1].find(mark + "=1"), std::string::npos);
      pressKeys("Escape");
      ASSERT_TRUE(host.waitUntilClosed());
    }
  });
  EXPECT_EQ(tracesOf(mark), std::vector<std::string>{});
}

}  // namespace
