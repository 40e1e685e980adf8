#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QObject>
#include <QTimer>
#include <exception>
#include <functional>
#include <utility>

#include <ZolvaCheckoutKit/EventLoops/ZLVFrameMainQueue.h>

/// The main queue for Qt 6, of the thread that makes it, which is the application's. Blocks run
/// from its event loop, nested ones too; without a `QCoreApplication` they wait for the next one.
class ZLVQtMainQueue final : public ZLVMainQueue {
 public:
  /// Receives what a block throws, for which there is no way through Qt's event loop. Absent: the
  /// process ends as after any exception that nobody catches. Must not throw.
  using UncaughtException = std::function<void(std::exception_ptr exception)>;

  /// Main thread, where it is to be destroyed, too.
  explicit ZLVQtMainQueue(UncaughtException uncaughtException = {})
      : uncaughtException_(std::move(uncaughtException)) {}

  void dispatch(ZLVOnce<void()> block) override {
    blocks_.dispatch(std::move(block));
    // Without the block: an application that ends destroys its events under a lock.
    QCoreApplication::postEvent(&receiver_, new QEvent(QEvent::User));
  }

  /// `ZLVActivity::runUntilIdle`, also after `exec`; false without an application. Main thread.
  bool runUntilIdle(std::chrono::milliseconds limit) {
    if (QCoreApplication::instance() == nullptr) return false;
    return ZLVActivity::runUntilIdle(limit, [this](std::chrono::milliseconds left) {
      if (serve() || left.count() == 0) return;
      QTimer end;
      end.start(std::min<std::chrono::milliseconds>(left, std::chrono::hours(1)));
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    });
  }

 private:
  bool serve() noexcept try { return blocks_.drain(); } catch (...) {
    if (!uncaughtException_) std::terminate();
    return uncaughtException_(std::current_exception()), true;
  }
  struct Receiver final : QObject {
    explicit Receiver(ZLVQtMainQueue& target) : queue(target) {}
    bool event(QEvent* event) override {
      return event->type() == QEvent::User ? queue.serve(), true : QObject::event(event);
    }
    ZLVQtMainQueue& queue;
  };

  const UncaughtException uncaughtException_;
  Receiver receiver_{*this};
  ZLVFrameMainQueue blocks_;  // the first to go: a block may dispatch once more then
};
