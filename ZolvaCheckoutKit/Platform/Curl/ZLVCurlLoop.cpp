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

/// So many connections are kept at least.
constexpr long fewestKept = ZLVServerQueue::maximumUnderWay;

/// How soon the thread looks for work while it cannot be woken.
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

struct ZLVCurlLoop::Callbacks {
  static int watch(CURL* /*handle*/, curl_socket_t socket, int what, void* self, void* /*own*/) {
    auto& context = static_cast<ZLVCurlLoop*>(self)->context_;
    static_assert(CURL_POLL_IN == ZLVReadiness::Read && CURL_POLL_OUT == ZLVReadiness::Write);
    if (what != CURL_POLL_REMOVE) {
      context.readiness.watch(socket, static_cast<unsigned>(what));
    } else if (context.sockets.has(socket)) {
      context.readiness.rest(socket);  // most often the next call wants the same of it
    } else {
      context.readiness.forget(socket);  // libcurl closes its own without another word
    }
    return 0;
  }

  static int setTimer(CURLM* /*multi*/, long milliseconds, void* self) {
    static_cast<ZLVCurlLoop*>(self)->timer_ =
        milliseconds < 0 ? Clock::time_point::max()
                         : Clock::now() + std::chrono::milliseconds(milliseconds);
    return 0;
  }
};

void ZLVCurlLoop::run() {
  blockSignals();
  ZLVCurlSystem::nameThread("zlv-http");
  setUp();
  End end = End::None;
  while ((end = takeAdded()) == End::None) {
    runDue();
    sleep();
  }
  if (end == End::Cancel) tearDown();
}

void ZLVCurlLoop::setUp() {
  ZLVCurlLifetime::setUpLibrary();
  multi_ = curl_multi_init();
  context_.share = curl_share_init();
  if (multi_ == nullptr || context_.share == nullptr) throw std::bad_alloc();
  curl_multi_setopt(multi_, CURLMOPT_SOCKETFUNCTION, &Callbacks::watch);
  curl_multi_setopt(multi_, CURLMOPT_SOCKETDATA, this);
  curl_multi_setopt(multi_, CURLMOPT_TIMERFUNCTION, &Callbacks::setTimer);
  curl_multi_setopt(multi_, CURLMOPT_TIMERDATA, this);
  // No locks are given: only this thread uses what is shared.
  curl_share_setopt(context_.share, CURLSHOPT_SHARE, CURL_LOCK_DATA_COOKIE);
  curl_share_setopt(context_.share, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
  keepConnections();
  readTrust();
  if (const auto& URL = context_.options.connectsAheadTo) begin(ZLVCurlTransfer::ahead(*URL));
}

void ZLVCurlLoop::readTrust() {
  if (!context_.trust.read() && context_.handles.hasModel()) return;
  context_.handles.setModel(
      ZLVCurlExchange::makeModel(context_),
      context_.options.usesHandlesAgain.value_or(ZLVCurlHandles::mayBeUsedAgain()));
}

void ZLVCurlLoop::tearDown() {
  while (!calls_.empty()) fail(calls_.begin()->first, NSURLErrorCancelled);
  context_.handles.clear();
  curl_multi_cleanup(multi_);
  curl_share_cleanup(context_.share);
}

void ZLVCurlLoop::keepConnections() {
  // By itself libcurl keeps four times as many as there are calls, and not always the latest. Those
  // of calls that have just ended are for those that come next.
  const auto before = keptConnections_;
  if (underWay_ > keptConnections_) keptConnections_ *= 2;
  if (underWay_ < keptConnections_ / 4) keptConnections_ /= 2;
  keptConnections_ = std::max(keptConnections_, fewestKept);
  if (keptConnections_ == before) return;
  curl_multi_setopt(multi_, CURLMOPT_MAXCONNECTS, keptConnections_);
}

ZLVCurlLoop::End ZLVCurlLoop::takeAdded() {
  End end = End::None;
  {
    const std::lock_guard lock(mutex_);
    isAsleep_ = false;
    end = end_;
    if (end != End::Abandon) taken_.swap(added_);
  }
  if (!taken_.empty()) readTrust();
  for (auto& transfer : taken_) begin(std::move(transfer));
  taken_.clear();
  return end;
}

void ZLVCurlLoop::begin(std::unique_ptr<ZLVCurlTransfer> transfer) {
  transfer->start(context_);
  goOn(std::move(transfer));
}

void ZLVCurlLoop::goOn(std::unique_ptr<ZLVCurlTransfer> transfer) {
  if (transfer->isAnswered()) return transfer->complete();
  CURL* handle = transfer->handle();
  const bool mayShareConnections = transfer->server().scheme == "https";
  const auto deadline = deadlines_.emplace(transfer->deadline(), handle);
  const auto queue = &*queues_.try_emplace(transfer->server().origin(), mayShareConnections).first;
  calls_.emplace(handle, Call{std::move(transfer), queue, deadline, queue->second.add(handle)});
  sendWaiting(queue);
}

void ZLVCurlLoop::sendWaiting(Queues::pointer queue) {
  while (queue->second.hasNext()) {
    CURL* handle = queue->second.takeNext();
    calls_.at(handle).isWaiting = false;
    ++underWay_;
    keepConnections();
    if (curl_multi_add_handle(multi_, handle) == CURLM_OK) continue;
    const auto call = release(handle);
    call.transfer->fail(NSURLErrorUnknown);
    call.transfer->complete();
  }
  if (queue->second.isIdle()) queues_.erase(queue->first);
}

ZLVCurlLoop::Call ZLVCurlLoop::release(CURL* handle) {
  Call call = std::move(calls_.extract(handle).mapped());
  deadlines_.erase(call.deadline);
  auto& queue = call.queue->second;
  if (call.isWaiting) {
    queue.removeWaiting(call.place);
  } else {
    curl_multi_remove_handle(multi_, handle);
    ZLVCurlCookies::limit(handle);
    queue.removeUnderWay();
    --underWay_;
    keepConnections();
  }
  return call;
}

void ZLVCurlLoop::drive(curl_socket_t socket, unsigned events) {
  static_assert(CURL_CSELECT_IN == ZLVReadiness::Read && CURL_CSELECT_OUT == ZLVReadiness::Write);
  int running = 0;
  curl_multi_socket_action(multi_, socket, static_cast<int>(events), &running);
}

void ZLVCurlLoop::noteSent() {
  for (CURL* handle : context_.sent) {
    const auto found = calls_.find(handle);
    if (found == calls_.end()) continue;
    const auto queue = found->second.queue;
    if (queue->second.isReached()) continue;
    queue->second.noteReached();
    sendWaiting(queue);
  }
  context_.sent.clear();
}

void ZLVCurlLoop::takeDone() {
  int remaining = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_, &remaining)) {
    const CURLcode result = message->data.result;  // NOLINT(*-union-access): libcurl's
    auto call = release(message->easy_handle);
    sendWaiting(call.queue);
    call.transfer->finishHop(result);
    goOn(std::move(call.transfer));
  }
}

