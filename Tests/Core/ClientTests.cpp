#include <gtest/gtest.h>

#include "Tests/Support/FakePlatform.h"
#include "ZolvaCheckoutKit/Core/Checkout/ZLVWebViewController.h"

namespace {

class Client : public testing::Test {
 protected:
  void SetUp() override {
    FakePlatform::configure();
    platform.ui->root = presenter;
  }

  /// Events hold the six facts of the device and, those of errors alone, the error's description.
  void TearDown() override {
    for (const auto& task : platform.session.analytics) {
      const auto body = FakePlatform::parsed(*task.request.HTTPBody);
      for (const auto& record : *body["d"].array()) {
        const auto& event = *record.dictionary();
        if (event["type"] == ZLVValue("profile")) continue;
        const auto& data = *event["evtData"].dictionary();
        const bool isError = event["evtName"].description().ends_with(" Error");
        EXPECT_EQ(data.size(), isError ? 7U : 6U) << record.description();
        EXPECT_EQ(data["details"].description().starts_with("Error Domain="), isError);
      }
    }
  }

  /// A completion that notes its call in the journal; an empty one while nobody listens.
  template <class Record>
  ZLVCompletionHandler<Record> note() {
    if (!isListening) return {};
    return [this](std::shared_ptr<Record> record, const std::optional<ZLVError>& error) {
      EXPECT_NE(record == nullptr, !error);
      result = record;
      failure = error;
      journal().push_back("completion");
    };
  }
  void link() {
    ZLVClient::linkAccountWithPaymentType("zolva",
                                          ZLVPartnerDetails::initWithPhoneNumber("5550123", "1"),
                                          presenter, note<ZLVLinkAccountResult>());
  }
  void charge(ZLVRecords<ZLVItemDetails> items = {}) {
    ZLVClient::createTransactionWithPaymentType(
        "zolva", presenter, ZLVZolvaDetails::initWithAccountID("acc", "tok"),
        ZLVTransactionDetails::initWithGrossAmount(10000, "o-1", "EUR"),
        ZLVCustomerDetails::initWithPhoneNumber("5550123", "Ada", "L", "a@b.c"), std::move(items),
        note<ZLVTransactionResult>());
  }
  void enquire() { ZLVClient::enquireAccountWithAccountID("abc", note<ZLVAccountInfo>()); }
  void disable() { ZLVClient::disableAccountWithAccountID("abc", note<ZLVDisableAccountResult>()); }
  void answer(int status, const std::string& body) {
    platform.session.merchant.back().answer(status, body);
    platform.queue->drain();
  }
  ZLVDictionary sentBody() {
    return FakePlatform::parsed(*platform.session.merchant.back().request.HTTPBody);
  }
  Journal& journal() { return platform.ui->journal; }
  Journal takeJournal() { return std::exchange(journal(), {}); }

  FakePlatform platform;
  std::shared_ptr<ZLVViewController> presenter = std::make_shared<ZLVViewController>();
  std::shared_ptr<ZLVMappable> result;
  std::optional<ZLVError> failure;
  bool isListening = true;

  /// The operations with the events of their success, of their page's end, and of their failure.
  struct Operation {
    std::function<void()> call;
    Journal passed, pageEnded;
    std::string failed;
    const char* actionName = nullptr;
  };
  const Operation operations[4] = {
      {[this] { link(); },
       {"Link Account Success"},
       {"Link Account Success"},
       "Link Account Error",
       "activation-deeplink"},
      {[this] { charge(); },
       {},
       {"Create Transaction Success"},
       "Create Transaction Error",
       "user-verification"},
      {[this] { enquire(); }, {"Enquire Account Success"}, {}, "Enquire Account Error"},
      {[this] { disable(); }, {"Unlink Account Success"}, {}, "Unlink Account Error"},
  };
};

std::string actions(const std::string& list) {
  return R"({"status_code":"201","actions":[)" + list + "]}";
}
std::string action(const std::string& name, const std::string& url) {
  return R"({"name":")" + name + R"(","method":"GET","url":")" + url + "\"}";
}

struct Subclass : ZLVNavigationController {};

