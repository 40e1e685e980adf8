// The browser's own controls: its bar, its keys, and what it says of the connection.

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>

#include "Tests/GTK/Host.h"
#include "Tests/Support/RawServer.h"
#include "Tests/Support/TLSIdentity.h"

namespace {

RawServer::Reply page(const std::string& body) {
  return {RawServer::response("<!doctype html>" + body, "200 OK", "Content-Type: text/html\r\n")};
}

/// Presses keys and waits until the window and the page have done their part, which for a key that
/// the page has no use for is the window's again.
void press(const Host& host, const std::function<void()>& keys) {
  bool isSeen = false;
  GtkEventController* const watch = gtk_event_controller_key_new();
  gtk_event_controller_set_propagation_phase(watch, GTK_PHASE_CAPTURE);
  g_signal_connect_swapped(watch, "key-pressed", G_CALLBACK(+[](bool* seen) -> gboolean {
                             *seen = true;
                             return FALSE;
                           }),
                           &isSeen);
  gtk_widget_add_controller(GTK_WIDGET(host.window()), watch);
  keys();
  EXPECT_TRUE(waitFor([&] { return isSeen; }));
  gtk_widget_remove_controller(GTK_WIDGET(host.window()), watch);
  host.evaluate("0");
  while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
  }
}

/// Where the focus is: a control, or an element of the page.
std::string focusOf(const Host& host) {
  auto* const focus = gtk_window_get_focus(host.window());
  if (focus == nullptr) return "nowhere";
  if (WEBKIT_IS_WEB_VIEW(focus) != FALSE) return *host.evaluate("document.activeElement.tagName");
  for (const char* control : {"Close", "127.0.0.1", "Back (Alt+Left)", "Reload (F5)"}) {
    GtkWidget* const widget = host.find(control);
    if (widget == focus || gtk_widget_is_ancestor(widget, focus) != FALSE) return control;
  }
  return G_OBJECT_TYPE_NAME(focus);
}

TEST(Controls, AreReachedByTabBothWays) {
  Host host;
  const RawServer server([](auto&) { return page("<input><a href=/second>link</a>"); });
  host.run([&] {
    host.present(server.url());
    host.clickElement("a");
    ASSERT_TRUE(
        waitFor([&] { return gtk_widget_is_sensitive(host.find("Back (Alt+Left)")) != FALSE; }));
    host.clickElement("input");
    ASSERT_TRUE(waitFor([&] { return focusOf(host) == "INPUT"; }));
    std::vector<std::string> order{"A",           "Close", "127.0.0.1", "Back (Alt+Left)",
                                   "Reload (F5)", "BODY",  "INPUT"};
    const auto walk = [&] {
      for (const auto& place : order) {
        press(host, [] { pressKeys("Tab"); });
        EXPECT_EQ(focusOf(host), place);
      }
    };
    walk();
    order = {"Reload (F5)", "Back (Alt+Left)", "127.0.0.1", "Close", "BODY", "A", "INPUT"};
    press(host, [] { holdKey("shift", true); });
    walk();
    holdKey("shift", false);
  });
}

TEST(Controls, ZoomThePage) {
  Host host;
  const RawServer server([](auto&) { return page("<p>page"); });
  host.run([&] {
    host.present(server.url());
    host.clickElement("p");
    const std::pair<const char*, double> steps[] = {{"ctrl+plus", 1.1},       {"ctrl+KP_Add", 1.25},
                                                    {"ctrl+minus", 1.1},      {"ctrl+0", 1},
                                                    {"ctrl+KP_Subtract", .9}, {"ctrl+KP_0", 1}};
    for (const auto& [keys, level] : steps) {
      pressKeys(keys);
      const auto isThere = [&host, wanted = level] {
        return webkit_web_view_get_zoom_level(host.webView()) == wanted;
      };
      EXPECT_TRUE(waitFor(isThere)) << keys;
    }
    for (int i = 0; i < 12; ++i) pressKeys("ctrl+minus");
    EXPECT_TRUE(waitFor([&] { return webkit_web_view_get_zoom_level(host.webView()) == 0.5; }));
    pressKeys("ctrl+plus");
    EXPECT_TRUE(waitFor([&] { return webkit_web_view_get_zoom_level(host.webView()) == 0.67; }));
  });
}

