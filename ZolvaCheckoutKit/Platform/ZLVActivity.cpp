#include <algorithm>
#include <atomic>

#include <ZolvaCheckoutKit/Platform/ZLVActivity.h>
#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>

namespace {

std::atomic<std::size_t> underWay{0};
/// How many wait for the end of the last one.
std::atomic<std::size_t> waiting{0};

struct Waiting {
  Waiting() { ++waiting; }
  ~Waiting() { --waiting; }
};

}  // namespace

ZLVActivity::ZLVActivity() noexcept { ++underWay; }

void ZLVActivity::end() noexcept {
  if (!std::exchange(isUnderWay_, false)) return;
  if (--underWay != 0 || waiting == 0) return;
  try {
    ZLVPlatform::installed().mainQueue->dispatch([] {});  // ends a turn
  } catch (...) {
    // Without memory to say so, the turn ends at its limit.
  }
}

bool ZLVActivity::runUntilIdle(std::chrono::milliseconds limit, const Turn& turn) {
  using std::chrono::milliseconds, std::chrono::steady_clock;
  constexpr milliseconds none(0);
  const Waiting here;
  const auto start = steady_clock::now();
  limit = std::max(limit, none);
  for (;;) {
    // The last turn does not wait: it is for what is queued already, and may start something.
    const bool isIdle = underWay == 0;
    const auto passed = std::chrono::floor<milliseconds>(steady_clock::now() - start);
    const auto left = isIdle ? none : std::max(limit - passed, none);
    turn(left);
    if (isIdle && underWay == 0) return true;
    if (!isIdle && left == none) return underWay == 0;
  }
}
