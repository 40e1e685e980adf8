// A user's way through the wallet's pages, from the shop and back to it.

#include <Sandbox/Sandbox.h>
#include <gtest/gtest.h>

#include "Tests/GTK/Host.h"

namespace {

/// What an operation has been answered so far.
template <class Record>
struct Answer {
  int completions = 0;
  std::shared_ptr<Record> record;

  ZLVCompletionHandler<Record> handler() {
    return [this](std::shared_ptr<Record> answered, const std::optional<ZLVError>& error) {
      ++completions;
      record = std::move(answered);
      EXPECT_FALSE(error.has_value()) << error->debugDescription();
    };
  }
  [[nodiscard]] bool wait() const {
    return waitFor([this] { return completions > 0; }) && record != nullptr;
  }
};

class Journey : public testing::Test {
 protected:
  Journey() : host_({.analyticsRootURL = sandbox_.baseURL() + "/"}) {
    ZLVClient::initWithMerchantServerURL(sandbox_.baseURL(), "M-1", Host::callbackURL, false);
  }

  /// Asks for an account to be linked and waits for the wallet's page.
  void startLink(const std::shared_ptr<ZLVViewController>& presenter,
                 Answer<ZLVLinkAccountResult>& answer) {
    ZLVClient::linkAccountWithPaymentType(
        "zolva", ZLVPartnerDetails::initWithPhoneNumber("81234567890", "62"), presenter,
        answer.handler());
    EXPECT_TRUE(waitFor([&] { return host_.hasElement("button[value=confirm]"); }));
  }

  /// Links an account; `act` is what the user does on the wallet's page.
  std::string link(const std::function<void()>& act) {
    Answer<ZLVLinkAccountResult> linked;
    startLink(host_.viewController(), linked);
    act();
    EXPECT_TRUE(linked.wait());
    EXPECT_TRUE(host_.waitUntilClosed());
    EXPECT_EQ(linked.completions, 1);
    return linked.record->accountID().description();
  }

  std::shared_ptr<ZLVAccountInfo> enquire(const std::string& account) {
    Answer<ZLVAccountInfo> enquired;
    ZLVClient::enquireAccountWithAccountID(account, enquired.handler());
    EXPECT_TRUE(enquired.wait());
    return enquired.record;
  }

  std::function<void()> clicking(const char* decision) {
    return [this, decision] { host_.clickElement(std::string("button[value=") + decision + "]"); };
  }

  ZLVSandbox sandbox_;
  Host host_;
};

TEST_F(Journey, LinksAndPays) {
  host_.run([&] {
    const auto account = link(clicking("confirm"));
    const auto info = enquire(account);
    EXPECT_EQ(info->accountStatus().description(), "ENABLED");

    Answer<ZLVTransactionResult> charged;
    ZLVClient::createTransactionWithPaymentType(
        "zolva", host_.viewController(),
        ZLVZolvaDetails::initWithAccountID(account,
                                           info->metadata()->paymentOptions()->front()->token()),
        ZLVTransactionDetails::initWithGrossAmount(ZLVSandboxVerificationLimit + 50, "O-1", "EUR"),
        ZLVCustomerDetails::initWithPhoneNumber("81234567890", "Ada", "L", "ada@example.com"),
        std::nullopt, charged.handler());
    clicking("confirm")();
    ASSERT_TRUE(charged.wait());
    EXPECT_TRUE(host_.waitUntilClosed());
    EXPECT_EQ(charged.completions, 1);
    EXPECT_EQ(charged.record->orderId().description(), "O-1");
    const auto left = enquire(account)->metadata()->paymentOptions()->front()->balance()->value();
    EXPECT_EQ(left.description(), "350.00");
  });
  EXPECT_EQ(host_.openedURLs().size(), 2U);
}

TEST_F(Journey, EndsOnceHoweverTheUserLeaves) {
  host_.run([&] {
    const std::function<void()> ways[] = {clicking("cancel"), [&] { host_.click("Close"); },
                                          [] { pressKeys("Escape"); }};
    for (const auto& leave : ways) {
      EXPECT_NE(enquire(link(leave))->accountStatus().description(), "ENABLED");
    }
  });
}

TEST_F(Journey, EndsWithThePageBelow) {
  host_.run([&] {
    GtkWidget* const content = gtk_window_get_child(host_.window());
    gtk_widget_grab_focus(host_.entry());
    for (const bool isAbovePage : {true, false}) {
      Answer<ZLVLinkAccountResult> below;
      Answer<ZLVLinkAccountResult> above;
      startLink(host_.viewController(), below);
      // Its end completes the call, so nobody else may own it.
      auto* const page = host_.viewController()->presentedViewController().get();
      if (isAbovePage) {
        startLink(page->shared_from_this(), above);
        ASSERT_TRUE(waitFor([&] { return page->presentedViewController() != nullptr; }));
      } else {
        page->presentViewController(std::make_shared<ZLVViewController>(), true);
      }
      EXPECT_EQ(below.completions + above.completions, 0);
      host_.evaluate("window.close()");
      EXPECT_TRUE(below.wait());
      EXPECT_TRUE(!isAbovePage || above.wait());
      EXPECT_TRUE(waitFor([] { return childProcesses() == 0; }));
      EXPECT_EQ(below.completions, 1);
      EXPECT_EQ(above.completions, isAbovePage ? 1 : 0);
      EXPECT_EQ(host_.viewController()->presentedViewController(), nullptr);
      EXPECT_EQ(gtk_window_get_child(host_.window()), content);
      EXPECT_EQ(host_.webView(), nullptr);
      EXPECT_TRUE(gtk_widget_is_sensitive(host_.payButton()));
      EXPECT_NE(gtk_widget_get_state_flags(host_.entry()) & GTK_STATE_FLAG_FOCUS_WITHIN, 0);
    }
  });
}

}  // namespace
