#include "Apps/Console/Host.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>

#include <arpa/inet.h>
#include <poll.h>
#include <strings.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>

namespace {

struct StandardErrorLog : ZLVSystemLog {
  void log(std::string_view line) override {
    const auto text = std::string(line) + '\n';
    std::fwrite(text.data(), 1, text.size(), stderr);
  }
};

/// Where usage events go: what is tried out with a server on this machine stays with that server.
std::optional<std::string> analyticsRoot(const ConsoleOptions& options) {
  if (options.analyticsRoot) return options.analyticsRoot;
  const auto server = ZLVURL::URLWithString(options.server);
  if (!server || !isThisMachine(server->host())) return std::nullopt;
  const auto& text = server->absoluteString();
  return text.substr(0, text.find_first_of("/?#", text.find("//") + 2)) + '/';
}

}  // namespace

bool isThisMachine(const std::string& host) {
  if (strcasecmp(host.c_str(), "localhost") == 0) return true;
  in_addr address4{};
  if (inet_aton(host.c_str(), &address4) != 0) return ntohl(address4.s_addr) >> 24 == 127;
  in6_addr address6{};
  return inet_pton(AF_INET6, host.c_str(), &address6) == 1 && IN6_IS_ADDR_LOOPBACK(&address6);
}

Host::Host(const ConsoleOptions& options, const Adapt& adapt)
    : console_(std::make_shared<ZLVConsoleUserInterface>(queue_, options.openWith)),
      userInterface_(console_) {
  auto platform =
      ZLVLinuxPlatform::platformWithOptions({.applicationName = "Zolva Console",
                                             .applicationVersion = ZLV_VERSION,
                                             .applicationIdentifier = "com.zolva.console",
                                             .allowsCleartext = options.allowsCleartext,
                                             .CAFile = options.CAFile,
                                             .analyticsRootURL = analyticsRoot(options)});
  platform.systemLog = std::make_shared<StandardErrorLog>();
  platform.userInterface = userInterface_;
  if (adapt) adapt(platform);
  userInterface_ = platform.userInterface;
  ZLVPlatform::install(std::move(platform));
  ZLVClient::initWithMerchantServerURL(options.server, options.merchantId, options.callbackURL,
                                       options.isLoggingEnabled);
}

void Host::setTick(std::chrono::milliseconds interval, std::function<void()> tick) {
  tickInterval_ = interval;
  tick_ = std::move(tick);
}

void Host::runOnce() {
  const bool readsInput = awaitsUser() && !isInputOver_;
  std::array<pollfd, 2> watched{
      {{queue_->fileDescriptor(), POLLIN, 0}, {readsInput ? STDIN_FILENO : -1, POLLIN, 0}}};
  const int ready = poll(watched.data(), watched.size(), static_cast<int>(tickInterval_.count()));
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
