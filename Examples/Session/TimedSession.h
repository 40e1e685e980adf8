#pragma once

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include <ZolvaCheckoutKit/Platform/ZLVURLSession.h>

/// Answers a call with `NSURLErrorTimedOut` when the session below has not done so within `limit`,
/// however busy the server is with it. What comes later counts for nothing.
class TimedSession final : public ZLVURLSession {
 public:
  TimedSession(std::unique_ptr<ZLVURLSession> session, std::chrono::milliseconds limit)
      : session_(std::move(session)), limit_(limit) {}

  ~TimedSession() override {
    {
      const std::lock_guard lock(mutex_);
      isEnding_ = true;
    }
    changed_.notify_one();
    thread_.join();
  }

  void dataTask(ZLVURLRequest request, CompletionHandler handler) override {
    auto call = std::make_shared<Call>(std::move(handler));
    {
      const std::lock_guard lock(mutex_);
      calls_.emplace(std::chrono::steady_clock::now() + limit_, call);
    }
    changed_.notify_one();
    session_->dataTask(std::move(request),
                       [call](ZLVURLAnswer answer) { call->answer(std::move(answer)); });
  }

 private:
  /// Answered by whoever is first: the session, the clock, or its end.
  struct Call {
    explicit Call(CompletionHandler to) : handler(std::move(to)) {}
    void answer(ZLVURLAnswer answer) {
      std::unique_lock lock(mutex);
      auto first = std::move(handler);
      lock.unlock();
      std::move(first)(std::move(answer));  // does nothing the second time
    }
    std::mutex mutex;
    CompletionHandler handler;
  };

  void watch() {
    for (std::unique_lock lock(mutex_); !isEnding_;) {
      if (calls_.empty()) {
        changed_.wait(lock);
      } else if (const auto due = calls_.begin()->first; due > std::chrono::steady_clock::now()) {
        changed_.wait_until(lock, due);
      } else {
        const auto call = std::move(calls_.begin()->second);
        calls_.erase(calls_.begin());
        lock.unlock();
        ZLVURLAnswer late;
        late.error = ZLVError::errorWithDomain(
            NSURLErrorDomain, NSURLErrorTimedOut,
            ZLVErrorText("The shop did not answer in time. What came of it is not known."));
        call->answer(std::move(late));
        lock.lock();
      }
    }
  }

  const std::unique_ptr<ZLVURLSession> session_;
  const std::chrono::milliseconds limit_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::multimap<std::chrono::steady_clock::time_point, std::shared_ptr<Call>> calls_;
  bool isEnding_ = false;
  std::thread thread_{[this] { watch(); }};
};
