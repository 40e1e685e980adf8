// A shop with one window and one button, which links an account: the wallet's page is shown by the
// library's browser over the window. Closing the window ends the shop.
//
//     shop SERVER

#include <memory>
#include <string>

#include <gtk/gtk.h>

#include <ZolvaCheckoutKit/Platform/GTK/ZLVGTKPlatform.h>
#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

namespace {

std::string server;

void tell(GtkLabel* label, const std::string& text) {
  gtk_label_set_text(label, text.c_str());
  g_print("%s\n", text.c_str());
}

void link(GtkButton* button, gpointer label) {
  auto* window = GTK_WINDOW(gtk_widget_get_root(GTK_WIDGET(button)));
  // Answers come after the window has gone, too.
  const std::shared_ptr<GtkLabel> kept(GTK_LABEL(g_object_ref(label)), g_object_unref);
  const auto tellUser = [kept](const std::string& text) { tell(kept.get(), text); };
  gtk_widget_set_sensitive(GTK_WIDGET(button), FALSE);
  ZLVClient::linkAccountWithPaymentType(
      "zolva", ZLVPartnerDetails::initWithPhoneNumber("7700900123", "44"),
      ZLVGTKPlatform::viewControllerForWindow(window),
      [tellUser](const auto& account, const auto& error) {
        if (error) return tellUser(error->localizedDescription());
        // What the user did on the page, the server knows.
        ZLVClient::enquireAccountWithAccountID(
            account->accountID().description(), [tellUser](const auto& found, const auto& failure) {
              tellUser("account: " + (failure ? failure->localizedDescription()
                                              : found->accountStatus().description()));
            });
      });
}

void activate(GtkApplication* application) {
  auto* window = gtk_application_window_new(application);
  auto* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 12);
  auto* label = gtk_label_new("Pay with your wallet");
  auto* button = gtk_button_new_with_label("Link a wallet");
  g_signal_connect(button, "clicked", G_CALLBACK(link), label);
  gtk_box_append(GTK_BOX(box), label);
  gtk_box_append(GTK_BOX(box), button);
  gtk_window_set_title(GTK_WINDOW(window), "Corner Coffee");
  gtk_window_set_default_size(GTK_WINDOW(window), 400, 600);
  gtk_window_set_child(GTK_WINDOW(window), box);
  gtk_window_present(GTK_WINDOW(window));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    g_printerr("usage: shop SERVER\n");
    return 2;
  }
  server = argv[1];
  auto* application = gtk_application_new("com.example.Shop", G_APPLICATION_NON_UNIQUE);
  g_signal_connect(application, "activate", G_CALLBACK(activate), nullptr);

  ZLVGTKHandlers handlers;
  // Where the page leads when the user is through: shop://done is this application's own.
  handlers.openURL = [](const ZLVURL& url) {
    g_print("opened with: %s\n", url.absoluteString().c_str());
    ZLVClient::handleCallbackUrl(url);
    return true;
  };
  ZLVPlatform::install(ZLVGTKPlatform::platformWithApplication(
      application,
      {.applicationName = "Corner Coffee",
       .applicationVersion = "2.1",
       .analyticsRootURL = server + '/'},  // the sandbox takes the usage events as well
      std::move(handlers)));
  ZLVClient::initWithMerchantServerURL(server, "M-1001", "shop://done", false);

  const int status = g_application_run(G_APPLICATION(application), 1, argv);
  g_object_unref(application);
  return ZLVGTKPlatform::runUntilIdle(std::chrono::seconds(2)) ? status : 1;
}