struct OtherPage : ZLVWebViewController {
  OtherPage() : ZLVWebViewController(browserWithURL(*ZLVURL::URLWithString("https://o.test"))) {
    setCallback([] {});
  }
};

}  // namespace

TEST_F(Client, SendsItsRequests) {
  ZLVClient::enquireAccountWithAccountID("abc", {});
  ZLVClient::disableAccountWithAccountID("abc", {});
  link();
  EXPECT_EQ(sentBody(),
            (ZLVDictionary{{"payment_type", "zolva"},
                           {"zolva_partner", ZLVDictionary{{"phone_number", "5550123"},
                                                           {"country_code", "1"},
                                                           {"redirect_url", "app://done"}}}}));
  ZLVClient::linkAccountWithPaymentType("zolva", nullptr, nullptr, {});
  EXPECT_EQ(sentBody(), (ZLVDictionary{{"payment_type", "zolva"}}));

  charge();
  const auto body = sentBody();
  EXPECT_EQ(body.size(), 4U);
  for (const auto* key : {"payment_type", "zolva", "transaction_details", "customer_details"}) {
    EXPECT_TRUE(body.contains(key)) << key;
  }
  charge(std::vector<std::shared_ptr<ZLVItemDetails>>{});
  EXPECT_EQ(sentBody()["item_details"], ZLVValue(ZLVArray{}));
  charge(std::vector{ZLVItemDetails::initWithIthItemID("1", {}, {}, {}, {}),
                     ZLVItemDetails::initWithIthItemID("2", {}, {}, {}, {})});
  EXPECT_EQ(sentBody()["item_details"],
            ZLVValue(ZLVArray{ZLVDictionary{{"id", "1"}}, ZLVDictionary{{"id", "2"}}}));

  std::vector<std::string> sent;
  for (const auto& task : platform.session.merchant) {
    sent.push_back(task.request.HTTPMethod + " " + task.request.URL->absoluteString());
  }
  const std::string root = "https://shop.test/pay/v2/";
  EXPECT_EQ(sent,
            (std::vector<std::string>{
                "GET " + root + "pay/account/abc", "POST " + root + "pay/account/abc/unbind",
                "POST " + root + "pay/account", "POST " + root + "pay/account",
                "POST " + root + "charge", "POST " + root + "charge", "POST " + root + "charge"}));
}

TEST_F(Client, RecordsTheEventBeforeItCompletes) {
  for (const auto& operation : operations) {
    operation.call();
    answer(204, R"({"status_code":"200","account_id":"abc"})");
    auto expected = operation.passed;
    expected.emplace_back("completion");
    EXPECT_EQ(takeJournal(), expected);

    const Journal failed{operation.failed, "completion"};
    operation.call();
    answer(404, R"({"status_message":"Unknown"})");
    EXPECT_EQ(takeJournal(), failed);
    EXPECT_EQ(failure->code(), 404);
    EXPECT_EQ((*(*platform.lastUpload()[0].dictionary())["evtData"].dictionary())["details"],
              ZLVValue(failure->debugDescription()));
    operation.call();
    answer(200, "[]");
    EXPECT_EQ(takeJournal(), failed);
    EXPECT_EQ(failure->localizedDescription(), "The answer is not a JSON object.");

    // The session loses the call.
    operation.call();
    platform.session.merchant.back().handler = {};
    EXPECT_TRUE(journal().empty());
    platform.queue->drain();
    EXPECT_EQ(takeJournal(), failed);
    EXPECT_EQ(failure->code(), NSURLErrorCancelled);
  }
}

TEST_F(Client, NobodyNeedListen) {
  isListening = false;
  for (const auto& operation : operations) {
    operation.call();
    answer(500, "{}");
    EXPECT_EQ(takeJournal(), Journal{operation.failed});
    operation.call();
    answer(200, R"({"status_code":"200"})");
    EXPECT_EQ(takeJournal(), operation.passed);
    if (operation.actionName == nullptr) continue;
    operation.call();
    answer(200, actions(action(operation.actionName, "https://w.test")));
    journal().clear();
    std::move(platform.ui->browser->closed)();
    EXPECT_EQ(takeJournal(), (Journal{"hide https://w.test", operation.pageEnded.front()}));
    operation.call();
    answer(200, actions(""));
    EXPECT_EQ(takeJournal(), Journal{operation.failed});
  }
}

