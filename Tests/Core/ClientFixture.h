#pragma once

// A host of the facade over the fakes: its calls in every form, and what they came to.

#include <gtest/gtest.h>

#include "Tests/Support/FakePlatform.h"
#include "ZolvaCheckoutKit/Core/Checkout/ZLVWebViewController.h"
#include "ZolvaCheckoutKit/ZLVAwait.h"

inline const std::string page = "https://w.test";

inline std::string actions(const std::string& list) {
  return R"({"status_code":"201","actions":[)" + list + "]}";
}
inline std::string action(const std::string& name, const std::string& url = page) {
  return R"({"name":")" + name + R"(","method":"GET","url":")" + url + "\"}";
}

/// What `call` throws.
inline std::string faultOf(const std::function<void()>& call) {
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
