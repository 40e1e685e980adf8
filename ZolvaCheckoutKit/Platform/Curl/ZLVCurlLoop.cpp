#include <algorithm>
#include <chrono>
#include <csignal>
#include <new>
#include <utility>

#include <pthread.h>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlCookies.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlLifetime.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlLoop.h>

namespace {

/// How often libcurl is driven while it connects, and how soon the thread looks for work while it
/// cannot be woken.
constexpr std::chrono::milliseconds often(100);

/// The host's signal handlers run on the host's threads, and a broken connection does not end the
/// process by SIGPIPE. What the thread itself does wrong is still reported.
void blockSignals() {
  sigset_t signals;
  sigfillset(&signals);
  for (const int own : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGPROF}) {
    sigdelset(&signals, own);
  }
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

}  // namespace

ZLVCurlLoop::ZLVCurlLoop(ZLVCurlOptions options) : context_(std::move(options)) {}

void ZLVCurlLoop::start() {
  thread_ = std::thread([this] { run(); });
}

void ZLVCurlLoop::add(std::unique_ptr<ZLVCurlTransfer> transfer) {
  bool mustWake = false;
  {
    const std::lock_guard lock(mutex_);
    added_.push_back(std::move(transfer));
    mustWake = std::exchange(isAsleep_, false) && wake_.isOpen();
  }
  // The thread wants the lock as soon as it is awake.
  if (mustWake) wake_.set();
}

void ZLVCurlLoop::end(End how) {
  {
    const std::lock_guard lock(mutex_);
    end_ = how;
    if (wake_.isOpen()) wake_.set();
  }
  if (thread_.joinable() && !isCurrent()) thread_.join();
}

void ZLVCurlLoop::run() {
  blockSignals();
  ZLVCurlSystem::nameThread("zlv-http");
  setUp();
  End end = takeAdded();
  for (int running = 0; end == End::None; end = takeAdded()) {
    curl_multi_perform(multi_, &running);
    takeDone();
    failIdle();
    sendWaiting();
    sleep();
  }
  if (end == End::Cancel) tearDown();
}

void ZLVCurlLoop::setUp() {
  ZLVCurlLifetime::setUpLibrary();
  context_.trust.read();
  multi_ = curl_multi_init();
  context_.share = curl_share_init();
  if (multi_ == nullptr || context_.share == nullptr) throw std::bad_alloc();
  // By itself libcurl keeps four times as many as there are calls, and not always the latest.
  curl_multi_setopt(multi_, CURLMOPT_MAXCONNECTS,
                    static_cast<long>(ZLVServerQueue::maximumUnderWay));
  // No locks are given: only this thread uses what is shared.
  curl_share_setopt(context_.share, CURLSHOPT_SHARE, CURL_LOCK_DATA_COOKIE);
  curl_share_setopt(context_.share, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
}

void ZLVCurlLoop::tearDown() {
  while (!calls_.empty()) fail(calls_.begin()->first, NSURLErrorCancelled);
  curl_multi_cleanup(multi_);
  curl_share_cleanup(context_.share);
}

ZLVCurlLoop::End ZLVCurlLoop::takeAdded() {
  std::vector<std::unique_ptr<ZLVCurlTransfer>> added;
  End end = End::None;
  {
    const std::lock_guard lock(mutex_);
    isAsleep_ = false;
    end = end_;
    if (end != End::Abandon) added.swap(added_);
  }
  if (!added.empty()) context_.trust.read();
  for (auto& transfer : added) {
    transfer->start(context_);
    goOn(std::move(transfer));
  }
  return end;
}

void ZLVCurlLoop::goOn(std::unique_ptr<ZLVCurlTransfer> transfer) {
  if (transfer->isAnswered()) return transfer->complete();
  nextDeadline_ = std::min(nextDeadline_, transfer->deadline());
  CURL* handle = transfer->handle();
  const bool mayShareConnections = transfer->server().scheme == "https";
  auto& queue = queues_.try_emplace(transfer->server().origin(), mayShareConnections).first->second;
  calls_.emplace(handle, Call{std::move(transfer), &queue});
  queue.add(handle);
  sendWaiting(queue);
}

void ZLVCurlLoop::sendWaiting(ZLVServerQueue& queue) {
  while (queue.hasNext()) {
    CURL* handle = queue.takeNext();
    calls_.at(handle).isWaiting = false;
    if (curl_multi_add_handle(multi_, handle) != CURLM_OK) fail(handle, NSURLErrorUnknown);
  }
}

void ZLVCurlLoop::sendWaiting() {
  for (auto& [name, queue] : queues_) {
    if (!queue.isReached() && calls_.at(queue.first()).transfer->isSent()) queue.noteReached();
    sendWaiting(queue);
  }
  std::erase_if(queues_, [](const auto& entry) { return entry.second.isIdle(); });
}

std::unique_ptr<ZLVCurlTransfer> ZLVCurlLoop::release(CURL* handle) {
  curl_multi_remove_handle(multi_, handle);
  ZLVCurlCookies::limit(handle);
  auto [transfer, queue, isWaiting] = std::move(calls_.extract(handle).mapped());
  if (isWaiting) {
    queue->removeWaiting(handle);
  } else {
    queue->removeUnderWay();
  }
  return std::move(transfer);
}

void ZLVCurlLoop::takeDone() {
  int remaining = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_, &remaining)) {
    CURL* handle = message->easy_handle;
    const CURLcode result = message->data.result;  // NOLINT(*-union-access): libcurl's
    if (result == CURLE_OK) context_.sockets.keep(handle);
    auto transfer = release(handle);
    transfer->finishHop(result);
    goOn(std::move(transfer));
  }
}

void ZLVCurlLoop::failIdle() {
  const auto now = Clock::now();
  if (now < nextDeadline_) return;
  nextDeadline_ = Clock::time_point::max();
  std::vector<CURL*> idle;
  for (const auto& [handle, call] : calls_) {
    if (call.transfer->deadline() <= now) {
      idle.push_back(handle);
    } else {
      nextDeadline_ = std::min(nextDeadline_, call.transfer->deadline());
    }
  }
  for (CURL* handle : idle) fail(handle, NSURLErrorTimedOut);
}

void ZLVCurlLoop::fail(CURL* handle, NSURLError code) {
  const auto transfer = release(handle);
  transfer->fail(code);
  transfer->complete();
}

void ZLVCurlLoop::sleep() {
  {
    const std::lock_guard lock(mutex_);
    if (!added_.empty() || end_ != End::None) return;
    wake_.open();
    isAsleep_ = true;
  }
  context_.sockets.giveUpSlow();
  const auto time = std::chrono::ceil<std::chrono::milliseconds>(timeToSleep());
  curl_waitfd wake{wake_.descriptor(), CURL_WAIT_POLLIN, 0};
  curl_multi_poll(multi_, &wake, wake_.isOpen() ? 1 : 0, static_cast<int>(time.count()), nullptr);
  if (wake.revents != 0) wake_.clear();
}

ZLVCurlLoop::Clock::duration ZLVCurlLoop::timeToSleep() const {
  const auto now = Clock::now();
  const bool isBrief = context_.sockets.hasAttempts() || !wake_.isOpen();
  const Clock::duration longest = isBrief ? often : std::chrono::hours(1);
  return std::clamp(nextDeadline_, now, now + longest) - now;
}
