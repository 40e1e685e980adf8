// What a person sees and does in the browser.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>

#include "Tests/GTK/Host.h"
#include "Tests/Support/RawServer.h"
#include "Tests/Support/TLSIdentity.h"

namespace {

TEST(Browser, CoversTheWindowAndGivesItBackAsItWas) {
  const auto field = pages("<input id=input onclick='clicked = true'><a href=/>link</a>");
  browse(field, [](Host& host, const RawServer& server) {
    GtkWidget* const content = gtk_window_get_child(host.window);
    gtk_widget_grab_focus(host.entry);
    const auto hasText = [&](const char* text) {
      return waitFor(
          [&] { return gtk_editable_get_text(GTK_EDITABLE(host.entry)) == std::string(text); });
    };
    pressKeys("a");
    ASSERT_TRUE(hasText("a"));

    host.visit(server.url(), "input");
    ASSERT_TRUE(waitFor([&] { return host.evaluate("clicked") == "true"; }));
    // Neither clicks nor keys nor the way round by Tab reach the host's widgets.
    pressKeys("b Return");
    ASSERT_TRUE(waitFor([&] { return host.evaluate("input.value") == "b"; }));
    host.click(host.titlebarButton);
    host.click(GTK_WIDGET(host.window));
    GtkWidget* const browser = gtk_widget_get_parent(host.find("127.0.0.1"));
    ASSERT_NE(browser, nullptr);
    for (const char* keys : {"Tab", "shift+Tab"}) {
      for (int i = 0; i < 12; ++i) {
        pressKeys(keys);
        host.evaluate("0");
        EXPECT_FALSE(host.hasFocusInside(content));
        EXPECT_FALSE(host.hasFocusInside(host.titlebarButton));
      }
    }
    EXPECT_EQ(host.clicks, 0);

    host.close();
    pressKeys("c");
    EXPECT_TRUE(hasText("ac"));
    host.click(host.titlebarButton);
    host.click(host.payButton);
    EXPECT_TRUE(waitFor([&] { return host.clicks == 2; }));
  });
}

TEST(Browser, GoesBackAndReloadsButNeverSendsAFormAgain) {
  Host host;
  const RawServer server([](auto& request) {
    const bool isForm = request.starts_with("GET /first");
    return page(isForm ? "<form method=post action=/paid><button>Pay</button></form>" : "<p>paid");
  });
  const auto count = [&](const std::string& start) {
    return std::ranges::count_if(server.requests(),
                                 [&](const auto& request) { return request.starts_with(start); });
  };
  host.run([&] {
    host.visit(server.url("/first"), "button");
    ASSERT_TRUE(waitFor([&] { return isSensitive(host.find("Back (Alt+Left)")); }));
    EXPECT_TRUE(hasLabel(host.find("Back (Alt+Left)"), "Back"));
    EXPECT_TRUE(hasLabel(host.find("Reload (F5)"), "Reload"));
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
  browse(pages("<p>page"), [](Host& host, const RawServer& server) {
    host.present(server.url());
    ASSERT_TRUE(host.sees("غير آمن"));
    host.click("إغلاق");
    EXPECT_TRUE(host.waitUntilClosed());
  });
}

TEST(Browser, ShowsWhatIsWrongAndTriesAgain) {
  const auto login = [](auto& request) {
    if (request.starts_with("GET /stopped")) {
      return page(R"js(<p>page</p><script>for (let i = 0; i < 20; ++i) {
                     document.write('<img src=/login?' + i + ' onerror="stopped = !window.stop()">');
                  }</script>)js");
    }
    if (!request.starts_with("GET /login")) return page("<p>page</p><a href=/login>log in</a>");
    return RawServer::Reply{
        RawServer::response("", "401 Unauthorized", "WWW-Authenticate: Basic realm=page\r\n")};
  };
  browse(login, [](Host& host, const RawServer& server) {
    const auto closedPort = std::to_string(SilentListener().port());
    host.present("http://127.0.0.1:" + closedPort + "/");
    ASSERT_TRUE(host.sees("The page cannot be shown"));
    EXPECT_TRUE(host.hasFocusInside(gtk_widget_get_parent(host.find("Try Again"))));
    host.close();
    // What an image has asked for says nothing of the page, which has ended its own load.
    host.present(server.url("/stopped"));
    ASSERT_TRUE(waitFor([&] { return host.evaluate("stopped") == "true"; }));
    host.clickElement("p");
    host.close();
    host.present("http://127.0.0.1:1/");  // the engine refuses this port without a word
    ASSERT_TRUE(host.sees("This address cannot be shown"));
    host.close();

    host.visit(server.url(), "a");
    ASSERT_TRUE(host.sees("The page asks for a login"));
    host.click("Back (Alt+Left)");
    host.clickElement("p");
    webkit_web_view_terminate_web_process(host.webView());
    ASSERT_TRUE(host.sees("The page has stopped working"));
    EXPECT_EQ(host.webView(), nullptr);
    host.click("Reload");
    host.clickElement("p");
  });
}

TEST(Browser, TellsThatNoApplicationOpensTheLink) {
  const std::string link = std::string(Host::unclaimedScheme) + "://x";
  const auto lead = [&](auto& request) {
    if (!request.starts_with("GET /redirect")) return page("<a href=" + link + ">link</a>");
    return RawServer::Reply{RawServer::redirect(302, link)};
  };
  browse(lead, [](Host& host, const RawServer& server) {
    const std::string text = "No app opens this link";
    host.present(server.url("/redirect"));
    ASSERT_TRUE(host.sees(text));
    EXPECT_EQ(host.webView(), nullptr);
    host.close();

    host.visit(server.url(), "a");
    ASSERT_TRUE(host.sees(text));
    EXPECT_NE(host.webView(), nullptr);
    GtkWidget* const notice = gtk_widget_get_parent(host.find(text));
    EXPECT_EQ(gtk_accessible_get_accessible_role(GTK_ACCESSIBLE(notice)),
              GTK_ACCESSIBLE_ROLE_ALERT);
    EXPECT_TRUE(hasLabel(notice, text.c_str()));
    host.click("Dismiss");
    EXPECT_TRUE(waitFor([&] { return host.find(text) == nullptr; }));
    EXPECT_TRUE(host.hasFocusInside(GTK_WIDGET(host.webView())));
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
    ASSERT_TRUE(host.sees("Your network asks for a login"));
    EXPECT_EQ(host.find("wallet.example"), nullptr);
    host.click("Try Again");
    EXPECT_TRUE(waitFor([&] { return proxy.requests().size() == 2; }));
  });
}

TEST(Browser, RefusesCertificatesThatDoNotHold) {
  const auto CAFile = std::filesystem::path(g_get_home_dir()) / "authority.pem";
  const TLSIdentity authority({.isAuthority = true});
  std::ofstream(CAFile) << authority.certificatePEM();
  Host host({.CAFile = CAFile});
  const std::string place = "\u2066127.0.0.1\u2069";
  const std::pair<TLSIdentity, std::string> refused[] = {
      {TLSIdentity({}),
       "The certificate of " + place + " comes from nobody that this device trusts."},
      {TLSIdentity({.validFromDays = -2, .validToDays = -1}, &authority), "This page is not safe"},
      {TLSIdentity({.address = "127.0.0.2"}, &authority),
       "The server shows a certificate that is not for " + place + "."},
  };
  host.run([&] {
    for (const auto& [identity, text] : refused) {
      const RawServer server(pages("<p>page"), identity.serverContext());
      host.present(server.url());
      ASSERT_TRUE(host.sees("This page is not safe"));
      EXPECT_NE(host.find(text), nullptr) << text;
      EXPECT_NE(host.find("Not secure"), nullptr);
      EXPECT_EQ(host.find("Secure connection"), nullptr);
      EXPECT_FALSE(isSensitive(host.find("Reload (F5)")));
      EXPECT_EQ(host.find("Try Again"), nullptr);
      EXPECT_TRUE(server.requests().empty());
      host.close();
    }
    // One that would like a certificate of the user's goes on without it.
    const auto context = TLSIdentity({}, &authority).serverContext();
    SSL_CTX_set_verify(context.get(), SSL_VERIFY_PEER, nullptr);
    const RawServer server(pages("<p>page"), context);
    host.present(server.url());
    EXPECT_TRUE(host.sees("Secure connection"));
    EXPECT_EQ(host.find("Not secure"), nullptr);
  });
}

TEST(Browser, ForgetsEverything) {
  Host host;
  const std::string mark = "unforgettable";
  const RawServer server([&](auto& request) {
    if (request.starts_with("GET /stored")) return page("<p>stored");
    return page("<script>const mark = '" + mark + R"(';
                localStorage.setItem(mark, 1);
                const open = indexedDB.open(mark);
                open.onupgradeneeded = () => open.result.createObjectStore(mark).put(1, 1);
                open.onsuccess = () => location = '/stored';</script>)",
                "Set-Cookie: " + mark + "=1; Max-Age=100000\r\nCache-Control: max-age=100000\r\n");
  });
  host.run([&] {
    for (std::size_t visit = 1; visit <= 2; ++visit) {
      host.present(server.url("/" + mark));
      ASSERT_TRUE(waitFor([&] { return server.requests().size() == 2 * visit; }));
      const auto requests = server.requests();
      EXPECT_EQ(requests[2 * visit - 2].find(mark + "=1"), std::string::npos);
      EXPECT_NE(requests[2 * visit - 1].find(mark + "=1"), std::string::npos);
      host.close();
    }
  });
  // Neither in a file nor in a name below the home, where the caches are, too.
  const auto search = "cd \"$HOME\" && ! { grep -r " + mark + " . || find . | grep " + mark + "; }";
  EXPECT_EQ(std::system(search.c_str()), 0);
}

}  // namespace
