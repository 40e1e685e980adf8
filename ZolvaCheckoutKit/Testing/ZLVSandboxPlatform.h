#pragma once

#include <memory>
#include <optional>
#include <string>

#include <Sandbox/Sandbox.h>

#include <ZolvaCheckoutKit/Testing/ZLVFakePlatform.h>

/// The fakes with a merchant's server and the wallet behind them, in memory: no request leaves the
/// process, and no time passes.
///
/// ```cpp
/// TEST(Checkout, LinksTheWallet) {
///   ZLVSandboxPlatform platform;  // a fresh server for each case
///   Shop shop(platform.ui->root); // calls the library
///   shop.linkWallet();
///   platform.run();               // until the page is shown
///   platform.decide(true);        // the user confirms
///   platform.run();
///   EXPECT_TRUE(shop.isLinked());
/// }
/// ```
///
/// Pauses that a misbehaviour asks for do not happen. A connection that stalls times out, and one
/// that is closed or reset is lost, both at once.
class ZLVSandboxPlatform : public ZLVFakePlatform {
 public:
  /// Where the application is to believe its server is.
  static constexpr auto ServerURL = "https://sandbox.test";

  ZLVSandboxPlatform();

  /// `ZLVClient::initWithMerchantServerURL` with this server and that callback URL.
  static void configure(const std::string& callbackURL = "shop://done");

  /// Answers requests and runs the main queue until there is nothing left to do; a page that is
  /// shown waits for its user.
  void run();

  /// What the user does on the page that is shown: confirms or cancels, and is taken back to the
  /// application, whose `ZLVClient::handleCallbackUrl` is called here with the URL that this
  /// returns. Nothing, when no page is shown or the page leads nowhere.
  std::optional<std::string> decide(bool isConfirmed);

  /// The user closes the page that is shown. False when none is.
  bool closePage();

  /// The server, to misbehave and to ask what it has received.
  ZLVSandbox sandbox;

 private:
  ZLVURLAnswer answerTo(const ZLVURLRequest& request);
};
