#include <algorithm>
#include <climits>
#include <optional>
#include <string>

#include <poll.h>

#include <ZolvaCheckoutKit/C/Internal/ZLVBuiltIn.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVConsoleUserInterface.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxMainQueue.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>

namespace {

std::optional<std::string> optional(const char* text) {
  return text == nullptr ? std::nullopt : std::optional<std::string>(text);
}

/// Refuses a call to a part that the host has a function for; `function` points to it in a host.
template <class Function>
void requireOwn(Function zlv_platform::*function, std::string_view name, std::string_view call) {
  if (!ZLVPlatform::isInstalled()) ZLVThrowFault(call, "no platform is installed");
  if (ZLVHost::installed().*function != nullptr) {
    ZLVThrowFault(call, std::string("the host has a function of its own, ").append(name));
  }
}

ZLVLinuxMainQueue& queue(std::string_view call) {
  requireOwn(&zlv_platform::dispatch, "dispatch", call);
  return *ZLVLinuxMainQueue::mainQueue();
}

ZLVConsoleUserInterface& console(std::string_view call) {
  requireOwn(&zlv_platform::show_page, "show_page", call);
  // NOLINTNEXTLINE(*-static-cast-downcast): where there is no show_page it is one
  return static_cast<ZLVConsoleUserInterface&>(*ZLVPlatform::installed().userInterface);
}

}  // namespace

ZLVPlatform ZLVBuiltIn::platform(const ZLVHost& host) {
  const bool isWhole = host.send != nullptr && host.dispatch != nullptr && host.log != nullptr &&
                       host.device_fact != nullptr;
  if (isWhole) return {};
  if (host.device_fact == nullptr) {
    ZLVRequired(host.application_version, "zlv_install", "application version");
  }
  ZLVLinuxOptions options;
  options.applicationName = optional(host.application_name).value_or("");
  // Only the device asks for it, and that may be the host's.
  options.applicationVersion = optional(host.application_version).value_or("-");
  options.applicationIdentifier = optional(host.application_identifier);
  options.allowsCleartext = host.allows_cleartext != 0;
  options.CAFile = optional(host.ca_file);
  if (host.maximum_answer_size != 0) options.maximumAnswerSize = host.maximum_answer_size;
  return ZLVLinuxPlatform::platformWithOptions(std::move(options));
}

void ZLVBuiltIn::setUserInterface(ZLVPlatform& platform) {
  platform.userInterface = std::make_shared<ZLVConsoleUserInterface>(platform.mainQueue);
}

int ZLVBuiltIn::queueDescriptor() { return queue("zlv_main_queue_descriptor").fileDescriptor(); }

void ZLVBuiltIn::turn(std::chrono::milliseconds limit) {
  auto& queue = ::queue("zlv_main_queue_drain");
  if (limit.count() > 0) {
    pollfd event{queue.fileDescriptor(), POLLIN, 0};
    poll(&event, 1, static_cast<int>(std::min<std::int64_t>(limit.count(), INT_MAX)));
  }
  ZLVRunReporting([&] { queue.drain(); });
}

std::shared_ptr<ZLVViewController> ZLVBuiltIn::consoleView() {
  return console("zlv_console_view").keyWindowRootViewController();
}

void ZLVBuiltIn::closePage() {
  if (!console("zlv_console_close_page").closeBrowser()) throw ZLVGone();
}
