#include <array>
#include <string>
#include <utility>

#include <ZolvaCheckoutKit/C/Internal/ZLVBuiltIn.h>

namespace {

[[noreturn]] void failWithout(std::string_view call, std::string_view what) {
  ZLVThrowFault(
      call, std::string("on this system the library has no ").append(what).append(" of its own"));
}

}  // namespace

ZLVPlatform ZLVBuiltIn::platform(const ZLVHost& host) {
  const std::array<std::pair<bool, std::string_view>, 5> functions{{
      {host.dispatch != nullptr, "dispatch"},
      {host.send != nullptr, "send"},
      {host.log != nullptr, "log"},
      {host.device_fact != nullptr, "device_fact"},
      {host.show_page != nullptr, "show_page"},
  }};
  for (const auto& [isGiven, function] : functions) {
    if (!isGiven) failWithout("zlv_install", function);
  }
  return {};
}

void ZLVBuiltIn::setUserInterface(ZLVPlatform& /*platform*/) {}

int ZLVBuiltIn::queueDescriptor() { failWithout("zlv_main_queue_descriptor", "queue"); }

void ZLVBuiltIn::turn(std::chrono::milliseconds /*limit*/) {
  failWithout("zlv_main_queue_drain", "queue");
}

std::shared_ptr<ZLVViewController> ZLVBuiltIn::consoleView() {
  failWithout("zlv_console_view", "console");
}

void ZLVBuiltIn::closePage() { failWithout("zlv_console_close_page", "console"); }