TEST(Controls, TellWhoVouchesForThePage) {
  const auto CAFile = std::filesystem::path(g_get_home_dir()) / "authority.pem";
  const TLSIdentity authority({.isAuthority = true, .organization = "Example, Trust+ \"Ltd\""});
  std::ofstream(CAFile) << authority.certificatePEM();
  const TLSIdentity identity({.validToDays = 90, .organization = "Exämple <b>Pay</b>"}, &authority);
  Host host({.CAFile = CAFile});
  const RawServer secure([](auto&) { return page("<p>page"); }, identity.serverContext());
  const RawServer plain([](auto&) { return page("<p>page"); });
  const auto certificate = ZLVGObject<GTlsCertificate>::take(
      g_tls_certificate_new_from_pem(identity.certificatePEM().c_str(), -1, nullptr));
  const ZLVGOwned<GDateTime, g_date_time_unref> end(
      g_tls_certificate_get_not_valid_after(certificate.get()));
  const ZLVGText lastDay(g_date_time_format(end.get(), "%x"));
  int ended = 0;
  host.run([&] {
    host.present(secure.url(), &ended);
    host.clickElement("p");
    host.click("127.0.0.1");
    for (const char* text : {"Secure connection", "Exämple <b>Pay</b>", "Example, Trust+ \"Ltd\"",
                             static_cast<const char*>(lastDay.get())}) {
      EXPECT_TRUE(waitFor([&] { return host.find(text) != nullptr; })) << text;
    }
    // Escape closes what is on top, and by keys it comes again.
    pressKeys("Escape");
    ASSERT_TRUE(waitFor([&] { return host.find("Issued by") == nullptr; }));
    EXPECT_EQ(focusOf(host), "127.0.0.1");
    pressKeys("Return");
    EXPECT_TRUE(waitFor([&] { return host.find("Issued by") != nullptr; }));
    pressKeys("Escape Escape");
    ASSERT_TRUE(host.waitUntilClosed());
    EXPECT_EQ(ended, 1);

    host.present(plain.url());
    host.clickElement("p");
    host.click("127.0.0.1");
    EXPECT_TRUE(waitFor([&] { return host.find("Not encrypted") != nullptr; }));
    EXPECT_EQ(host.find("Issued by"), nullptr);
    const ZLVGText mismatch(gtk_test_accessible_check_property(
        GTK_ACCESSIBLE(gtk_widget_get_ancestor(host.find("Not secure"), GTK_TYPE_TOGGLE_BUTTON)),
        GTK_ACCESSIBLE_PROPERTY_LABEL, "127.0.0.1, Not secure", nullptr));
    EXPECT_EQ(mismatch, nullptr) << mismatch.get();
    ZLVClient::initWithMerchantServerURL(plain.url(""), "M-1", Host::callbackURL, false);
    ZLVClient::handleCallbackUrl(*ZLVURL::URLWithString(Host::callbackURL));
    EXPECT_TRUE(host.waitUntilClosed());
  });
}

TEST(Controls, ShowNamesInOtherScriptsAsTheyAreSent) {
  Host host;
  const RawServer server([](auto&) { return page("<p>page"); });
  host.run([&] {
    host.present("http://xn--bcher-kva.localhost" + server.url().substr(server.url().rfind(':')));
    host.clickElement("p");
    EXPECT_NE(host.find("xn--bcher-kva.localhost"), nullptr);
  });
}

/// The dialog of the toolkit that is open, or null.
GtkFileChooser* openedChooser() {
  GListModel* const windows = gtk_window_get_toplevels();
  for (guint i = 0; i < g_list_model_get_n_items(windows); ++i) {
    const auto window =
        ZLVGObject<GObject>::take(static_cast<GObject*>(g_list_model_get_item(windows, i)));
    if (GTK_IS_FILE_CHOOSER(window.get())) return GTK_FILE_CHOOSER(window.get());
  }
  return nullptr;
}

TEST(Controls, ChooseFilesForThePageThatAsks) {
  Host host;
  const RawServer server(
      [](auto&) { return page("<input type=file onchange='chosen = files[0].name'>"); });
  const auto file = std::filesystem::path(g_get_home_dir()) / "passport.txt";
  std::ofstream(file) << "Ada";
  host.run([&] {
    ZLVClient::initWithMerchantServerURL(server.url(""), "M-1", Host::callbackURL, false);
    host.present(server.url());
    const auto ask = [&] {
      host.clickElement("input");
      EXPECT_TRUE(waitFor([] { return openedChooser() != nullptr; }));
    };
    ask();
    const auto chosen = ZLVGObject<GFile>::take(g_file_new_for_path(file.c_str()));
    gtk_file_chooser_set_file(openedChooser(), chosen.get(), nullptr);
    ASSERT_TRUE(waitFor([] {
      const auto files = ZLVGObject<GListModel>::take(gtk_file_chooser_get_files(openedChooser()));
      return g_list_model_get_n_items(files.get()) == 1;
    }));
    gtk_dialog_response(GTK_DIALOG(openedChooser()), GTK_RESPONSE_ACCEPT);
    EXPECT_TRUE(waitFor([&] { return host.evaluate("chosen") == "passport.txt"; }));
    EXPECT_EQ(openedChooser(), nullptr);

    ask();
    gtk_dialog_response(GTK_DIALOG(openedChooser()), GTK_RESPONSE_CANCEL);
    EXPECT_TRUE(waitFor([] { return openedChooser() == nullptr; }));
    // It goes with the page that asked, and with the browser.
    ask();
    host.evaluate("location = '/second'");
    EXPECT_TRUE(waitFor([] { return openedChooser() == nullptr; }));
    ask();
    ZLVClient::handleCallbackUrl(*ZLVURL::URLWithString(Host::callbackURL));
    EXPECT_EQ(openedChooser(), nullptr);
    EXPECT_TRUE(host.waitUntilClosed());
  });
}

}  // namespace