TEST_F(Client, ChoosesThePage) {
  const std::string good = "https://wallet.test/1";
  const std::string other = "https://wallet.test/2";
  const std::string wanted = "activation-deeplink";
  const std::string verify = "user-verification";
  const Journal passedThrough{"Link Account Success", "completion"};
  const Journal refused{"Link Account Error", "completion"};
  const auto shown = [](const std::string& url) {
    return Journal{"Link Account Webview is Opened", "show " + url};
  };
  const std::pair<std::string, Journal> cases[] = {
      {R"({"status_code":"200","actions":[)" + action(wanted, good) + "]}", passedThrough},
      {R"({"actions":[)" + action(wanted, good) + "]}", passedThrough},
      {R"({"status_code":"201"})", passedThrough},
      {R"({"status_code":"201","actions":null})", passedThrough},
      {actions(""), refused},
      {actions(action(verify, good)), refused},
      {actions(action("Activation-Deeplink", good)), refused},
      {actions(action(wanted, good) + "," + action(wanted, "no url")), refused},
      {actions(action(wanted, good) + R"(,{"name":"activation-deeplink"})"), refused},
      {actions(action(wanted, "zolva://pay")), refused},
      {actions(action(wanted, "")), refused},
      {actions(action(wanted, good)), shown(good)},
      {R"({"status_code":201.7,"actions":[)" + action(wanted, good) + "]}", shown(good)},
      {actions(action(wanted, good) + "," + action(wanted, other) + "," + action(verify, good)),
       shown(other)},
  };
  for (const auto& [body, expected] : cases) {
    link();
    answer(200, body);
    EXPECT_EQ(takeJournal(), expected) << body;
    if (expected == refused) {
      EXPECT_EQ(failure->domain(), ZLVCheckoutErrorDomain);
      EXPECT_EQ(failure->code(), -1);
      EXPECT_EQ(failure->userInfo(), (ZLVDictionary{{"Error message", "url is null"}}));
    }
    presenter->dismissViewControllerAnimated(false);
    journal().clear();
  }
}

TEST_F(Client, ChargeReportsOnlyWhatItsPageDoes) {
  charge();
  answer(200, R"({"status_code":"200"})");
  EXPECT_EQ(takeJournal(), (Journal{"completion"}));

  charge();
  answer(200, actions(action("activation-deeplink", "https://w.test")));
  EXPECT_EQ(takeJournal(), (Journal{"Create Transaction Error", "completion"}));

  charge();
  answer(201, actions(action("user-verification", "https://w.test")));
  EXPECT_EQ(takeJournal(),
            (Journal{"Create Transaction Webview is Opened", "show https://w.test"}));
  EXPECT_EQ(platform.ui->browser->style, ZLVDismissButtonStyle::Close);
  EXPECT_EQ(presenter->presentedViewController()->modalPresentationStyle(),
            ZLVModalPresentationStyle::FullScreen);
  std::move(platform.ui->browser->closed)();
  EXPECT_EQ(takeJournal(),
            (Journal{"hide https://w.test", "Create Transaction Success", "completion"}));
  EXPECT_NE(std::dynamic_pointer_cast<ZLVTransactionResponse>(result), nullptr);
}

