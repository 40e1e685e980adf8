// The browser's own controls: its bar, its keys, and what it says of the connection.

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>

#include "Tests/GTK/Host.h"
#include "Tests/Support/RawServer.h"
#include "Tests/Support/TLSIdentity.h"

namespace {

/// Where the focus is: a control, or an element of the page.
std::string focusOf(const Host& host) {
  auto* const focus = gtk_window_get_focus(host.window);
  if (focus == nullptr) return "nowhere";
  if (WEBKIT_IS_WEB_VIEW(focus) != FALSE)
    return host.evaluate("document.activeElement.tagName").value_or("no answer");
  for (const char* control : {"Close", "127.0.0.1", "Back (Alt+Left)", "Reload (F5)"}) {
    GtkWidget* const widget = host.find(control);
    if (widget == focus || gtk_widget_is_ancestor(widget, focus) != FALSE) return control;
  }
  return G_OBJECT_TYPE_NAME(focus);
}

TEST(Controls, AreReachedByTabBothWays) {
  browse(pages("<input><a href=/second>link</a>"), [](Host& host, const RawServer& server) {
    host.visit(server.url(), "a");
    ASSERT_TRUE(waitFor([&] { return isSensitive(host.find("Back (Alt+Left)")); }));
    host.clickElement("input");
    ASSERT_TRUE(waitFor([&] { return focusOf(host) == "INPUT"; }));
    const auto walk = [&](const std::vector<std::string>& order) {
      for (const auto& place : order) {
        pressKeys("Tab");
        std::string focus;
        EXPECT_TRUE(waitFor([&] { return (focus = focusOf(host)) == place; }))
            << place << ", not " << focus;
        EXPECT_TRUE(gtk_window_get_focus_visible(host.window)) << place;
      }
    };
    pressKeys("Tab");
    ASSERT_TRUE(waitFor([&] { return focusOf(host) == "A"; }));
    walk({"Close", "127.0.0.1", "Back (Alt+Left)", "Reload (F5)", "BODY", "INPUT"});
    holdKey("shift", true);
    walk({"Reload (F5)", "Back (Alt+Left)", "127.0.0.1", "Close", "BODY", "A", "INPUT"});
    holdKey("shift", false);
  });
}

TEST(Controls, ZoomThePage) {
  browse(pages("<p>page"), [](Host& host, const RawServer& server) {
    host.visit(server.url());
    std::string least;
    for (int i = 0; i < 12; ++i) least += " ctrl+minus";
    const std::pair<std::string, double> steps[] = {
        {"ctrl+plus", 1.1},        {"ctrl+KP_Add", 1.25}, {"ctrl+minus", 1.1}, {"ctrl+0", 1},
        {"ctrl+KP_Subtract", 0.9}, {"ctrl+KP_0", 1},      {least, 0.5},        {"ctrl+plus", 0.67}};
    for (const auto& [keys, level] : steps) {
      pressKeys(keys);
      EXPECT_TRUE(waitFor([&host, wanted = level] {
        return webkit_web_view_get_zoom_level(host.webView()) == wanted;
      })) << keys;
    }
  });
}

TEST(Controls, TellWhoVouchesForThePage) {
  const auto CAFile = std::filesystem::path(g_get_home_dir()) / "authority.pem";
  const TLSIdentity authority({.isAuthority = true, .organization = "Example, Trust+ \"Ltd\""});
  std::ofstream(CAFile) << authority.certificatePEM();
  const TLSIdentity identity({.organization = "Exämple <b>Pay</b>"}, &authority);
  Host host({.CAFile = CAFile});
  const RawServer secure(pages("<p>page"), identity.serverContext());
  const RawServer plain(pages("<p>page"));
  host.run([&] {
    host.visit(secure.url());
    host.click("127.0.0.1");
    for (const char* text :
         {"Secure connection", "Exämple <b>Pay</b>", "Example, Trust+ \"Ltd\""}) {
      EXPECT_TRUE(host.sees(text)) << text;
    }
    // Escape closes what is on top, and by keys it comes again.
    pressKeys("Escape");
    ASSERT_TRUE(waitFor([&] { return host.find("Issued by") == nullptr; }));
    EXPECT_EQ(focusOf(host), "127.0.0.1");
    pressKeys("Return");
    EXPECT_TRUE(host.sees("Issued by"));
    pressKeys("Escape Escape");
    ASSERT_TRUE(host.waitUntilClosed());
    EXPECT_EQ(host.ended, 1);

    // A name in another script is shown as it is sent.
    const std::string name = "xn--bcher-kva.localhost";
    host.visit("http://" + name + ":" + std::to_string(plain.port()));
    host.click(name);
    EXPECT_TRUE(host.sees("Not encrypted"));
    EXPECT_EQ(host.find("Issued by"), nullptr);
    EXPECT_TRUE(hasLabel(gtk_widget_get_ancestor(host.find("Not secure"), GTK_TYPE_TOGGLE_BUTTON),
                         (name + ", Not secure").c_str()));
    ZLVClient::initWithMerchantServerURL(plain.url(""), "M-1", Host::callbackURL, false);
    Host::callBack();
    EXPECT_TRUE(host.waitUntilClosed());
  });
}

/// The dialog of the toolkit that is open, or null.
GtkFileChooser* openedChooser() {
  const ZLVGOwned<GList, g_list_free> windows(gtk_window_list_toplevels());
  for (const GList* each = windows.get(); each != nullptr; each = each->next) {
    if (GTK_IS_FILE_CHOOSER(each->data)) return GTK_FILE_CHOOSER(each->data);
  }
  return nullptr;
}

TEST(Controls, ChooseFilesForThePageThatAsks) {
  const auto file = std::filesystem::path(g_get_home_dir()) / "passport.txt";
  std::ofstream(file) << "Ada";
  const auto form = pages("<input type=file onchange='chosen = files[0].name'>");
  browse(form, [&](Host& host, const RawServer& server) {
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
    Host::callBack();
    EXPECT_EQ(openedChooser(), nullptr);
    EXPECT_TRUE(host.waitUntilClosed());
  });
}

}  // namespace
