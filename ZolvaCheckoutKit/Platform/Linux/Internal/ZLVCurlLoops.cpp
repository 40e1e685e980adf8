#include <cstdlib>
#include <mutex>
#include <set>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVCurlLoops.h>

namespace {

struct Registry {
  std::mutex mutex;
  std::set<std::shared_ptr<ZLVCurlLoop>> loops;
  bool isExiting = false;
};

/// Never destroyed, and so are the loops that are in it when the process exits.
Registry& registry() {
  static Registry& registry = *new Registry;
  return registry;
}

}  // namespace

void ZLVCurlLoops::start(const std::shared_ptr<ZLVCurlLoop>& loop) {
  const std::lock_guard lock(registry().mutex);
  if (registry().isExiting) return;
  loop->start();
  registry().loops.insert(loop);
}

void ZLVCurlLoops::stop(const std::shared_ptr<ZLVCurlLoop>& loop) {
  {
    const std::lock_guard lock(registry().mutex);
    if (registry().isExiting) return;
    registry().loops.erase(loop);
  }
  loop->end(ZLVCurlLoop::End::Cancel);
}

void ZLVCurlLoops::setUpLibrary() {
  // Exit handlers run in reverse order, so that this one comes before those of the libraries.
  [[maybe_unused]] static const int once =
      (curl_global_init(CURL_GLOBAL_DEFAULT), std::atexit(&abandonAll));
}

void ZLVCurlLoops::abandonAll() {
  const std::lock_guard lock(registry().mutex);
  registry().isExiting = true;
  for (const auto& loop : registry().loops) loop->end(ZLVCurlLoop::End::Abandon);
}