TEST_F(Client, EveryEndOfThePageCompletesOnce) {
  const std::string page = actions(action("activation-deeplink", "https://w.test"));
  const Journal opened{"Link Account Webview is Opened"};
  const Journal ended{"Link Account Success", "completion"};
  const auto open = [&] {
    link();
    answer(200, page);
    journal().clear();
  };
  open();
  ZLVClient::handleCallbackUrl(*ZLVURL::URLWithString("x-app://done/again?status=cancelled"));
  EXPECT_EQ(takeJournal(), (Journal{"hide https://w.test", "Link Account Success", "completion"}));
  ZLVClient::handleCallbackUrl(*ZLVURL::URLWithString("app://done"));
  EXPECT_TRUE(journal().empty());

  // The host takes a copy of the callback and calls it too.
  open();
  auto callback =
      dynamic_cast<ZLVWebViewController&>(*presenter->presentedViewController()).callback();
  callback();
  presenter->dismissViewControllerAnimated(false);
  EXPECT_EQ(takeJournal(), (Journal{"Link Account Success", "completion", "hide https://w.test"}));

  // The presenter is busy, then gone, then was never there.
  open();
  link();
  answer(200, page);
  EXPECT_EQ(takeJournal(),
            (Journal{"Link Account Webview is Opened", "Link Account Success", "completion"}));
  platform.ui->root.reset();
  presenter.reset();
  EXPECT_EQ(takeJournal(), ended);
  link();
  answer(200, page);
  EXPECT_EQ(takeJournal(),
            (Journal{"Link Account Webview is Opened", "Link Account Success", "completion"}));
}

TEST_F(Client, APageTakesAlongWhatStandsAboveIt) {
  const auto page = [&](const std::string& url) {
    link();
    answer(200, actions(action("activation-deeplink", url)));
    return std::exchange(platform.ui->browser, nullptr);
  };
  // The host's own controller stands above.
  auto* browser = page("https://w.test");
  presenter->presentedViewController()->presentViewController(std::make_shared<ZLVViewController>(),
                                                              false);
  journal().clear();
  std::move(browser->closed)();
  EXPECT_EQ(takeJournal(), (Journal{"hide https://w.test", "Link Account Success", "completion"}));
  EXPECT_EQ(presenter->presentedViewController(), nullptr);

  // Another page stands above, and above the host's window nothing is left in the way.
  browser = page("https://w.test/1");
  auto window = std::exchange(presenter, presenter->presentedViewController());
  page("https://w.test/2");
  presenter = std::move(window);
  journal().clear();
  std::move(browser->closed)();
  EXPECT_EQ(takeJournal(),
            (Journal{"hide https://w.test/2", "Link Account Success", "completion",
                     "hide https://w.test/1", "Link Account Success", "completion"}));
  browser = page("https://w.test/3");
  EXPECT_EQ(takeJournal(), (Journal{"Link Account Webview is Opened", "show https://w.test/3"}));

  // The host keeps the page whose presenter is gone.
  const auto kept = presenter->presentedViewController();
  presenter.reset();
  platform.ui->root.reset();
  std::move(browser->closed)();
  EXPECT_TRUE(journal().empty());
}

TEST_F(Client, OlderSystemsKeepTheirDismissButton) {
  for (const auto& [system, style] :
       {std::pair("10.3.4", std::optional<ZLVDismissButtonStyle>()),
        std::pair("11", std::optional(ZLVDismissButtonStyle::Close)),
        std::pair("12.1", std::optional(ZLVDismissButtonStyle::Close))}) {
    platform.device->system = system;
    charge();
    answer(200, actions(action("user-verification", "https://w.test")));
    EXPECT_EQ(platform.ui->browser->style, style) << system;
    presenter->dismissViewControllerAnimated(false);
  }
}

