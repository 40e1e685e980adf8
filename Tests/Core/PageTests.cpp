// What is shown between a call and its completion, and how it ends.

#include "Tests/Core/ClientFixture.h"

TEST_F(Client, ChoosesThePage) {
  const std::string other = "https://wallet.test/2";
  const auto wanted = action("activation-deeplink");
  const Journal passedThrough{"Link Account Success", "completion"};
  const Journal refused{"Link Account Error", "completion"};
  const auto shown = [](const std::string& url) {
    return Journal{"Link Account Webview is Opened", "show " + url};
  };
  const std::pair<std::string, Journal> cases[] = {
      {R"({"status_code":"200","actions":[)" + wanted + "]}", passedThrough},
      {R"({"status_code":"202","actions":[)" + wanted + "]}", passedThrough},
      {R"({"actions":[)" + wanted + "]}", passedThrough},
      {R"({"status_code":"201"})", passedThrough},
      {R"({"status_code":"201","actions":null})", passedThrough},
      {actions(""), refused},
      {actions(action("Activation-Deeplink")), refused},
      {actions(wanted + "," + action("activation-deeplink", "no url")), refused},
      {actions(wanted + R"(,{"name":"activation-deeplink"})"), refused},
      {actions(action("activation-deeplink", "zolva://pay")), refused},
      {R"({"status_code":201.7,"actions":[)" + wanted + "]}", shown(page)},
      {actions(wanted + "," + action("activation-deeplink", other) + "," +
               action("user-verification")),
       shown(other)},
  };
  const auto missingURL =
      ZLVError::errorWithDomain(ZLVCheckoutErrorDomain, -1, {{"Error message", "url is null"}});
  for (const auto& [body, expected] : cases) {
    link();
    answer(200, body);
    EXPECT_EQ(takeJournal(), expected) << body;
    EXPECT_EQ(expected == refused, failure == missingURL);
    failure.reset();
    presenter->dismissViewControllerAnimated(false);
    journal().clear();
  }
}

TEST_F(Client, EveryEndOfThePageCompletesOnce) {
  const Journal endedAtOnce{"Link Account Webview is Opened", "Link Account Success", "completion"};
  openPage();
  handle("x-app://done/again?status=cancelled");
  EXPECT_EQ(takeJournal(), (Journal{"hide " + page, "Link Account Success", "completion"}));
  handle("app://done");
  EXPECT_TRUE(journal().empty());

  // The host takes a copy of the callback and calls it too.
  openPage();
  auto callback =
      dynamic_cast<ZLVWebViewController&>(*presenter->presentedViewController()).callback();
  callback();
  presenter->dismissViewControllerAnimated(false);
  EXPECT_EQ(takeJournal(), (Journal{"Link Account Success", "completion", "hide " + page}));

  // The presenter is busy, then gone, then was never there.
  openPage();
  EXPECT_EQ(openPage(), endedAtOnce);
  platform.ui->root.reset();
  presenter.reset();
  EXPECT_EQ(takeJournal(), (Journal{"Link Account Success", "completion"}));
  EXPECT_EQ(openPage(), endedAtOnce);
}

TEST_F(Client, APageTakesAlongWhatStandsAboveIt) {
  // The host's own controller stands above.
  openPage();
  presenter->presentedViewController()->presentViewController(std::make_shared<ZLVViewController>(),
                                                              false);
  std::move(platform.ui->browser->closed)();
  EXPECT_EQ(takeJournal(), (Journal{"hide " + page, "Link Account Success", "completion"}));
  EXPECT_EQ(presenter->presentedViewController(), nullptr);

  // Another page stands above, and above the host's window nothing is left in the way.
  openPage("https://w.test/1");
  auto* browser = platform.ui->browser;
  auto window = std::exchange(presenter, presenter->presentedViewController());
  openPage("https://w.test/2");
  presenter = std::move(window);
  std::move(browser->closed)();
  EXPECT_EQ(takeJournal(),
            (Journal{"hide https://w.test/2", "Link Account Success", "completion",
                     "hide https://w.test/1", "Link Account Success", "completion"}));
  EXPECT_EQ(openPage(), (Journal{"Link Account Webview is Opened", "show " + page}));

  // The host keeps the page whose presenter is gone.
  const auto kept = presenter->presentedViewController();
  presenter.reset();
  platform.ui->root.reset();
  std::move(platform.ui->browser->closed)();
  EXPECT_TRUE(journal().empty());
}

TEST_F(Client, APageFillsTheScreenWithADismissButtonThatTheSystemKnows) {
  for (const auto& [system, style] :
       {std::pair("10.3.4", std::optional<ZLVDismissButtonStyle>()),
        std::pair("11", std::optional(ZLVDismissButtonStyle::Close)),
        std::pair("12.1", std::optional(ZLVDismissButtonStyle::Close))}) {
    platform.device->system = system;
    charge();
    answer(200, actions(action("user-verification")));
    EXPECT_EQ(platform.ui->browser->style, style) << system;
    EXPECT_EQ(presenter->presentedViewController()->modalPresentationStyle(),
              ZLVModalPresentationStyle::FullScreen);
    presenter->dismissViewControllerAnimated(false);
    EXPECT_NE(std::dynamic_pointer_cast<ZLVTransactionResponse>(result), nullptr);
  }
}

TEST_F(Client, CallbackUrlWalksToTheTopmostController) {
  const auto openOver = [&](const std::shared_ptr<ZLVViewController>& controller) {
    presenter = controller;
    openPage();
  };
  const auto isClosedBy = [&](const char* url) {
    handle(url);
    return !takeJournal().empty();
  };
  // A navigation stack's top comes before what the stack itself presents.
  auto navigation = std::make_shared<ZLVNavigationController>();
  const auto top = std::make_shared<ZLVViewController>();
  navigation->pushViewController(std::make_shared<ZLVViewController>());
  navigation->pushViewController(top);
  navigation->presentViewController(std::make_shared<ZLVViewController>(), false);
  platform.ui->root = navigation;
  openOver(top);
  EXPECT_FALSE(isClosedBy("APP://DONE"));
  EXPECT_TRUE(isClosedBy("app://done?status=ok"));

  // A subclass of the navigation controller is walked like any other controller.
  struct Subclass : ZLVNavigationController {};
  const auto subclass = std::make_shared<Subclass>();
  subclass->pushViewController(top);
  platform.ui->root = subclass;
  openOver(subclass);
  EXPECT_TRUE(isClosedBy("app://done"));

  // A subclass of the browser is not the library's to close.
  struct OtherPage : ZLVWebViewController {
    OtherPage() : ZLVWebViewController(browserWithURL(*ZLVURL::URLWithString(page))) {
      setCallback([] {});
    }
  };
  subclass->presentViewController(std::make_shared<OtherPage>(), false);
  journal().clear();
  EXPECT_FALSE(isClosedBy("app://done"));

  openOver(top);
  for (const auto& root : {platform.ui->root, {std::make_shared<ZLVNavigationController>()}, {}}) {
    platform.ui->root = root;
    EXPECT_FALSE(isClosedBy("app://done"));
  }
  platform.ui->root = top;
  for (const auto& unusable : {ZLVVendor::Text(), ZLVVendor::Text("")}) {
    ZLVVendor::shared().setCallbackUrl(unusable);
    EXPECT_FALSE(isClosedBy("app://done"));
  }
  ZLVVendor::shared().setCallbackUrl("app://done");
  EXPECT_TRUE(isClosedBy("app://done"));
}
