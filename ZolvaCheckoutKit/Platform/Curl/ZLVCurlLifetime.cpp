#include <cstdlib>
#include <mutex>
#include <set>
#include <system_error>

#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlLifetime.h>

namespace {

struct Registry {
  const pid_t process = getpid();
  std::mutex mutex;
  std::set<std::shared_ptr<ZLVCurlLoop>> loops;
  bool isExiting = false;
};

/// Never destroyed, and so are the loops that are in it when the process exits.
Registry& registry() {
  static auto& registry = *new Registry;  // NOLINT(*-non-const-global-variables)
  return registry;
}

/// The child of a fork(2) has the loops, but not their threads.
bool isForked() { return getpid() != registry().process; }

/// Keeps a thread from ending while libcurl is being set up, and so from letting the process exit
/// before it is known how that is done in order: exit(3) ends the calling thread's objects first.
struct SetUpGuard {
  SetUpGuard() = default;
  SetUpGuard(const SetUpGuard&) = delete;
  SetUpGuard& operator=(const SetUpGuard&) = delete;
  ~SetUpGuard() { ZLVCurlLifetime::setUpLibrary(); }
};

void abandonAll() {
  if (isForked()) return;
  std::set<std::shared_ptr<ZLVCurlLoop>> loops;
  {
    const std::lock_guard lock(registry().mutex);
    registry().isExiting = true;
    loops = registry().loops;
  }
  for (const auto& loop : loops) loop->end(ZLVCurlLoop::End::Abandon);
}

}  // namespace

bool ZLVCurlLifetime::start(const std::shared_ptr<ZLVCurlLoop>& loop) try {
  const std::lock_guard lock(registry().mutex);
  if (registry().isExiting || registry().loops.contains(loop)) return true;
  [[maybe_unused]] static thread_local const SetUpGuard guard;
  loop->start();
  registry().loops.insert(loop);
  return true;
} catch (const std::system_error&) {
  return false;
}

void ZLVCurlLifetime::stop(const std::shared_ptr<ZLVCurlLoop>& loop) {
  if (isForked()) return;
  {
    const std::lock_guard lock(registry().mutex);
    if (registry().isExiting) return;
    // A loop that is ended on its own thread needs itself for some time yet; exit waits for it.
    if (!loop->isCurrent()) registry().loops.erase(loop);
  }
  loop->end(ZLVCurlLoop::End::Cancel);
}

void ZLVCurlLifetime::setUpLibrary() {
  // Exit handlers run in reverse order, so that this one comes before those of the libraries.
  [[maybe_unused]] static const int once =
      (curl_global_init(CURL_GLOBAL_DEFAULT), std::atexit(&abandonAll));
}