void ZLVCurlLoop::runDue() {
  if (timer_ <= Clock::now()) {
    timer_ = Clock::time_point::max();
    drive(CURL_SOCKET_TIMEOUT);
  }
  auto& sockets = context_.sockets;
  for (curl_socket_t socket{}; (socket = sockets.lookAtAttempts()) != CURL_SOCKET_BAD;) {
    drive(socket);
  }
  noteSent();
  takeDone();
  for (CURL* handle : sockets.takeStranded()) {
    if (!calls_.contains(handle)) continue;
    // libcurl has no other way to say that a transfer is to be looked at.
    curl_easy_pause(handle, CURLPAUSE_SEND);
    curl_easy_pause(handle, CURLPAUSE_CONT);
  }
  failIdle();
}

void ZLVCurlLoop::failIdle() {
  for (const auto now = Clock::now(); !deadlines_.empty() && deadlines_.begin()->first <= now;) {
    CURL* handle = deadlines_.begin()->second;
    auto& call = calls_.at(handle);
    const auto deadline = call.transfer->deadline();
    if (deadline <= now) {
      fail(handle, NSURLErrorTimedOut);
      continue;
    }
    auto later = deadlines_.extract(call.deadline);
    later.key() = deadline;
    call.deadline = deadlines_.insert(std::move(later));
  }
}

void ZLVCurlLoop::fail(CURL* handle, NSURLError code) {
  const auto call = release(handle);
  call.transfer->fail(code);
  call.transfer->complete();
  sendWaiting(call.queue);
}

void ZLVCurlLoop::sleep() {
  auto& readiness = context_.readiness;
  auto time = timeToSleep();
  {
    const std::lock_guard lock(mutex_);
    if (!wake_.isOpen() && wake_.open()) {
      readiness.watch(wake_.descriptor(), ZLVReadiness::Read | ZLVReadiness::Once);
    }
    isAsleep_ = added_.empty() && end_ == End::None;
    if (!isAsleep_) time = {};
  }
  readiness.wait(time);
  while (const auto ready = readiness.next()) {
    if (ready->descriptor != wake_.descriptor()) drive(ready->descriptor, ready->events);
  }
}

std::chrono::milliseconds ZLVCurlLoop::timeToSleep() const {
  const auto now = Clock::now();
  const Clock::duration longest = wake_.isOpen() ? std::chrono::hours(1) : often;
  auto next = std::min(timer_, context_.sockets.nextLook());
  if (!deadlines_.empty()) next = std::min(next, deadlines_.begin()->first);
  return std::chrono::ceil<std::chrono::milliseconds>(std::clamp(next, now, now + longest) - now);
}
