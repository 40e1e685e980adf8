#include "Tests/Core/ClientFixture.h"

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
  struct Request {
    std::function<void()> call;
    std::string sent;
    /// How often the user interface is told that a page may follow.
    int hints = 0;
  };
  const Request requests[] = {
      {[&] { enquire(); }, "GET pay/account/abc "},
      {[&] { disable(); }, "POST pay/account/abc/unbind "},
      {[&] { link(); },
       R"(POST pay/account {"payment_type":"zolva","zolva_partner":{"country_code":"1",)"
       R"("phone_number":"5550123","redirect_url":"app://done"}})",
       1},
      {[] { ZLVClient::linkAccountWithPaymentType("zolva", nullptr, nullptr, {}); },
       R"(POST pay/account {"payment_type":"zolva"})"},
      {[&] { charge(); }, charged + rest, 1},
      {[&] { charge(std::vector<std::shared_ptr<ZLVItemDetails>>{}); },
       charged + R"("item_details":[],)" + rest, 1},
      {[&] {
         charge(std::vector{item("1"), item("2")});
       },
       charged + R"("item_details":[{"id":"1"},{"id":"2"}],)" + rest, 1},
  };
  const std::string root = "https://shop.test/pay/v2/";
  for (const auto& [call, expected, hints] : requests) {
    call();
    EXPECT_EQ(platform.ui->preparations, 0);  // no hint but in its turn on the main thread
    platform.queue->drain();
    EXPECT_EQ(std::exchange(platform.ui->preparations, 0), hints) << expected;
    const auto& request = platform.session.merchant.back().request;
    const auto url = request.URL->absoluteString();
    EXPECT_TRUE(url.starts_with(root)) << url;
    EXPECT_EQ(
        request.HTTPMethod + " " + url.substr(root.size()) + " " + request.HTTPBody.value_or(""),
        expected);
  }
  listener = Listener::Coroutine;  // the same; a charge without items leaves them out
  for (const auto index : {0U, 1U, 2U, 4U, 6U}) {
    requests[index].call();
    const auto& sent = platform.session.merchant;
    EXPECT_EQ(sent.back().request.HTTPBody, sent[index].request.HTTPBody);
    EXPECT_EQ(sent.back().request.URL->absoluteString(), sent[index].request.URL->absoluteString());
    answer(200, "{}");  // or the coroutine would wait for ever
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
