#pragma once

#include <memory>
#include <optional>
#include <string>

#include <gtk/gtk.h>

#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

#include "Apps/Shop/Checkout/Checkout.h"
#include "Apps/Shop/Interface/ShopWindow.h"

class ZLVSandbox;

/// The shop as a GTK application: one process whatever number of times it is started, which is
/// also where the wallet's callback URL arrives.
class ShopApplication {
 public:
  ShopApplication();
  ~ShopApplication();

  /// Runs until the window is closed. Returns the exit code.
  int run(int argc, char** argv);

 private:
  /// The command line, read before anything else.
  void readOptions(GVariantDict* given);
  /// Configures the library; only in the process that stays.
  void start();
  void activate();
  void open(const ZLVURL& url);
  bool openURL(const ZLVURL& url);

  GtkApplication* application_;
  ZLVPlatform platform_;
  std::optional<std::string> server_;
  std::string merchantID_ = "M-SANDBOX";
  bool isLoggingEnabled_ = false;
  int patience_ = 10;
  std::unique_ptr<ZLVSandbox> sandbox_;
  Basket basket_;
  Orders orders_;
  Checkout checkout_{basket_, orders_};
  std::unique_ptr<ShopWindow> window_;
};
