// page CONTENDER MERCHANT COLLECTOR: an application with a window that asks for an account, and
// then makes a charge for each line that it reads, tells when, and shows the page that it is sent
// to.

#include <cstdlib>
#include <functional>
#include <memory>
#include <string>

#include <glib-unix.h>
#include <unistd.h>
#include <webkit/webkit.h>

#include <ZolvaCheckoutKit/Platform/GTK/ZLVGTKPlatform.h>
#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

#include "Benchmarks/Journey/Charge.h"

namespace {

class Shop {
 public:
  Shop() = default;
  Shop(const Shop&) = delete;
  Shop& operator=(const Shop&) = delete;
  virtual ~Shop() = default;

  virtual void enquire(const std::function<void()>& done) = 0;
  virtual void charge(int number) = 0;
  virtual void closePage() = 0;
};

[[noreturn]] void end(const std::string& what) {
  std::fprintf(stderr, "page: %s\n", what.c_str());
  _exit(EXIT_FAILURE);
}

class LibraryShop final : public Shop {
 public:
  LibraryShop(GtkApplication* application, GtkWindow* window, const std::string& merchant,
              const std::string& collector)
      : window_(window) {
    ZLVPlatform::install(ZLVGTKPlatform::platformWithApplication(
        application, {.applicationName = "Benchmark",
                      .applicationVersion = "1",
                      .analyticsRootURL = collector + '/'}));
    ZLVClient::initWithMerchantServerURL(merchant, "M-1", "journey://done", false);
  }

  void enquire(const std::function<void()>& done) override {
    ZLVClient::enquireAccountWithAccountID("acc-1", [done](const auto&, const auto& error) {
      if (error) end(error->debugDescription());
      done();
    });
  }
  void charge(int number) override {
    ZLVClient::createTransactionWithPaymentType(
        "zolva", ZLVGTKPlatform::viewControllerForWindow(window_),
        ZLVZolvaDetails::initWithAccountID("acc-1", "option-1"),
        ZLVTransactionDetails::initWithGrossAmount(150, orderID(number), "EUR"),
        ZLVCustomerDetails::initWithPhoneNumber("+44 7700 900123", "Kim", {}, "kim@example.com"),
        std::nullopt, [](const auto&, const auto& error) {
          if (error) end(error->debugDescription());
        });
  }
  void closePage() override {
    ZLVGTKPlatform::viewControllerForWindow(window_)->dismissViewControllerAnimated(true);
  }

 private:
  GtkWindow* window_;
};

/// The same calls with libsoup, and WebKitGTK's view as it comes.
class SoupShop final : public Shop {
 public:
  SoupShop(GtkWindow* window, std::string merchant)
      : window_(window), merchant_(std::move(merchant)) {}
  SoupShop(const SoupShop&) = delete;
  SoupShop& operator=(const SoupShop&) = delete;
  ~SoupShop() override { g_object_unref(session_); }

  void enquire(const std::function<void()>& done) override {
    send("GET", accountPath, "", [done](const std::string& answer) {
      recordOf(answer);
      done();
    });
  }
  void charge(int number) override {
    send("POST", chargePath, chargeBody(number), [this](const std::string& answer) {
      GtkWidget* view = webkit_web_view_new();
      gtk_window_set_child(window_, view);
      webkit_web_view_load_uri(WEBKIT_WEB_VIEW(view), pageOf(answer).c_str());
    });
  }
  void closePage() override { gtk_window_set_child(window_, gtk_button_new_with_label("Pay")); }

 private:
  using Handler = std::function<void(const std::string& answer)>;

  void send(const char* method, const char* path, const std::string& body, const Handler& handler) {
    SoupMessage* message = soup_message_new(method, (merchant_ + path).c_str());
    for (const auto& [name, value] : requestHeaders) {
      soup_message_headers_append(soup_message_get_request_headers(message), name, value);
    }
    if (!body.empty()) {
      GBytes* bytes = g_bytes_new(body.data(), body.size());
      soup_message_set_request_body_from_bytes(message, "application/json", bytes);
      g_bytes_unref(bytes);
    }
    const GAsyncReadyCallback finish = [](GObject* session, GAsyncResult* result, gpointer data) {
      const std::unique_ptr<Handler> given(static_cast<Handler*>(data));
      GBytes* bytes = soup_session_send_and_read_finish(SOUP_SESSION(session), result, nullptr);
      if (bytes == nullptr) end("libsoup: the call failed");
      gsize size = 0;
      const auto* text = static_cast<const char*>(g_bytes_get_data(bytes, &size));
      (*given)({text, size});
      g_bytes_unref(bytes);
    };
    soup_session_send_and_read_async(session_, message, G_PRIORITY_DEFAULT, nullptr, finish,
                                     std::make_unique<Handler>(handler).release());
    g_object_unref(message);
  }

  GtkWindow* window_;
  const std::string merchant_;
  SoupSession* session_ = soup_session_new();
};

struct Application {
  std::string contender, merchant, collector;
  std::unique_ptr<Shop> shop = {};
  int charges = 0;
};

gboolean chargeOnce(gpointer data) {
  auto& application = *static_cast<Application*>(data);
  tellTime();
  application.shop->charge(++application.charges);
  return G_SOURCE_REMOVE;
}

/// A line has come; the page before goes first.
gboolean takeLine(gint descriptor, GIOCondition, gpointer data) {
  constexpr guint pause = 500;
  char byte = 0;
  if (read(descriptor, &byte, 1) != 1) _exit(0);
  if (byte != '\n') return G_SOURCE_CONTINUE;
  auto& application = *static_cast<Application*>(data);
  if (application.charges > 0) application.shop->closePage();
  g_timeout_add(pause, &chargeOnce, data);
  return G_SOURCE_CONTINUE;
}

void activate(GtkApplication* self, gpointer data) {
  auto& application = *static_cast<Application*>(data);
  auto* window = GTK_WINDOW(gtk_application_window_new(self));
  gtk_window_set_default_size(window, 360, 640);
  gtk_window_set_child(window, gtk_button_new_with_label("Pay"));
  gtk_window_present(window);
  if (application.contender == "library") {
    application.shop =
        std::make_unique<LibraryShop>(self, window, application.merchant, application.collector);
  } else {
    application.shop = std::make_unique<SoupShop>(window, application.merchant);
  }
  application.shop->enquire([data] {
    tellTime();
    g_unix_fd_add(STDIN_FILENO, G_IO_IN, &takeLine, data);
  });
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) end("usage: page CONTENDER MERCHANT COLLECTOR");
  Application application{.contender = argv[1], .merchant = argv[2], .collector = argv[3]};
  GtkApplication* self = gtk_application_new("com.example.Journey", G_APPLICATION_NON_UNIQUE);
  g_signal_connect(self, "activate", G_CALLBACK(&activate), &application);
  return g_application_run(G_APPLICATION(self), 0, nullptr);
}
