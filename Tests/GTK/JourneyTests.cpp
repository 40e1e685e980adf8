// A user's way through the wallet's pages, from the shop and back to it, however it ends.

#include <Sandbox/Sandbox.h>
#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>

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
    ZLVClient::linkAccountWithPaymentType("zolva",
                                          ZLVPartnerDetails::initWithPhoneNumber("5550123", "1"),
                                          presenter, answer.handler());
    EXPECT_TRUE(waitFor([&] { return host_.hasElement("button[value=confirm]"); }));
  }

  /// Links an account; the user chooses `decision` on the wallet's page.
  std::string link(const std::string& decision) {
    Answer<ZLVLinkAccountResult> linked;
    startLink(host_.viewController(), linked);
    decide(decision);
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

  void decide(const std::string& decision) { host_.clickElement("button[value=" + decision + "]"); }

  ZLVSandbox sandbox_;
  Host host_;
};

TEST_F(Journey, LinksAndPays) {
  host_.run([&] {
    EXPECT_NE(enquire(link("cancel"))->accountStatus().description(), "ENABLED");
    const auto account = link("confirm");
    const auto info = enquire(account);
    EXPECT_EQ(info->accountStatus().description(), "ENABLED");

    Answer<ZLVTransactionResult> charged;
    ZLVClient::createTransactionWithPaymentType(
        "zolva", host_.viewController(),
        ZLVZolvaDetails::initWithAccountID(account,
                                           info->metadata()->paymentOptions()->front()->token()),
        ZLVTransactionDetails::initWithGrossAmount(ZLVSandboxVerificationLimit + 50, "O-1", "EUR"),
        ZLVCustomerDetails::initWithPhoneNumber("15550123", "Ada", "L", "ada@example.com"),
        std::nullopt, charged.handler());
    decide("confirm");
    ASSERT_TRUE(charged.wait());
    EXPECT_TRUE(host_.waitUntilClosed());
    EXPECT_EQ(charged.completions, 1);
    EXPECT_EQ(charged.record->orderId().description(), "O-1");
    const auto left = enquire(account)->metadata()->paymentOptions()->front()->balance()->value();
    EXPECT_EQ(left.description(), "350.00");
  });
  EXPECT_EQ(host_.openedURLs.size(), 3U);
}

TEST_F(Journey, EndsWithThePageBelow) {
  host_.run([&] {
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
      EXPECT_EQ(host_.webView(), nullptr);
      EXPECT_TRUE(gtk_widget_is_sensitive(host_.payButton));
    }
  });
}

struct Ending {
  const char* name;
  void (*end)(Host& host);
};

void PrintTo(const Ending& ending, std::ostream* stream) { *stream << ending.name; }

const Ending endings[] = {
    {"CloseButton", [](Host& host) { host.click("Close"); }},
    {"Escape", [](Host&) { pressKeys("Escape"); }},
    {"CallbackURL", [](Host&) { Host::callBack(); }},
    {"AllAtOnce",
     [](Host& host) {
       pressKeys("Escape Escape");
       host.evaluate("setTimeout(() => window.close())");
       Host::callBack();
     }},
    {"EndlessLoop",
     [](Host& host) {
       host.evaluate("setTimeout(() => { while (true); })");
       host.click("Close");
     }},
    {"PageCrashes",
     [](Host& host) {
       webkit_web_view_terminate_web_process(host.webView());
       host.click("Close");
     }},
    {"DismissalDuringLoad",
     [](Host& host) {
       const RawServer server([](auto&) { return RawServer::Reply{"", RawServer::Then::Stall}; });
       webkit_web_view_load_uri(host.webView(), server.url().c_str());
       EXPECT_TRUE(waitFor([&] { return !server.requests().empty(); }));
       Host::callBack();
     }},
    {"DismissalByTheHost",
     [](Host& host) { host.viewController()->dismissViewControllerAnimated(true); }},
    {"WindowDestroyed", [](Host& host) { gtk_window_destroy(host.window); }},
    {"WindowDestroyedButHeld",
     [](Host& host) {
       const auto window = ZLVGObject<GtkWindow>::retain(host.window);
       gtk_window_destroy(window.get());
       EXPECT_TRUE(
           waitFor([&] { return host.viewController()->presentedViewController() == nullptr; }));
     }},
    {"ContentReplaced",
     [](Host& host) { gtk_window_set_child(host.window, gtk_label_new("other")); }},
    {"ApplicationQuits", [](Host& host) { g_application_quit(G_APPLICATION(host.application)); }},
};

class Lifetime : public Journey, public testing::WithParamInterface<Ending> {};

TEST_P(Lifetime, EndsOnce) {
  Answer<ZLVLinkAccountResult> linked;
  std::weak_ptr<ZLVViewController> controller;
  host_.run([&] {
    startLink(host_.viewController(), linked);
    controller = host_.viewController()->presentedViewController();
    EXPECT_EQ(linked.completions, 0);
    GetParam().end(host_);
    // An application that ends turns its loop no further.
    EXPECT_TRUE(GetParam().name == std::string("ApplicationQuits") || linked.wait());
  });
  EXPECT_EQ(linked.completions, 1);
  EXPECT_NE(linked.record, nullptr);
  EXPECT_TRUE(controller.expired());
  EXPECT_TRUE(waitFor([] { return childProcesses() == 0; }));
}

INSTANTIATE_TEST_SUITE_P(Browser, Lifetime, testing::ValuesIn(endings),
                         [](const auto& test) { return test.param.name; });

}  // namespace
