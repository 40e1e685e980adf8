#include <gtest/gtest.h>

#include "Tests/Support/FakePlatform.h"
#include "ZolvaCheckoutKit/Core/Checkout/ZLVWebViewController.h"
#include "ZolvaCheckoutKit/ZLVAwait.h"

namespace {

const std::string page = "https://w.test";

std::string actions(const std::string& list) {
  return R"({"status_code":"201","actions":[)" + list + "]}";
}
std::string action(const std::string& name, const std::string& url = page) {
  return R"({"name":")" + name + R"(","method":"GET","url":")" + url + "\"}";
}

/// What `call` throws.
std::string faultOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const ZLVProgrammingFault& fault) {
    return fault.what();
  }
  return "none";
}

class Client : public testing::Test {
 protected:
  void SetUp() override {
    FakePlatform::configure();
    platform.ui->root = presenter;
  }

  /// Events hold the six facts of the device and, those of errors alone, the error's description.
  void TearDown() override {
    for (const auto& upload : platform.session.analytics) {
      const auto records = FakePlatform::recordsOf(upload.request);
      const auto& event = *records[0].dictionary();
      if (event["type"] == ZLVValue("profile")) continue;
      const auto& data = *event["evtData"].dictionary();
      const bool isError = event["evtName"].description().ends_with(" Error");
      EXPECT_EQ(data.size(), isError ? 7U : 6U) << records[0].description();
      EXPECT_EQ(data["details"].description().starts_with("Error Domain="), isError);
    }
  }

  /// Who waits for the answers.
  enum class Listener { Completion, Nobody, Coroutine };

  /// A completion that notes its call in the journal; an empty one while nobody listens.
  template <class Record>
  ZLVCompletionHandler<Record> note() {
    if (listener == Listener::Nobody) return {};
    return [this](std::shared_ptr<Record> record, const std::optional<ZLVError>& error) {
      EXPECT_NE(record == nullptr, !error);
      result = record;
      failure = error;
      journal().push_back("completion");
    };
  }
  template <class Record>
  ZLVDetached wait(ZLVAwaitable<Record> operation) {
    const auto outcome = co_await operation;
    note<Record>()(outcome ? outcome.record() : nullptr,
                   outcome ? std::nullopt : std::optional(outcome.error()));
  }
  void link() {
    auto details = ZLVPartnerDetails::initWithPhoneNumber("5550123", "1");
    if (listener == Listener::Coroutine) {
      wait(ZLVAwait::linkAccount("zolva", details, presenter));
    } else {
      ZLVClient::linkAccountWithPaymentType("zolva", details, presenter,
                                            note<ZLVLinkAccountResult>());
    }
  }
  void charge(ZLVRecords<ZLVItemDetails> items = {}) {
    if (listener == Listener::Coroutine) {
      const ZLVRecords<ZLVItemDetails>& given = items;
      ZLVCharge charge{.paymentType = "zolva",
                       .accountID = "acc",
                       .paymentOptionToken = "tok",
                       .grossAmount = 10000,
                       .orderID = "o-1",
                       .currency = "EUR",
                       .phoneNumber = "5550123",
                       .firstName = "Ada",
                       .lastName = "L",
                       .email = "a@b.c",
                       .viewController = presenter};
      for (std::size_t i = 0; given && i < given->size(); ++i) {
        charge.items.push_back({.itemID = (*given)[i]->itemID()});
      }
      wait(ZLVAwait::createTransaction(std::move(charge)));
      return;
    }
    ZLVClient::createTransactionWithPaymentType(
        "zolva", presenter, ZLVZolvaDetails::initWithAccountID("acc", "tok"),
        ZLVTransactionDetails::initWithGrossAmount(10000, "o-1", "EUR"),
        ZLVCustomerDetails::initWithPhoneNumber("5550123", "Ada", "L", "a@b.c"), std::move(items),
        note<ZLVTransactionResult>());
  }
  void enquire() {
    if (listener == Listener::Coroutine) {
      wait(ZLVAwait::enquireAccount("abc"));
    } else {
      ZLVClient::enquireAccountWithAccountID("abc", note<ZLVAccountInfo>());
    }
  }
  void disable() {
    if (listener == Listener::Coroutine) {
      wait(ZLVAwait::disableAccount("abc"));
    } else {
      ZLVClient::disableAccountWithAccountID("abc", note<ZLVDisableAccountResult>());
    }
  }
  void answer(int status, const std::string& body) {
    platform.session.merchant.back().answer(status, body);
    platform.queue->drain();
  }
  Journal& journal() { return platform.ui->journal; }
  Journal takeJournal() { return std::exchange(journal(), {}); }
  /// Links and is shown a page. Returns what happened.
  Journal openPage(const std::string& url = page) {
    link();
    answer(200, actions(action("activation-deeplink", url)));
    return takeJournal();
  }
  static void handle(const char* url) { ZLVClient::handleCallbackUrl(*ZLVURL::URLWithString(url)); }

