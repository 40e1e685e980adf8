#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <system_error>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxMainQueue.h>
#include <ZolvaCheckoutKit/Platform/ZLVActivity.h>

namespace {

int makeEvent() {
  const int descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  if (descriptor < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
  return descriptor;
}

}  // namespace

const std::shared_ptr<ZLVLinuxMainQueue>& ZLVLinuxMainQueue::mainQueue() {
  // Never destroyed: blocks may still come in while the process exits.
  static const auto& queue = *new auto(std::make_shared<ZLVLinuxMainQueue>());
  return queue;
}

ZLVLinuxMainQueue::ZLVLinuxMainQueue() : fileDescriptor_(makeEvent()) {}

ZLVLinuxMainQueue::~ZLVLinuxMainQueue() {
  // A block may queue another one while it is destroyed.
  while (!blocks_.empty()) std::exchange(blocks_, {}).clear();
  close(fileDescriptor_);
}

void ZLVLinuxMainQueue::dispatch(ZLVOnce<void()> block) {
  bool isFirst = false;
  {
    const std::lock_guard lock(mutex_);
    blocks_.push_back(std::move(block));
    isFirst = blocks_.size() == 1;
  }
  // The main thread wants the lock as soon as it is awake.
  if (isFirst) eventfd_write(fileDescriptor_, 1);
}

void ZLVLinuxMainQueue::run() {
  while (!isStopped_) {
    if (runNext()) continue;
    wait(-1);
  }
  isStopped_ = false;
}

void ZLVLinuxMainQueue::stop() {
  dispatch([this] { isStopped_ = true; });
}

bool ZLVLinuxMainQueue::runUntilIdle(std::chrono::milliseconds limit) {
  return ZLVActivity::runUntilIdle(limit, [this](std::chrono::milliseconds left) {
    wait(static_cast<int>(std::min<std::int64_t>(left.count(), INT_MAX)));
    drain();
  });
}

void ZLVLinuxMainQueue::wait(int milliseconds) const {
  pollfd event{fileDescriptor_, POLLIN, 0};
  poll(&event, 1, milliseconds);
}

void ZLVLinuxMainQueue::drain() {
  std::size_t count = 0;
  {
    const std::lock_guard lock(mutex_);
    count = blocks_.size();
  }
  while (count-- > 0) runNext();
  const std::lock_guard lock(mutex_);
  if (blocks_.empty()) takeSignalBack();
}

void ZLVLinuxMainQueue::takeSignalBack() const {
  eventfd_t ignored = 0;
  eventfd_read(fileDescriptor_, &ignored);
}

bool ZLVLinuxMainQueue::runNext() {
  ZLVOnce<void()> block;
  bool isEmpty = false;
  {
    const std::lock_guard lock(mutex_);
    isEmpty = blocks_.empty();
    if (isEmpty) {
      takeSignalBack();  // once for all that have run
    } else {
      block = std::move(blocks_.front());
      blocks_.pop_front();
    }
  }
  std::move(block)();
  return !isEmpty;
}
