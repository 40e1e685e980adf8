#include <algorithm>
#include <csignal>
#include <cstring>
#include <new>
#include <utility>

#include <pthread.h>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVCurlLoop.h>
#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVCurlLoops.h>

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

void ZLVCurlLoop::start() {
  thread_ = std::thread([this] { run(); });
}

void ZLVCurlLoop::add(std::unique_ptr<ZLVCurlTransfer> transfer) {
  CURLM* asleep = nullptr;
  {
    const std::lock_guard lock(mutex_);
    added_.push_back(std::move(transfer));
    if (std::exchange(isAsleep_, false)) asleep = multi_;
  }
  // The thread wants the lock as soon as it is awake.
  if (asleep != nullptr) curl_multi_wakeup(asleep);
}

void ZLVCurlLoop::end(End how) {
  {
    const std::lock_guard lock(mutex_);
    end_ = how;
    if (multi_ != nullptr) curl_multi_wakeup(multi_);
  }
  if (thread_.joinable() && thread_.get_id() != std::this_thread::get_id()) thread_.join();
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
  // What curl_version_info tells as well, but that asks every library below libcurl for its
  // version.
  char* systemFile = nullptr;
  curl_easy_getinfo(ZLVCurlTransfer::Handle(curl_easy_init()).get(), CURLINFO_CAINFO, &systemFile);
  configuration_.hasSystemFile = systemFile != nullptr;
  if (CAFile_) {
    configuration_.certificateAuthorities = bundle_.emplace(systemFile, *CAFile_).path();
  }
  CURLM* multi = curl_multi_init();
  configuration_.share = curl_share_init();
  if (multi == nullptr || configuration_.share == nullptr) throw std::bad_alloc();
  // No locks are given: only this thread uses what is shared.
  curl_share_setopt(configuration_.share, CURLSHOPT_SHARE, CURL_LOCK_DATA_COOKIE);
  curl_share_setopt(configuration_.share, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);

  const std::lock_guard lock(mutex_);
  multi_ = multi;
}

void ZLVCurlLoop::tearDown() {
  while (!transfers_.empty()) fail(transfers_.begin()->first, NSURLErrorCancelled);
  const std::lock_guard lock(mutex_);
  curl_multi_cleanup(std::exchange(multi_, nullptr));
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
  transfers_.emplace(handle, std::move(transfer));
  send(handle);
}

void ZLVCurlLoop::send(CURL* handle) {
  if (const auto server = transfers_.at(handle)->awaitedServer(); !server.empty()) {
    auto& [first, others] = waiting_.try_emplace(server, Waiting{handle, {}}).first->second;
    if (first != handle) return others.push_back(handle);
  }
  if (curl_multi_add_handle(multi_, handle) != CURLM_OK) fail(handle, NSURLErrorUnknown);
}

void ZLVCurlLoop::sendWaiting() {
  std::erase_if(waiting_, [this](const auto& entry) {
    const auto& [server, calls] = entry;
    const auto first = transfers_.find(calls.first);
    if (first != transfers_.end() && first->second->awaitedServer() == server) return false;
    for (CURL* handle : calls.others) {
      if (transfers_.contains(handle)) curl_multi_add_handle(multi_, handle);
    }
    return true;
  });
}

void ZLVCurlLoop::takeDone() {
  int remaining = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_, &remaining)) {
    CURL* handle = message->easy_handle;
    const CURLcode result = message->data.result;  // NOLINT(*-union-access): libcurl's
    curl_multi_remove_handle(multi_, handle);
    limitCookies(handle);
    auto transfer = std::move(transfers_.extract(handle).mapped());
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
  for (const auto& [handle, transfer] : transfers_) {
    if (transfer->deadline() <= now) {
      idle.push_back(handle);
    } else {
      nextDeadline_ = std::min(nextDeadline_, transfer->deadline());
    }
  }
  for (CURL* handle : idle) fail(handle, NSURLErrorTimedOut);
}

void ZLVCurlLoop::fail(CURL* handle, NSURLError code) {
  curl_multi_remove_handle(multi_, handle);
  limitCookies(handle);
  const auto transfer = std::move(transfers_.extract(handle).mapped());
  transfer->fail(code);
  transfer->complete();
}

void ZLVCurlLoop::sleep() {
  {
    const std::lock_guard lock(mutex_);
    if (!added_.empty() || end_ != End::None) return;
    isAsleep_ = true;
  }
  curl_multi_poll(multi_, nullptr, 0, pollMilliseconds(), nullptr);
}

int ZLVCurlLoop::pollMilliseconds() const {
  const auto now = Clock::now();
  const auto moment = std::clamp(nextDeadline_, now, now + std::chrono::hours(1));
  return static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(moment - now).count());
}
