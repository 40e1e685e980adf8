// The ready-made main queues: one contract for all, then what each has of its own.

#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <boost/asio/bind_executor.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/use_future.hpp>
#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/EventLoops/ZLVAsioMainQueue.h>
#include <ZolvaCheckoutKit/EventLoops/ZLVAsioOperations.h>
#include <ZolvaCheckoutKit/EventLoops/ZLVFrameMainQueue.h>
#ifdef ZLV_HAS_QT
#include <ZolvaCheckoutKit/EventLoops/ZLVQtMainQueue.h>
#endif

#include "Tests/Support/FakePlatform.h"

namespace {

using std::chrono::milliseconds;

/// Each loop as the host runs it: `turn` runs what is ready and may throw what a block throws.
struct FrameLoop {
  void turn() const {
    if (queue) queue->drain();
  }
  std::shared_ptr<ZLVFrameMainQueue> queue = std::make_shared<ZLVFrameMainQueue>();
};
/// With the hint that makes a context keep what its own thread posts to itself.
struct AsioLoop {
  void turn() {
    context.restart();
    context.poll();
  }
  boost::asio::io_context context{1};
  std::shared_ptr<ZLVAsioMainQueue> queue = std::make_shared<ZLVAsioMainQueue>(context);
};
#ifdef ZLV_HAS_QT
struct QtLoop {
  void turn() {
    QCoreApplication::processEvents();
    if (thrown) std::rethrow_exception(std::exchange(thrown, {}));
  }
  int argc = 1;
  std::string name = "tests";
  std::vector<char*> argv{name.data(), nullptr};
  QCoreApplication application{argc, argv.data()};
  std::exception_ptr thrown;
  std::shared_ptr<ZLVQtMainQueue> queue =
      std::make_shared<ZLVQtMainQueue>([this](std::exception_ptr e) { thrown = std::move(e); });
};
using Loops = testing::Types<FrameLoop, AsioLoop, QtLoop>;
#else
using Loops = testing::Types<FrameLoop, AsioLoop>;
#endif

/// In the fake platform's main queue's place.
struct Forward final : ZLVFakeMainQueue {
  explicit Forward(std::shared_ptr<ZLVMainQueue> queue) : target(std::move(queue)) {}
  void dispatch(ZLVOnce<void()> block) override { target->dispatch(std::move(block)); }
  std::shared_ptr<ZLVMainQueue> target;
};

template <class Loop>
class EventLoop : public testing::Test {
 protected:
  Loop loop;
  ZLVMainQueue& queue() { return *loop.queue; }
};
TYPED_TEST_SUITE(EventLoop, Loops);

TYPED_TEST(EventLoop, RunsBlocksLaterInOrderOnItsThread) {
  auto& queue = this->queue();
  const auto mainThread = std::this_thread::get_id();
  constexpr int each = 2000;
  constexpr int threads = 4;
  std::vector<int> last(threads + 1, -1);
  int ran = 0;
  const auto dispatchFrom = [&](std::size_t thread, int i) {
    queue.dispatch([&, thread, i] {
      EXPECT_EQ(std::this_thread::get_id(), mainThread);
      EXPECT_EQ(last[thread]++, i - 1);
      ++ran;
    });
  };
  std::vector<std::thread> others;
  for (std::size_t thread = 0; thread < threads; ++thread) {
    others.emplace_back([&, thread] {
      for (int i = 0; i < each; ++i) dispatchFrom(thread, i);
    });
  }
  for (int i = 0; i < each; ++i) {  // from inside a block
    queue.dispatch([&, i] {
      const int before = ran;
      dispatchFrom(threads, i);
      EXPECT_EQ(ran, before);
    });
  }
  EXPECT_EQ(ran, 0);
  while (ran < each * (threads + 1)) this->loop.turn();
  for (auto& other : others) other.join();

  // Another thread's block that comes after this one's runs after it.
  std::string order;
  queue.dispatch([&] {
    queue.dispatch([&] { order += 'a'; });
    std::thread([&] { queue.dispatch([&] { order += 'b'; }); }).join();
  });
  while (order.size() < 2) this->loop.turn();
  EXPECT_EQ(order, "ab");
}

TYPED_TEST(EventLoop, GoesOnAfterWhatABlockThrows) {
  std::string order;
  for (const char c : {'a', '!', 'b', '!', 'c'}) {
    this->queue().dispatch([&order, c] {
      if (c == '!') throw std::runtime_error("a block");
      order += c;
    });
  }
  int thrown = 0;
  for (int turn = 0; turn < 5; ++turn) {
    try {
      this->loop.turn();
    } catch (const std::runtime_error&) {
      ++thrown;
    }
  }
  EXPECT_EQ(order, "abc");
  EXPECT_GE(thrown, 1);  // Qt's handler keeps the last
}

TYPED_TEST(EventLoop, RunsUntilNothingIsUnderWay) {
  FakePlatform fake;
  auto& queue = *this->loop.queue;
  fake.queue = std::make_shared<Forward>(this->loop.queue);
  const auto runs = [&](milliseconds limit) { return queue.runUntilIdle(limit); };
  EXPECT_TRUE(runs(milliseconds::min()));
  std::string order;
  {
    const ZLVActivity activity;
    queue.dispatch([&] { order += 'a'; });
    EXPECT_FALSE(runs(milliseconds::min()));
    EXPECT_FALSE(runs(milliseconds(1)));
    EXPECT_EQ(order, "a");
  }
  // What a block starts counts, and a block may wait itself, for what stands behind it.
  std::optional<ZLVActivity> late;
  queue.dispatch([&] {
    late.emplace();
    queue.dispatch([&] { late.reset(); });
    EXPECT_TRUE(runs(milliseconds::max()));
  });
  EXPECT_TRUE(runs(milliseconds::max()));
  EXPECT_FALSE(late);
  // The last one ends on another thread while this one sleeps, or is about to.
  for (int i = 0; i < 300; ++i) {
    std::atomic<bool> isRunning = false;
    std::thread other([activity = ZLVActivity(), &isRunning]() mutable {
      isRunning.wait(false);
      activity.end();
    });
    queue.dispatch([&] {
      isRunning = true;
      isRunning.notify_one();
    });
    EXPECT_TRUE(runs(milliseconds::max()));
    other.join();
  }
}

TYPED_TEST(EventLoop, DestroysWhatNeverRuns) {
  const auto alive = std::make_shared<int>();
  auto& queue = this->queue();
  // What goes with a block may dispatch once more.
  const auto last = [&queue, alive](int*) { queue.dispatch([alive] {}); };
  queue.dispatch([held = std::shared_ptr<int>(nullptr, last)] { FAIL(); });
  this->loop.queue.reset();
  EXPECT_EQ(alive.use_count(), 2);  // the deleter, here, and this
  this->loop.turn();
}

TEST(AsioQueue, TheContextGoesFirst) {
  auto context = std::make_unique<boost::asio::io_context>();
  ZLVAsioMainQueue queue(*context);
  const auto alive = std::make_shared<int>();
  const auto give = [&] { queue.dispatch([alive] { FAIL(); }); };
  // A handler that goes with the context dispatches, too.
  boost::asio::post(*context, [held = std::shared_ptr<int>(nullptr, [&](int*) { give(); })] {});
  std::thread other([&] {
    for (int i = 0; i < 10'000; ++i) give();
  });
  give();
  context.reset();
  other.join();
  give();
  EXPECT_FALSE(queue.runUntilIdle(milliseconds::max()));
  EXPECT_EQ(alive.use_count(), 1 + 10'000 + 3);
}

#ifdef ZLV_HAS_QT
TEST(QtQueue, TheApplicationGoesFirst) {
  auto loop = std::make_unique<QtLoop>();
  const auto queue = loop->queue;
  std::string order;
  queue->dispatch([&] { order += 'a'; });
  loop.reset();
  queue->dispatch([&] { order += 'b'; });
  EXPECT_FALSE(queue->runUntilIdle(milliseconds::max()));
  loop = std::make_unique<QtLoop>();
  queue->dispatch([&] { order += 'c'; });
  loop->turn();
  EXPECT_EQ(order, "abc");
}

TEST(QtQueueDeathTest, WhatNobodyTakesEndsTheProcess) {
  EXPECT_DEATH(
      {
        QtLoop loop;
        ZLVQtMainQueue queue;
        queue.dispatch([] { throw std::runtime_error("a block"); });
        loop.turn();
      },
      "a block");
}
#endif

TEST(AsioOperations, AnswerAsTheTokenHasIt) {
  FakePlatform fake;
  AsioLoop loop;
  fake.queue = std::make_shared<Forward>(loop.queue);
  FakePlatform::configure();
  const auto answer = [&](int status) {
    ASSERT_FALSE(fake.session.merchant.empty());
    fake.session.merchant.back().answer(status, R"({"account_id": "acc-1"})");
    fake.session.merchant.pop_back();
  };
  const auto enquiry = [] { return ZLVAwait::enquireAccount("acc-1"); };
  Journal journal;
  const auto note = [&](const ZLVResult<ZLVAccountInfo>& result) {
    journal.push_back(result ? result->accountID().description()
                             : std::to_string(result.error().code()));
  };

  // A function; one that is bound to an executor of another thread.
  ZLVAsio::async(enquiry(), [&, only = std::make_unique<int>()](auto result) { note(result); });
  answer(200);
  EXPECT_TRUE(journal.empty());
  loop.turn();
  EXPECT_EQ(std::exchange(journal, {}), Journal{"acc-1"});
  boost::asio::thread_pool pool(1);
  ZLVAsio::async(enquiry(), boost::asio::bind_executor(pool, [&](auto result) {
                   EXPECT_TRUE(pool.get_executor().running_in_this_thread());
                   note(result);
                 }));
  answer(404);
  loop.turn();
  pool.join();
  EXPECT_EQ(std::exchange(journal, {}), Journal{"404"});

  auto future = ZLVAsio::async(enquiry(), boost::asio::use_future);
  answer(200);
  loop.turn();
  note(future.get());
  EXPECT_EQ(std::exchange(journal, {}), Journal{"acc-1"});

  // A coroutine goes on in the context; a call that the session loses is an error; a missing
  // argument ends the coroutine.
  boost::asio::co_spawn(
      loop.context,
      [&]() -> boost::asio::awaitable<void> {
        note(co_await ZLVAsio::async(enquiry(), boost::asio::use_awaitable));
        note(co_await ZLVAsio::async(enquiry(), boost::asio::use_awaitable));
        co_await ZLVAsio::async(ZLVAwait::enquireAccount({}), boost::asio::use_awaitable);
        journal.emplace_back("after the fault");
      },
      boost::asio::detached);
  loop.turn();
  answer(200);
  loop.turn();
  fake.session.merchant.clear();
  EXPECT_THROW(loop.turn(), ZLVProgrammingFault);
  loop.turn();
  EXPECT_EQ(journal, (Journal{"acc-1", std::to_string(NSURLErrorCancelled)}));
  EXPECT_THROW(ZLVAsio::async(ZLVAwait::enquireAccount({}), [](auto) {}), ZLVProgrammingFault);
}

}  // namespace
