#include <algorithm>
#include <utility>

#include <glib.h>

#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGObject.h>
#include <ZolvaCheckoutKit/Platform/GTK/Internal/ZLVGTKMainQueue.h>
#include <ZolvaCheckoutKit/Platform/ZLVActivity.h>

ZLVGTKMainQueue::ZLVGTKMainQueue(UncaughtException uncaughtException)
    : blocks_(std::make_shared<Blocks>()) {
  blocks_->uncaughtException = std::move(uncaughtException);
}

ZLVGTKMainQueue::~ZLVGTKMainQueue() {
  // A block may queue another one while it is destroyed.
  while (!blocks_->waiting.empty()) std::exchange(blocks_->waiting, {}).clear();
}

void ZLVGTKMainQueue::dispatch(ZLVOnce<void()> block) {
  {
    const std::lock_guard lock(blocks_->mutex);
    blocks_->waiting.push_back(std::move(block));
  }
  // A source for each block, so that a block that runs a loop of its own holds none of them up.
  using Turn = ZLVUserData<std::weak_ptr<Blocks>>;
  g_idle_add_full(
      G_PRIORITY_DEFAULT,
      [](gpointer turn) -> gboolean {
        if (const auto blocks = Turn::of(turn).lock()) runNext(*blocks);
        return G_SOURCE_REMOVE;
      },
      Turn::make(blocks_), &Turn::free);
}

bool ZLVGTKMainQueue::runUntilIdle(std::chrono::milliseconds limit) {
  return ZLVActivity::runUntilIdle(limit, [](std::chrono::milliseconds left) {
    // An iteration waits for ever; a source of its own puts an end to it.
    const auto interval = std::min<std::chrono::milliseconds::rep>(left.count(), G_MAXINT);
    const auto end = g_timeout_add(
        static_cast<guint>(interval), [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; },
        nullptr);
    g_main_context_iteration(nullptr, TRUE);
    g_source_remove(end);
  });
}

void ZLVGTKMainQueue::runNext(Blocks& blocks) noexcept {
  ZLVOnce<void()> block;
  {
    const std::lock_guard lock(blocks.mutex);
    if (blocks.waiting.empty()) return;
    block = std::move(blocks.waiting.front());
    blocks.waiting.pop_front();
  }
  try {
    std::move(block)();
  } catch (...) {
    // Here, where the exception is at hand, the handler of std::terminate can tell which it was.
    if (!blocks.uncaughtException) std::terminate();
    blocks.uncaughtException(std::current_exception());
  }
}
