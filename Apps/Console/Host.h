#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <ZolvaCheckoutKit/Platform/Linux/ZLVConsoleUserInterface.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxMainQueue.h>
#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

#include "Apps/Console/Arguments.h"

/// How an operation ended.
template <class Record>
struct Outcome {
  std::shared_ptr<Record> record;
  std::optional<ZLVError> error;
};

/// Whether a URL's host is this machine's own.
bool isThisMachine(const std::string& host);

/// The console application as a host of the library: it installs the Linux platform, configures
/// the library and runs the main loop. One for the whole process.
class Host {
 public:
  /// Puts other parts in the place of the console's.
  using Adapt = std::function<void(ZLVPlatform& platform)>;

  explicit Host(const ConsoleOptions& options, const Adapt& adapt = {});

  /// What the operations present their pages over.
  [[nodiscard]] std::shared_ptr<ZLVViewController> viewController() const {
    return userInterface_->keyWindowRootViewController();
  }

  /// Starts an operation with `start(completion)` and runs the main loop until it has answered.
  /// Throws what the library found wrong with the answer's structure, once it has answered.
  template <class Record, class Start>
  Outcome<Record> wait(Start start) {
    std::optional<Outcome<Record>> outcome;
    start(ZLVCompletionHandler<Record>([&outcome](auto record, auto error) {
      outcome.emplace(Outcome<Record>{std::move(record), std::move(error)});
    }));
    std::optional<ZLVProgrammingFault> misfit;
    while (!outcome) {
      try {
        runOnce();
      } catch (const ZLVProgrammingFault& fault) {
        misfit = fault;
      }
    }
    if (misfit) throw ZLVProgrammingFault(*misfit);
    return *std::move(outcome);
  }

  /// Called every `interval` while the main loop waits.
  void setTick(std::chrono::milliseconds interval, std::function<void()> tick);

  /// Runs the main loop until the last usage event was sent, for at most `limit`.
  void finishUploads(std::chrono::milliseconds limit) { queue_->runUntilIdle(limit); }

 private:
  using Milliseconds = std::chrono::milliseconds;
  static constexpr Milliseconds forever{-1};

  /// Waits for the main queue, for the user when a page is open, or for the next tick, and serves
  /// them.
  void runOnce();
  void readInput();
  /// Acts on the lines read so far, as long as there is a page to act on.
  void serveInput();
  /// Whether the console shows a page, which the user's input is about.
  [[nodiscard]] bool awaitsUser() const {
    return userInterface_ == console_ && viewController()->presentedViewController() != nullptr;
  }

  std::shared_ptr<ZLVLinuxMainQueue> queue_ = ZLVLinuxMainQueue::mainQueue();
  std::shared_ptr<ZLVConsoleUserInterface> console_;
  std::shared_ptr<ZLVUserInterface> userInterface_;
  std::string input_;
  bool isInputOver_ = false;
  Milliseconds tickInterval_ = forever;
  std::function<void()> tick_;
};
