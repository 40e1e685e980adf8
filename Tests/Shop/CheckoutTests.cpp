// The shop's checkout when answers come late, in another order or not at all.

#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/Testing/ZLVFakePlatform.h>

#include "Apps/Shop/Checkout/Checkout.h"

namespace {

constexpr const char* linked = R"({"account_id":"A-1","account_status":"ENABLED","metadata":
  {"payment_options":[{"name":"BALANCE","token":"T-1","active":true,
                       "balance":{"value":"100.00","currency":"EUR"}}]}})";
constexpr const char* settled =
    R"({"status_code":"200","transaction_status":"settlement","gross_amount":"2.40"})";
constexpr const char* toBeVerified = R"({"status_code":"201","transaction_status":"pending",
  "actions":[{"name":"user-verification","method":"GET","url":"https://wallet.test/verify"}]})";

class ShopCheckout : public testing::Test {
 protected:
  ShopCheckout() {
    ZLVClient::initWithMerchantServerURL("https://shop.test", "M-1", "shop://done", false);
    checkout.setViewController(platform.ui->root);
    checkout.setEvents({.busy = [this](const char* activity) { isBusy = activity != nullptr; },
                        .failed = [this](const Problem& problem,
                                         const auto&) { problems.push_back(problem.title); }});
    checkout.link("5550123", "1");
    answer(0, 200, R"({"status_code":"200","account_id":"A-1"})");
    answer(1, 200, linked);
    basket.add(0, 1);
  }

  /// What the server says to the call that was made as this one, from 0.
  void answer(std::size_t call, int status, const char* body) {
    platform.queue->drain();
    platform.session.merchant.at(call).answer(status, body);
    platform.queue->drain();
  }
  void fail(std::size_t call, std::int64_t code) {
    platform.session.merchant.at(call).fail(code);
    platform.queue->drain();
  }
  void pay() { checkout.pay(checkout.account()->options.front()); }
  Order& order() { return orders.all().front(); }

  ZLVFakePlatform platform;
  Basket basket;
  Orders orders;
  Checkout checkout{basket, orders};
  bool isBusy = false;
  std::vector<std::string> problems;
};

TEST_F(ShopCheckout, CountsAnAnswerThatComesAfterAll) {
  pay();
  EXPECT_TRUE(isBusy);
  checkout.stopWaiting();
  EXPECT_FALSE(isBusy);
  EXPECT_EQ(order().state, Order::State::Uncertain);
  EXPECT_FALSE(basket.isEmpty());
  answer(2, 201, settled);
  EXPECT_EQ(order().state, Order::State::Paid);
  EXPECT_TRUE(basket.isEmpty());
  // Nothing that the server says later makes it unpaid.
  checkout.check(order());
  answer(3, 404, "{}");
  EXPECT_EQ(order().state, Order::State::Paid);
}

TEST_F(ShopCheckout, WaitsForASecondTryWhateverBecomesOfTheFirst) {
  pay();
  checkout.stopWaiting();
  const auto number = order().id;
  checkout.payAgain(order());
  // The first answer comes now, and what it leads to ends, while the second try is under way.
  answer(2, 201, toBeVerified);
  ASSERT_NE(platform.ui->browser, nullptr);
  platform.queue->dispatch(std::move(platform.ui->browser->closed));
  platform.queue->drain();
  answer(4, 200, R"({"transaction_status":"pending"})");
  EXPECT_TRUE(isBusy);
  checkout.stopWaiting();
  EXPECT_FALSE(isBusy);
  EXPECT_EQ(order().state, Order::State::Uncertain);
  // The number stays, so one of them at most is paid.
  checkout.payAgain(order());
  answer(5, 200, settled);
  EXPECT_EQ(order().state, Order::State::Paid);
  EXPECT_EQ(order().id, number);
  EXPECT_EQ(orders.all().size(), 1U);
}

TEST_F(ShopCheckout, LeavesOpenWhatARefusalDoesNotSettle) {
  pay();
  fail(2, NSURLErrorNetworkConnectionLost);
  EXPECT_EQ(order().state, Order::State::Uncertain);
  checkout.payAgain(order());
  answer(3, 402, "{}");
  answer(4, 200, linked);
  EXPECT_EQ(order().state, Order::State::Uncertain);
  checkout.payAgain(order());
  answer(5, 406, "{}");  // it is paid already, the server will say how
  answer(6, 200, settled);
  EXPECT_EQ(order().state, Order::State::Paid);
}

TEST_F(ShopCheckout, ForgetsABalanceOfAnAccountThatIsGone) {
  checkout.refresh();
  checkout.stopWaiting();
  EXPECT_EQ(problems, std::vector<std::string>{"The shop does not answer"});
  checkout.unlink();
  answer(3, 204, "{}");
  EXPECT_FALSE(checkout.account());
  answer(2, 200, linked);
  EXPECT_FALSE(checkout.account());
}

}  // namespace
