#include "Apps/Console/Host.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>

#include <poll.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>

namespace {

struct StandardErrorLog : ZLVSystemLog {
  void log(std::string_view line) override {
    const auto text = std::string(line) + '\n';
    std::fwrite(text.data(), 1, text.size(), stderr);
  }
};

/// A session that counts what it is sending.
class CountingSession : public ZLVURLSession {
 public:
  CountingSession(std::unique_ptr<ZLVURLSession> session, std::shared_ptr<ZLVMainQueue> queue,
                  std::shared_ptr<std::size_t> count)
      : session_(std::move(session)), queue_(std::move(queue)), count_(std::move(count)) {}

  void dataTask(ZLVURLRequest request, CompletionHandler handler) override {
    ++*count_;
    session_->dataTask(std::move(request), [queue = queue_, count = count_,
                                            handler = std::move(handler)](auto answer) mutable {
      std::move(handler)(std::move(answer));
      queue->dispatch([count] { --*count; });
    });
  }

 private:
  std::unique_ptr<ZLVURLSession> session_;
  std::shared_ptr<ZLVMainQueue> queue_;
  std::shared_ptr<std::size_t> count_;
};

}  // namespace

Host::Host(const ConsoleOptions& options, const MakeUserInterface& makeUserInterface)
    : console_(std::make_shared<ZLVConsoleUserInterface>(queue_, options.openWith)),
      userInterface_(console_) {
  auto platform =
      ZLVLinuxPlatform::platformWithOptions({.applicationName = "Zolva Console",
                                             .applicationVersion = ZLV_VERSION,
                                             .applicationIdentifier = "com.zolva.console",
                                             .allowsCleartext = options.allowsCleartext,
                                             .CAFile = options.CAFile,
                                             .analyticsRootURL = options.analyticsRoot});
  platform.systemLog = std::make_shared<StandardErrorLog>();
  platform.makeURLSession = [make = platform.makeURLSession, queue = queue_, count = underWay_] {
    return std::make_unique<CountingSession>(make(), queue, count);
  };
  if (makeUserInterface) userInterface_ = makeUserInterface(platform);
  platform.userInterface = userInterface_;
  ZLVPlatform::install(std::move(platform));
  ZLVClient::initWithMerchantServerURL(options.server, options.merchantId, options.callbackURL,
                                       options.isLoggingEnabled);
}

void Host::setTick(std::chrono::milliseconds interval, std::function<void()> tick) {
  tickInterval_ = interval;
  tick_ = std::move(tick);
}

void Host::finishUploads(std::chrono::milliseconds limit) {
  using Clock = std::chrono::steady_clock;
  const auto end = Clock::now() + limit;
  while (*underWay_ > 0) {
    const auto left = std::chrono::ceil<Milliseconds>(end - Clock::now());
    if (left <= Milliseconds::zero()) return;
    runOnce(left);
  }
}

void Host::runOnce(Milliseconds limit) {
  const bool readsInput = awaitsUser() && !isInputOver_;
  std::array<pollfd, 2> watched{
      {{queue_->fileDescriptor(), POLLIN, 0}, {readsInput ? STDIN_FILENO : -1, POLLIN, 0}}};
  const auto wait =
      tick_ && (limit < Milliseconds::zero() || tickInterval_ < limit) ? tickInterval_ : limit;
  const int ready = poll(watched.data(), watched.size(), static_cast<int>(wait.count()));
  if (tick_) tick_();
  if (ready < 0) return;
  queue_->drain();
  if (watched[1].revents != 0) readInput();
  serveInput();
}

void Host::readInput() {
  std::array<char, 4096> buffer{};
  const auto count = read(STDIN_FILENO, buffer.data(), buffer.size());
  if (count < 0 && errno == EINTR) return;
  if (count > 0) {
    input_.append(buffer.data(), static_cast<std::size_t>(count));
  } else {
    isInputOver_ = true;
    if (!input_.empty()) input_ += '\n';  // the last line may lack its end
  }
}

void Host::serveInput() {
  const auto close = [this] {
    if (console_->closeBrowser()) queue_->drain();  // what closing leads to is queued
  };
  while (awaitsUser()) {
    const auto end = input_.find('\n');
    if (end == std::string::npos) return isInputOver_ ? close() : void();
    auto line = input_.substr(0, end);
    input_.erase(0, end + 1);
    if (line.ends_with('\r')) line.pop_back();
    if (line.empty()) {
      close();
    } else if (const auto url = ZLVURL::URLWithString(line)) {
      ZLVClient::handleCallbackUrl(*url);
    } else {
      std::fprintf(stderr, "zolva: \"%s\" is not a URL\n", line.c_str());
    }
  }
}
