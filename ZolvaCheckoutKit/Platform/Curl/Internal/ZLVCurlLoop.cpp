#include <algorithm>
#include <csignal>
#include <cstring>
#include <new>
#include <utility>

#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Curl/Internal/ZLVCurlLoop.h>
#include <ZolvaCheckoutKit/Platform/Curl/Internal/ZLVCurlLoops.h>

namespace {

/// libcurl itself keeps any number of cookies, and looks at all of a server's for each call.
constexpr std::size_t maximumCookies = 100;
constexpr std::size_t maximumCookieSize = std::size_t{64} * 1024;  // of all together

/// Keeps the session's cookies within these limits once an answer has set any: those go first that
/// libcurl lists first, which are the oldest of their server.
void limitCookies(CURL* handle) {
  constexpr unsigned int anywhere = CURLH_HEADER | CURLH_TRAILER | CURLH_1XX;
  curl_header* set = nullptr;
  if (curl_easy_header(handle, "Set-Cookie", 0, anywhere, -1, &set) != CURLHE_OK) return;

  curl_slist* list = nullptr;
  curl_easy_getinfo(handle, CURLINFO_COOKIELIST, &list);
  const std::unique_ptr<curl_slist, ZLVCurlTransfer::Cleanup> owner(list);
  std::size_t count = 0;
  std::size_t size = 0;
  for (const auto* cookie = list; cookie != nullptr; cookie = cookie->next) {
    ++count;
    size += std::strlen(cookie->data);
  }
  if (count <= maximumCookies && size <= maximumCookieSize) return;
  curl_easy_setopt(handle, CURLOPT_COOKIELIST, "ALL");
  for (const auto* cookie = list; cookie != nullptr; cookie = cookie->next) {
    if (count <= maximumCookies && size <= maximumCookieSize) {
      curl_easy_setopt(handle, CURLOPT_COOKIELIST, cookie->data);
    } else {
      --count;
      size -= std::strlen(cookie->data);
    }
  }
}

/// Of one server's, so that the host keeps descriptors for itself. Calls that share a connection
/// count as well.
constexpr std::size_t maximumUnderWay = 64;

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

ZLVCurlLoop::ZLVCurlLoop(ZLVCurlConfiguration configuration, std::optional<std::string> CAFile)
    : configuration_(std::move(configuration)), CAFile_(std::move(CAFile)) {}

ZLVCurlLoop::~ZLVCurlLoop() {
  if (wake_ >= 0) close(wake_);
}

void ZLVCurlLoop::start() {
  thread_ = std::thread([this] { run(); });
}

void ZLVCurlLoop::add(std::unique_ptr<ZLVCurlTransfer> transfer) {
  int wake = -1;
  {
    const std::lock_guard lock(mutex_);
    added_.push_back(std::move(transfer));
    if (std::exchange(isAsleep_, false)) wake = wake_;
  }
  // The thread wants the lock as soon as it is awake.
  if (wake >= 0) eventfd_write(wake, 1);
}

void ZLVCurlLoop::end(End how) {
  {
    const std::lock_guard lock(mutex_);
    end_ = how;
    if (wake_ >= 0) eventfd_write(wake_, 1);
  }
  if (thread_.joinable() && !isCurrent()) thread_.join();
}

void ZLVCurlLoop::run() {
  blockSignals();
  pthread_setname_np(pthread_self(), "zlv-http");
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
  ZLVCurlLoops::setUpLibrary();
  readAuthorities();
  multi_ = curl_multi_init();
  configuration_.share = curl_share_init();
  configuration_.sockets = &sockets_;
  if (multi_ == nullptr || configuration_.share == nullptr) throw std::bad_alloc();
  // By itself libcurl keeps four times as many as there are calls, and not always the latest.
  curl_multi_setopt(multi_, CURLMOPT_MAXCONNECTS, static_cast<long>(maximumUnderWay));
  // No locks are given: only this thread uses what is shared.
  curl_share_setopt(configuration_.share, CURLSHOPT_SHARE, CURL_LOCK_DATA_COOKIE);
  curl_share_setopt(configuration_.share, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
}

void ZLVCurlLoop::readAuthorities() {
  // What curl_version_info tells as well, but that asks every library below libcurl for its
  // version.
  char* systemFile = nullptr;
  curl_easy_getinfo(ZLVCurlTransfer::Handle(curl_easy_init()).get(), CURLINFO_CAINFO, &systemFile);
  configuration_.hasSystemFile = systemFile != nullptr;
  if (CAFile_) {
    configuration_.certificateAuthorities = bundle_.emplace(systemFile, *CAFile_).path();
  }
}

void ZLVCurlLoop::tearDown() {
  while (!calls_.empty()) fail(calls_.begin()->first, NSURLErrorCancelled);
  curl_multi_cleanup(multi_);
  curl_share_cleanup(configuration_.share);
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
  if (!added.empty() && bundle_ && !bundle_->isWhole()) readAuthorities();
  for (auto& transfer : added) begin(std::move(transfer));
  return end;
}

void ZLVCurlLoop::begin(std::unique_ptr<ZLVCurlTransfer> transfer) {
  if (!transfer->start(configuration_)) return transfer->complete();
  nextDeadline_ = std::min(nextDeadline_, transfer->deadline());
  take(std::move(transfer));
}

void ZLVCurlLoop::take(std::unique_ptr<ZLVCurlTransfer> transfer) {
  CURL* handle = transfer->handle();
  const auto name = transfer->server();
  Server& server = servers_.try_emplace(name, Server{!name.starts_with("https")}).first->second;
  calls_.emplace(handle, Call{std::move(transfer), &server});
  server.waiting.push_back(handle);
  sendWaiting(server);
}

void ZLVCurlLoop::sendWaiting(Server& server) {
  const auto allowed = server.isReached ? maximumUnderWay : 1;
  while (!server.waiting.empty() && server.underWay < allowed) {
    CURL* handle = server.waiting.front();
    server.waiting.pop_front();
    server.first = handle;
    ++server.underWay;
    calls_.at(handle).isWaiting = false;
    if (curl_multi_add_handle(multi_, handle) != CURLM_OK) fail(handle, NSURLErrorUnknown);
  }
}

void ZLVCurlLoop::sendWaiting() {
  for (auto& [name, server] : servers_) {
    server.isReached = server.isReached || calls_.at(server.first).transfer->isSent();
    sendWaiting(server);
  }
  std::erase_if(servers_, [](const auto& entry) { return entry.second.underWay == 0; });
}

std::unique_ptr<ZLVCurlTransfer> ZLVCurlLoop::release(CURL* handle) {
  curl_multi_remove_handle(multi_, handle);
  limitCookies(handle);
  auto [transfer, server, isWaiting] = std::move(calls_.extract(handle).mapped());
  if (isWaiting) {
    server->waiting.remove(handle);
  } else {
    --server->underWay;
    server->isReached = true;  // or never will be
  }
  return std::move(transfer);
}

void ZLVCurlLoop::takeDone() {
  int remaining = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_, &remaining)) {
    CURL* handle = message->easy_handle;
    const CURLcode result = message->data.result;  // NOLINT(*-union-access): libcurl's
    if (result == CURLE_OK) sockets_.keep(handle);
    auto transfer = release(handle);
    if (transfer->continueAfter(result)) {
      take(std::move(transfer));
    } else {
      transfer->complete();
    }
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
    if (wake_ < 0) wake_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    isAsleep_ = true;
  }
  curl_waitfd wake{wake_, CURL_WAIT_POLLIN, 0};
  curl_multi_poll(multi_, &wake, wake_ < 0 ? 0 : 1, pollMilliseconds(), nullptr);
  eventfd_t count = 0;
  if (wake.revents != 0) eventfd_read(wake_, &count);
}

int ZLVCurlLoop::pollMilliseconds() {
  const auto now = Clock::now();
  const bool isBrief = sockets_.checkAttempts() || wake_ < 0;
  const Clock::duration longest = isBrief ? often : std::chrono::hours(1);
  const auto moment = std::clamp(nextDeadline_, now, now + longest);
  return static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(moment - now).count());
}
