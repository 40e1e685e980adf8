#pragma once

#include <memory>

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>

#include <ZolvaCheckoutKit/EventLoops/ZLVFrameMainQueue.h>

/// The main queue for Boost.Asio: the thread that runs the context is the main thread; what a block
/// throws leaves through `run`. Once the context is gone nothing runs any more.
class ZLVAsioMainQueue final : public ZLVMainQueue {
 public:
  /// Of the context that it keeps a reference to.
  explicit ZLVAsioMainQueue(boost::asio::io_context& context)
      : context_(context), life_(boost::asio::use_service<Service>(context).life) {}
  ~ZLVAsioMainQueue() override { blocks_->clear(); }

  void dispatch(ZLVOnce<void()> block) override {
    blocks_->dispatch(std::move(block));
    const std::lock_guard lock(life_->mutex);
    if (life_->isOver) return;
    boost::asio::post(context_, [kept = std::weak_ptr(blocks_)] {
      if (const auto blocks = kept.lock()) blocks->drain();
    });
  }

  /// `ZLVActivity::runUntilIdle`, whether or not the context was stopped; false once it is gone.
  /// The context's own `run` waits for no call. Main thread.
  bool runUntilIdle(std::chrono::milliseconds limit) {
    if (life_->isOver) return false;
    const auto work = boost::asio::make_work_guard(context_);
    return ZLVActivity::runUntilIdle(limit, [this](std::chrono::milliseconds left) {
      if (blocks_->drain()) return;
      if (context_.stopped()) context_.restart();
      context_.run_one_for(std::min<std::chrono::milliseconds>(left, std::chrono::hours(1)));
    });
  }

 private:
  struct Life {
    std::mutex mutex;
    bool isOver = false;
  };
  struct Service : boost::asio::execution_context::service {
    using key_type = Service;
    static inline boost::asio::execution_context::id id;
    explicit Service(boost::asio::execution_context& owner) : service(owner) {}
    void shutdown() noexcept override {
      const std::lock_guard lock(life->mutex);
      life->isOver = true;
    }
    std::shared_ptr<Life> life = std::make_shared<Life>();
  };

  boost::asio::io_context& context_;
  const std::shared_ptr<Life> life_;
  const std::shared_ptr<ZLVFrameMainQueue> blocks_ = std::make_shared<ZLVFrameMainQueue>();
};