  FakePlatform platform;
  std::shared_ptr<ZLVViewController> presenter = std::make_shared<ZLVViewController>();
  std::shared_ptr<ZLVMappable> result;
  std::optional<ZLVError> failure;
  Listener listener = Listener::Completion;

  /// The operations, what their events are called after, and the actions of those with a page.
  struct Operation {
    std::function<void()> call;
    std::string name;
    const char* action = nullptr;
    const char* otherAction = nullptr;
    Journal passed{name + " Success"};
    std::string failed = name + " Error";
  };
  const Operation operations[4] = {
      {[this] { link(); }, "Link Account", "activation-deeplink", "user-verification"},
      {[this] { charge(); }, "Create Transaction", "user-verification", "activation-deeplink", {}},
      {[this] { enquire(); }, "Enquire Account"},
      {[this] { disable(); }, "Unlink Account"}};
};

}  // namespace

TEST_F(Client, SendsItsRequests) {
  const std::string charged = R"(POST charge {"customer_details":{"email":"a@b.c",)"
                              R"("first_name":"Ada","last_name":"L","phone":"5550123"},)";
  const std::string rest =
      R"("payment_type":"zolva","transaction_details":{"currency":"EUR","gross_amount":10000,)"
      R"("order_id":"o-1"},"zolva":{"account_id":"acc","callback_url":"app://done",)"
      R"("enable_callback":true,"payment_option_token":"tok"}})";
  const auto item = [](const char* id) {
    return ZLVItemDetails::initWithIthItemID(id, {}, {}, {}, {});
  };
  const std::pair<std::function<void()>, std::string> requests[] = {
      {[&] { enquire(); }, "GET pay/account/abc "},
      {[&] { disable(); }, "POST pay/account/abc/unbind "},
      {[&] { link(); },
       R"(POST pay/account {"payment_type":"zolva","zolva_partner":{"country_code":"1",)"
       R"("phone_number":"5550123","redirect_url":"app://done"}})"},
      {[] { ZLVClient::linkAccountWithPaymentType("zolva", nullptr, nullptr, {}); },
       R"(POST pay/account {"payment_type":"zolva"})"},
      {[&] { charge(); }, charged + rest},
      {[&] { charge(std::vector<std::shared_ptr<ZLVItemDetails>>{}); },
       charged + R"("item_details":[],)" + rest},
      {[&] {
         charge(std::vector{item("1"), item("2")});
       },
       charged + R"("item_details":[{"id":"1"},{"id":"2"}],)" + rest},
  };
  const std::string root = "https://shop.test/pay/v2/";
  for (const auto& [call, expected] : requests) {
    call();
    const auto& request = platform.session.merchant.back().request;
    const auto url = request.URL->absoluteString();
    EXPECT_TRUE(url.starts_with(root)) << url;
    EXPECT_EQ(
        request.HTTPMethod + " " + url.substr(root.size()) + " " + request.HTTPBody.value_or(""),
        expected);
  }
  listener = Listener::Coroutine;  // the same; a charge without items leaves them out
  for (const auto index : {0U, 1U, 2U, 4U, 6U}) {
    requests[index].first();
    const auto& sent = platform.session.merchant;
    EXPECT_EQ(sent.back().request.HTTPBody, sent[index].request.HTTPBody);
    EXPECT_EQ(sent.back().request.URL->absoluteString(), sent[index].request.URL->absoluteString());
  }
}

namespace {

/// A coroutine that its owner can end.
struct Owned {
  struct promise_type {
    Owned get_return_object() { return {std::coroutine_handle<promise_type>::from_promise(*this)}; }
    static std::suspend_never initial_suspend() noexcept { return {}; }
    static std::suspend_always final_suspend() noexcept { return {}; }
    static void return_void() noexcept {}
    static void unhandled_exception() { throw; }
  };
  std::coroutine_handle<promise_type> handle;
};

}  // namespace

TEST_F(Client, ACoroutineMayEndWhileItWaitsAndMeetsFaultsWhereItStands) {
  bool hasGoneOn = false;
  const auto waitingFor = [&](ZLVAwaitable<ZLVAccountInfo> operation) -> Owned {
    co_await operation;
    hasGoneOn = true;
  };
  const auto owned = waitingFor(ZLVAwait::enquireAccount("abc"));
  owned.handle.destroy();
  answer(200, "{}");
  EXPECT_FALSE(hasGoneOn);
  EXPECT_EQ(takeJournal(), Journal{"Enquire Account Success"});

  std::string fault;
  const auto charge = [&]() -> ZLVDetached {
    try {
      co_await ZLVAwait::createTransaction({.accountID = "acc", .firstName = "Ada"});
    } catch (const ZLVProgrammingFault& thrown) {
      fault = thrown.what();
    }
  };
  charge();
  EXPECT_EQ(fault, "createTransactionWithPaymentType: no payment type");
}

TEST_F(Client, RecordsTheEventBeforeItCompletesIfAnyoneListens) {
  for (const auto& operation : operations) {
    for (const auto each : {Listener::Completion, Listener::Nobody, Listener::Coroutine}) {
      listener = each;
      const bool listens = each != Listener::Nobody;
      const auto expectAnswer = [&](Journal events) {
        if (listens) events.emplace_back("completion");
        EXPECT_EQ(takeJournal(), events);
      };
      const auto expectFailure = [&](const char* description) {
        expectAnswer({operation.failed});
        const auto upload = platform.lastUpload();
        const auto details =
            (*(*upload[0].dictionary())["evtData"].dictionary())["details"].description();
        EXPECT_NE(details.find(description), std::string::npos) << details;
        EXPECT_EQ(listens ? failure->debugDescription() : details, details);
      };
      operation.call();
      answer(204, R"({"status_code":"200","account_id":"abc"})");
      expectAnswer(operation.passed);
      operation.call();
      answer(404, R"({"status_message":"Unknown"})");
      expectFailure("Code=404 \"Unknown\"");
      operation.call();
      answer(200, "[]");
      expectFailure("The answer is not a JSON object.");

      // The session loses the call.
      operation.call();
      platform.session.merchant.back().handler = {};
      EXPECT_TRUE(journal().empty());
      platform.queue->drain();
      expectFailure("NSURLErrorDomain Code=-999");

      if (operation.action == nullptr) continue;
      operation.call();
      answer(200, actions(action(operation.action)));
      EXPECT_EQ(takeJournal(), (Journal{operation.name + " Webview is Opened", "show " + page}));
      std::move(platform.ui->browser->closed)();
      expectAnswer({"hide " + page, operation.name + " Success"});
      operation.call();
      answer(200, actions(action(operation.otherAction)));
      expectFailure("url is null");
    }
  }
}

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

TEST_F(Client, MissingArgumentsAreFaultsBeforeAnythingIsSent) {
  const auto zolva = std::make_shared<ZLVZolvaDetails>();
  const auto transaction = std::make_shared<ZLVTransactionDetails>();
  const auto customer = std::make_shared<ZLVCustomerDetails>();
  const ZLVRecords<ZLVItemDetails> holes(1);
  const char* const noText = nullptr;
  const auto createWith = [&](const ZLVClient::Text& type, auto z, auto t, auto c,
                              const ZLVRecords<ZLVItemDetails>& items = {}) {
    ZLVClient::createTransactionWithPaymentType(type, nullptr, z, t, c, items, {});
  };
  const std::pair<const char*, std::function<void()>> calls[] = {
      {"linkAccountWithPaymentType: no payment type",
       [] { ZLVClient::linkAccountWithPaymentType({}, nullptr, nullptr, {}); }},
      {"enquireAccountWithAccountID: no account id",
       [&] { ZLVClient::enquireAccountWithAccountID({}, note<ZLVAccountInfo>()); }},
      {"disableAccountWithAccountID: no account id",
       [&] { ZLVClient::disableAccountWithAccountID(noText, {}); }},
      {"payment type", [&] { createWith(noText, zolva, transaction, customer); }},
      {"wallet details", [&] { createWith("t", nullptr, transaction, customer); }},
      {"transaction details", [&] { createWith("t", zolva, nullptr, customer); }},
      {"customer details", [&] { createWith("t", zolva, transaction, nullptr); }},
      {"item", [&] { createWith("t", zolva, transaction, customer, holes); }},
      {"createTransactionWithPaymentType: no merchant server URL",
       [&] {
         ZLVVendor::shared().setMerchantSeverURL(noText);
         createWith("t", zolva, transaction, customer);
       }},
      {"initWithMerchantServerURL: no merchant id",
       [&] { ZLVClient::initWithMerchantServerURL("https://x.test", noText, noText, false); }},
      {"enquireAccountWithAccountID: no merchant id", [&] { enquire(); }},
      {"disableAccountWithAccountID: no device name",
       [&] {
         ZLVVendor::shared().setMerchantId("M1");
         platform.device->deviceName.reset();
         disable();
       }},
  };
  for (const auto& [missing, call] : calls) {
    EXPECT_NE(faultOf(call).find(missing), std::string::npos) << missing;
  }
  EXPECT_EQ(ZLVVendor::shared().merchantSeverURL(), "https://x.test");
  platform.queue->drain();
  EXPECT_TRUE(journal().empty() && platform.session.merchant.empty());
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
    EXPECT_TRUE(failure->debugDescription().starts_with(
        "Error Domain=NSCocoaErrorDomain Code=3840 \"The answer does not have the expected "
        "structure: " +
        std::string(misfit) + ".\""))
        << failure->debugDescription();
  }

  // The error's event cannot be recorded: first when the answer comes, then when the call is lost.
  for (const std::int64_t code : {std::int64_t{404}, std::int64_t{NSURLErrorCancelled}}) {
    const auto name = platform.device->deviceName;
    enquire();
    platform.device->deviceName.reset();
    auto task = std::move(platform.session.merchant.back());
    if (code == 404) task.answer(404, "{}");
    task.handler = {};
    EXPECT_THROW(platform.queue->drain(), ZLVProgrammingFault);
    EXPECT_EQ(takeJournal(), Journal{"completion"});
    EXPECT_EQ(failure->code(), code);
    platform.device->deviceName = name;
  }

  // The host's completion throws from the page's end.
  ZLVClient::linkAccountWithPaymentType("zolva", nullptr, presenter, [](const auto&, const auto&) {
    throw std::runtime_error("host");
  });
  answer(200, actions(action("activation-deeplink")));
  presenter->dismissViewControllerAnimated(false);
  EXPECT_THROW(platform.queue->drain(), std::runtime_error);

  // A page needs its callback.
  ZLVWebViewController::initWithURL(*ZLVURL::URLWithString(page), {});
  EXPECT_THROW(platform.queue->drain(), ZLVProgrammingFault);
}

