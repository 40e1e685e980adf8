// How a shop tests its checkout: a whole journey in a millisecond, without network and window.

#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/Testing/ZLVSandboxPlatform.h>
#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

namespace {

/// The code under test: an application's own, in whatever shape it has.
class Checkout {
 public:
  explicit Checkout(std::shared_ptr<ZLVViewController> window) : window_(std::move(window)) {}

  void linkWallet() {
    status = "linking";
    ZLVClient::linkAccountWithPaymentType(
        "zolva", ZLVPartnerDetails::initWithPhoneNumber("7700900123", "44"), window_,
        [this](const auto& link, const auto& error) {
          if (error) return fail(*error);
          id_ = link->accountID().description();
          ZLVClient::enquireAccountWithAccountID(
              id_, [this](const auto& account, const auto& failure) {
                if (failure) return fail(*failure);
                status = account->accountStatus().description();
                if (status != "ENABLED") return;
                token_ = account->metadata()->paymentOptions()->front()->token().description();
              });
        });
  }

  void pay(double amount) {
    status = "paying";
    ZLVClient::createTransactionWithPaymentType(
        "zolva", window_, ZLVZolvaDetails::initWithAccountID(id_, token_),
        ZLVTransactionDetails::initWithGrossAmount(amount, "order-1", "EUR"),
        ZLVCustomerDetails::initWithPhoneNumber("+447700900123", "Ada", "L", "ada@example.com"), {},
        [this](const auto& paid, const auto& error) {
          if (error) return fail(*error);
          status = paid->transactionStatus().description();
        });
  }

  std::string status;

 private:
  void fail(const ZLVError& error) {
    status = error.requestMayHaveTakenEffect() ? "ask the server" : "failed";
  }

  const std::shared_ptr<ZLVViewController> window_;
  std::string id_;
  std::string token_;
};

class CheckoutTest : public testing::Test {
 protected:
  CheckoutTest() { ZLVSandboxPlatform::configure(); }

  void link() {
    checkout.linkWallet();
    platform.run();
    platform.decide(true);
    platform.run();
  }

  ZLVSandboxPlatform platform;
  Checkout checkout{platform.ui->root};
};

TEST_F(CheckoutTest, LinksAndPays) {
  checkout.linkWallet();
  platform.run();
  EXPECT_EQ(checkout.status, "linking");  // while the page is shown
  EXPECT_EQ(platform.decide(true), "shop://done?result=success");
  platform.run();
  EXPECT_EQ(checkout.status, "ENABLED");

  checkout.pay(12.5);
  platform.run();
  EXPECT_EQ(checkout.status, "settlement");
}

TEST_F(CheckoutTest, TheUserClosesThePage) {
  checkout.linkWallet();
  platform.run();
  EXPECT_TRUE(platform.closePage());
  platform.run();
  EXPECT_EQ(checkout.status, "PENDING");
}

TEST_F(CheckoutTest, TheAnswerToAChargeIsLost) {
  link();
  platform.sandbox.misbehave(
      {.pathPrefix = "/v2/charge"},
      {.interruption = {{ZLVMisbehaviour::Break::Reset, ZLVMisbehaviour::Point::InBody}}});
  checkout.pay(12.5);
  platform.run();
  EXPECT_EQ(checkout.status, "ask the server");
}

TEST_F(CheckoutTest, TheServerIsDown) {
  platform.sandbox.misbehave({.pathPrefix = "/v2/"}, {.status = 503, .body = "{}"});
  checkout.linkWallet();
  platform.run();
  EXPECT_EQ(checkout.status, "ask the server");
}

}  // namespace