TEST_F(Client, CallbackUrlWalksToTheTopmostController) {
  const auto openOver = [&](const std::shared_ptr<ZLVViewController>& controller) {
    presenter = controller;
    link();
    answer(200, actions(action("activation-deeplink", "https://w.test")));
    journal().clear();
  };
  const auto isClosedBy = [&](const char* url) {
    ZLVClient::handleCallbackUrl(*ZLVURL::URLWithString(url));
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
  const auto subclass = std::make_shared<Subclass>();
  subclass->pushViewController(top);
  platform.ui->root = subclass;
  openOver(subclass);
  EXPECT_TRUE(isClosedBy("app://done"));

  // A subclass of the browser is not the library's to close.
  subclass->presentViewController(std::make_shared<OtherPage>(), false);
  journal().clear();
  EXPECT_FALSE(isClosedBy("app://done"));

  openOver(top);
  EXPECT_FALSE(isClosedBy("app://done"));
  platform.ui->root = std::make_shared<ZLVNavigationController>();
  EXPECT_FALSE(isClosedBy("app://done"));
  platform.ui->root = nullptr;
  EXPECT_FALSE(isClosedBy("app://done"));

  platform.ui->root = top;
  for (const auto& unusable : {ZLVVendor::Text(), ZLVVendor::Text("")}) {
    ZLVVendor::shared().setCallbackUrl(unusable);
    EXPECT_FALSE(isClosedBy("app://done"));
  }
  ZLVVendor::shared().setCallbackUrl("app://done");
  EXPECT_TRUE(isClosedBy("app://done"));
}

TEST_F(Client, MissingArgumentsAreFaultsBeforeAnythingIsSent) {
  const auto zolva = std::make_shared<ZLVZolvaDetails>();
  const auto transaction = std::make_shared<ZLVTransactionDetails>();
  const auto customer = std::make_shared<ZLVCustomerDetails>();
  const ZLVRecords<ZLVItemDetails> holes(1);
  const auto createWith = [&](const ZLVClient::Text& type, auto z, auto t, auto c, auto items) {
    ZLVClient::createTransactionWithPaymentType(type, nullptr, z, t, c, items,
                                                note<ZLVTransactionResult>());
  };
  const std::shared_ptr<ZLVZolvaDetails> noZolva;
  const std::shared_ptr<ZLVTransactionDetails> noTransaction;
  const std::shared_ptr<ZLVCustomerDetails> noCustomer;
  const ZLVRecords<ZLVItemDetails> none;
  const char* const noText = nullptr;
  const std::pair<const char*, std::function<void()>> calls[] = {
      {"linkAccountWithPaymentType: no payment type",
       [&] {
         ZLVClient::linkAccountWithPaymentType({}, nullptr, nullptr, note<ZLVLinkAccountResult>());
       }},
      {"enquireAccountWithAccountID: no account id",
       [&] { ZLVClient::enquireAccountWithAccountID({}, note<ZLVAccountInfo>()); }},
      {"disableAccountWithAccountID: no account id",
       [&] { ZLVClient::disableAccountWithAccountID(noText, {}); }},
      {"payment type", [&] { createWith(noText, zolva, transaction, customer, none); }},
      {"wallet details", [&] { createWith("t", noZolva, transaction, customer, none); }},
      {"transaction details", [&] { createWith("t", zolva, noTransaction, customer, none); }},
      {"customer details", [&] { createWith("t", zolva, transaction, noCustomer, none); }},
      {"item", [&] { createWith("t", zolva, transaction, customer, holes); }},
      {"disableAccountWithAccountID: no device name",
       [&] {
         platform.device->deviceName.reset();
         disable();
       }},
      {"createTransactionWithPaymentType: no merchant server URL",
       [&] {
         platform.device->deviceName = "Ada's phone";
         ZLVVendor::shared().setMerchantSeverURL(noText);
         createWith("t", zolva, transaction, customer, none);
       }},
      {"initWithMerchantServerURL: no merchant id",
       [&] { ZLVClient::initWithMerchantServerURL("https://x.test", noText, noText, false); }},
      {"enquireAccountWithAccountID: no merchant id", [&] { enquire(); }},
  };
  for (const auto& [missing, call] : calls) {
    try {
      call();
      ADD_FAILURE() << "no fault without " << missing;
    } catch (const ZLVProgrammingFault& fault) {
      EXPECT_NE(std::string(fault.what()).find(missing), std::string::npos) << fault.what();
    }
  }
  platform.queue->drain();
  EXPECT_TRUE(journal().empty());
  EXPECT_TRUE(platform.session.merchant.empty());
}

TEST_F(Client, AFaultOnTheMainThreadStillAnswers) {
  // The answer does not fit its record.
  const std::tuple<std::size_t, const char*, const char*> misfits[] = {
      {0, R"({"actions":"secret"})",
       "a list of records needs an array where the answer has a text"},
      {1, R"({"actions":[null]})",
       "ZLVCreateTransactionActions needs a dictionary where the answer has null"},
      {2, R"({"metadata":1.5})",
       "ZLVAccountMetadata needs a dictionary where the answer has a number"}};
  for (const auto& [index, body, misfit] : misfits) {
    operations[index].call();
    platform.session.merchant.back().answer(200, body);
    EXPECT_THROW(platform.queue->drain(), ZLVProgrammingFault);
    EXPECT_EQ(takeJournal(), index == 2 ? operations[index].passed : Journal());
    platform.queue->drain();
    EXPECT_EQ(takeJournal(), Journal{"completion"});
    EXPECT_EQ(failure->domain(), NSCocoaErrorDomain);
    EXPECT_EQ(failure->code(), NSPropertyListReadCorruptError);
    EXPECT_EQ(failure->localizedDescription(),
              "The answer does not have the expected structure: " + std::string(misfit) + ".");
  }

  // The error's event cannot be recorded.
  for (const bool isLost : {false, true}) {
    const auto name = std::exchange(platform.device->deviceName, "Ada's phone");
    enquire();
    platform.device->deviceName.reset();
    auto task = std::move(platform.session.merchant.back());
    if (!isLost) task.answer(404, "{}");
    task.handler = {};
    EXPECT_THROW(platform.queue->drain(), ZLVProgrammingFault);
    EXPECT_EQ(takeJournal(), Journal{"completion"});
    EXPECT_EQ(failure->code(), isLost ? std::int64_t{NSURLErrorCancelled} : 404);
    platform.device->deviceName = name;
  }

  // The host's completion throws from the page's end.
  ZLVClient::linkAccountWithPaymentType("zolva", nullptr, presenter, [](const auto&, const auto&) {
    throw std::runtime_error("host");
  });
  answer(200, actions(action("activation-deeplink", "https://w.test")));
  presenter->dismissViewControllerAnimated(false);
  EXPECT_THROW(platform.queue->drain(), std::runtime_error);

  // A page needs its callback.
  ZLVWebViewController::initWithURL(*ZLVURL::URLWithString("https://w.test"), {});
  EXPECT_THROW(platform.queue->drain(), ZLVProgrammingFault);
}

/// What `call` throws.
template <class Call>
std::string faultOf(Call call) {
  try {
    call();
  } catch (const ZLVProgrammingFault& fault) {
    return fault.what();
  }
  return "none";
}

TEST(WithoutPlatform, EverythingIsAFaultThatSaysWhatToCall) {
  const std::pair<std::string, std::function<void()>> calls[] = {
      {"initWithMerchantServerURL",
       [] { ZLVClient::initWithMerchantServerURL("https://shop.test", "M", "app://done", false); }},
      {"linkAccountWithPaymentType",
       [] { ZLVClient::linkAccountWithPaymentType("zolva", nullptr, nullptr, {}); }},
      {"enquireAccountWithAccountID", [] { ZLVClient::enquireAccountWithAccountID("a", {}); }},
      {"handleCallbackUrl",
       [] { ZLVClient::handleCallbackUrl(*ZLVURL::URLWithString("app://done")); }}};
  for (const auto& [name, call] : calls) {
    EXPECT_EQ(faultOf(call), name + ": no platform is installed (call ZLVPlatform::install first)");
  }
}

TEST(IncompletePlatform, IsAFaultThatNamesThePart) {
  const FakePlatform fake;
  const auto& whole = ZLVPlatform::installed();
  const std::pair<std::string, std::function<void(ZLVPlatform&)>> parts[] = {
      {"makeURLSession", [](auto& platform) { platform.makeURLSession = {}; }},
      {"mainQueue", [](auto& platform) { platform.mainQueue.reset(); }},
      {"systemLog", [](auto& platform) { platform.systemLog.reset(); }},
      {"device", [](auto& platform) { platform.device.reset(); }},
      {"userInterface", [](auto& platform) { platform.userInterface.reset(); }},
      {"installed already", [](auto&) {}}};
  for (const auto& [part, remove] : parts) {
    auto platform = whole;
    remove(platform);
    const auto fault = faultOf([&] { ZLVPlatform::install(std::move(platform)); });
    EXPECT_TRUE(fault.ends_with(part)) << fault;
  }
}