TEST(WithoutPlatform, EverythingIsAFaultThatSaysWhatToCall) {
  const std::pair<std::string, std::function<void()>> calls[] = {
      {"initWithMerchantServerURL", [] { FakePlatform::configure(); }},
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
  const std::pair<std::string, std::function<void(ZLVPlatform&)>> parts[] = {
      {"makeURLSession", [](auto& platform) { platform.makeURLSession = {}; }},
      {"mainQueue", [](auto& platform) { platform.mainQueue.reset(); }},
      {"systemLog", [](auto& platform) { platform.systemLog.reset(); }},
      {"device", [](auto& platform) { platform.device.reset(); }},
      {"userInterface", [](auto& platform) { platform.userInterface.reset(); }},
      {"installed already", [](auto&) {}}};
  for (const auto& [part, remove] : parts) {
    auto platform = ZLVPlatform::installed();
    remove(platform);
    const auto fault = faultOf([&] { ZLVPlatform::install(std::move(platform)); });
    EXPECT_TRUE(fault.ends_with(part)) << fault;
  }
}

TEST(FakePlatforms, LeaveNothingBehind) {
  const auto isIdle = [] { return ZLVActivity::runUntilIdle({}, [](auto) {}); };
  int answered = 0;
  const auto link = [&] {
    ZLVClient::linkAccountWithPaymentType(
        "zolva", nullptr, ZLVPlatform::installed().userInterface->keyWindowRootViewController(),
        [&](const auto&, const auto&) { ++answered; });
  };
  const std::pair<int, std::function<void(FakePlatform&)>> ends[] = {
      {0, [](FakePlatform&) {}},
      {0, [](FakePlatform& fake) { fake.session.merchant.back().answer(500, "{}"); }},
      {0, [](FakePlatform& fake) { fake.session.merchant.clear(); }},
      {1, [](FakePlatform& fake) {
         fake.session.merchant.back().answer(201, actions(action("activation-deeplink")));
         fake.queue->drain();
         EXPECT_NE(fake.ui->browser, nullptr);
       }}};
  for (const auto& [answers, end] : ends) {
    answered = 0;
    {
      FakePlatform fake;
      EXPECT_THROW(FakePlatform(), ZLVProgrammingFault);
      fake.ui->root = std::make_shared<ZLVViewController>();
      EXPECT_TRUE(fake.session.analytics.empty() && fake.ui->journal.empty() && isIdle());
      EXPECT_FALSE(ZLVVendor::shared().callbackUrl());
      FakePlatform::configure();
      link();
      end(fake);
      EXPECT_FALSE(isIdle());
    }
    EXPECT_EQ(answered, answers);
  }
}
