#include "Apps/Shop/ShopApplication.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

#include <Sandbox/Sandbox.h>

#include <ZolvaCheckoutKit/Platform/GTK/ZLVGTKPlatform.h>

#include "Apps/Shop/Interface/Style.h"

namespace {

constexpr const char* ApplicationID = "com.example.CornerCoffee";
constexpr const char* CallbackScheme = "cornercoffee";
constexpr const char* CallbackURL = "cornercoffee://done";

static_assert(ShopCurrency == ZLVSandboxCurrency);

struct Option {
  const char* name;
  GOptionArg kind;
  const char* description;
  const char* value;
};
constexpr Option options[] = {
    {"server", G_OPTION_ARG_STRING, "Base URL of the merchant server; a sandbox without one",
     "URL"},
    {"merchant-id", G_OPTION_ARG_STRING, "The merchant's identifier", "ID"},
    {"analytics-root", G_OPTION_ARG_STRING, "Base URL of the analytics service", "URL"},
    {"ca-file", G_OPTION_ARG_FILENAME, "Certificate authorities to trust as well (PEM)", "FILE"},
    {"allow-cleartext", G_OPTION_ARG_NONE, "Allow http to other machines", nullptr},
    {"patience", G_OPTION_ARG_INT, "Seconds after which to offer to stop waiting (10)", "SECONDS"},
    {"log", G_OPTION_ARG_NONE, "Write requests and answers to the system log, tokens included",
     nullptr},
};

std::optional<std::string> textOption(GVariantDict* given, const char* name) {
  GVariant* const value = g_variant_dict_lookup_value(given, name, nullptr);
  if (value == nullptr) return std::nullopt;
  std::string text = g_variant_is_of_type(value, G_VARIANT_TYPE_BYTESTRING) == TRUE
                         ? g_variant_get_bytestring(value)
                         : g_variant_get_string(value, nullptr);
  g_variant_unref(value);
  return text;
}

}  // namespace

ShopApplication::ShopApplication()
    : application_(gtk_application_new(ApplicationID, G_APPLICATION_HANDLES_OPEN)) {
  auto* const application = G_APPLICATION(application_);
  for (const auto& [name, kind, description, value] : options) {
    g_application_add_main_option(application, name, 0, G_OPTION_FLAG_NONE, kind, description,
                                  value);
  }
  const auto connect = [&](const char* signal, GCallback handler) {
    g_signal_connect(application, signal, handler, this);
  };
  using Self = ShopApplication;
  connect("handle-local-options",
          G_CALLBACK(+[](GApplication*, GVariantDict* given, Self* self) noexcept -> gint {
            self->readOptions(given);
            constexpr gint carryOn = -1;
            return carryOn;
          }));
  connect("startup", G_CALLBACK(+[](GApplication*, Self* self) noexcept { self->start(); }));
  connect("activate", G_CALLBACK(+[](GApplication*, Self* self) noexcept { self->activate(); }));
  connect("open", G_CALLBACK(+[](GApplication*, GFile** files, gint count, const char*,
                                 Self* self) noexcept {
            for (gint index = 0; index < count; ++index) {
              char* const text = g_file_get_uri(files[index]);
              if (const auto url = ZLVURL::URLWithString(text)) self->open(*url);
              g_free(text);
            }
          }));
}

ShopApplication::~ShopApplication() { g_object_unref(application_); }

int ShopApplication::run(int argc, char** argv) {
  const int status = g_application_run(G_APPLICATION(application_), argc, argv);
  // The last report may still be on its way; nobody waits for more than that.
  if (ZLVPlatform::isInstalled()) ZLVGTKPlatform::runUntilIdle(std::chrono::seconds(2));
  return status;
}

void ShopApplication::readOptions(GVariantDict* given) {
  server_ = textOption(given, "server");
  if (auto merchantID = textOption(given, "merchant-id")) merchantID_ = *std::move(merchantID);
  g_variant_dict_lookup(given, "patience", "i", &patience_);
  isLoggingEnabled_ = g_variant_dict_contains(given, "log") == TRUE;
  platform_ = ZLVGTKPlatform::platformWithApplication(
      application_,
      {.applicationName = "Corner Coffee",
       .applicationVersion = ZLV_VERSION,
       .applicationIdentifier = ApplicationID,
       .allowsCleartext = g_variant_dict_contains(given, "allow-cleartext") == TRUE,
       .CAFile = textOption(given, "ca-file"),
       .analyticsRootURL = textOption(given, "analytics-root")},
      {.openURL = [this](const ZLVURL& url) { return openURL(url); },
       // The call's completion gets an error, too; what is thrown says what was wrong.
       .uncaughtException =
           [](const std::exception_ptr& thrown) {
             try {
               std::rethrow_exception(thrown);
             } catch (const std::exception& fault) {
               g_message("%s", fault.what());
             }
           }});
}

void ShopApplication::start() {
  installStyle();
  if (!server_) {
    sandbox_ = std::make_unique<ZLVSandbox>(ZLVSandboxOptions{.merchantName = "Corner Coffee"});
    server_ = sandbox_->baseURL();
    platform_.analyticsRootURL = sandbox_->baseURL() + "/";
    g_message("The sandbox is at %s", server_->c_str());
  }
  ZLVPlatform::install(std::move(platform_));
  ZLVClient::initWithMerchantServerURL(*server_, merchantID_, CallbackURL, isLoggingEnabled_);
}

void ShopApplication::activate() {
  if (!window_) {
    window_ = std::make_unique<ShopWindow>(application_, basket_, orders_, checkout_,
                                           static_cast<unsigned>(std::max(patience_, 0)));
  }
  window_->present();
}

void ShopApplication::open(const ZLVURL& url) {
  g_debug("opened %s", url.absoluteString().c_str());
  activate();
  ZLVClient::handleCallbackUrl(url);
}

/// The system starts the handler of the callback's scheme, which is this application and gets the
/// URL through `open`. Where it is not installed as that, or has no session bus to be found on, it
/// takes the short way.
bool ShopApplication::openURL(const ZLVURL& url) {
  const bool isOnBus = g_application_get_dbus_connection(G_APPLICATION(application_)) != nullptr;
  const auto* const text = url.absoluteString().c_str();
  if (isOnBus && g_app_info_launch_default_for_uri(text, nullptr, nullptr) == TRUE) return true;
  if (url.scheme() != CallbackScheme) return false;
  g_debug("not the installed handler of %s", CallbackScheme);
  open(url);
  return true;
}
