#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <utility>

#include <ZolvaCheckoutKit/C/Internal/ZLVBuiltIn.h>
#include <ZolvaCheckoutKit/C/Internal/ZLVHostDevice.h>
#include <ZolvaCheckoutKit/C/Internal/ZLVHostQueue.h>
#include <ZolvaCheckoutKit/C/Internal/ZLVHostSession.h>
#include <ZolvaCheckoutKit/C/Internal/ZLVHostUserInterface.h>
#include <ZolvaCheckoutKit/Platform/ZLVActivity.h>
#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>

namespace {

constexpr std::string_view installCall = "zlv_install";

std::atomic<const ZLVHost*> installedHost{nullptr};

/// The diagnostic log as the host's `log` has it.
class HostLog final : public ZLVSystemLog {
 public:
  explicit HostLog(const ZLVHost& host) : host_(host) {}

  void log(std::string_view line) override { host_.log(host_.context, std::string(line).c_str()); }

 private:
  const ZLVHost& host_;
};

void requireTogether(bool one, bool other, std::string_view what) {
  if (one != other) ZLVThrowFault(installCall, std::string("only some of ").append(what));
}

/// Functions that are of no use without each other.
void requireWholeGroups(const zlv_platform& host) {
  const bool hasPages = host.show_page != nullptr;
  const bool hasViews = host.key_window_root != nullptr;
  requireTogether(hasPages, host.hide_page != nullptr, "show_page and hide_page");
  constexpr std::string_view views =
      "key_window_root, view_kind, presented_view and last_child_view";
  requireTogether(hasViews, host.view_kind != nullptr, views);
  requireTogether(hasViews, host.presented_view != nullptr, views);
  requireTogether(hasViews, host.last_child_view != nullptr, views);
  if (hasViews && !hasPages) ZLVThrowFault(installCall, "views without show_page");
}

ZLVPlatform platformOf(const ZLVHost& host) {
  auto platform = ZLVBuiltIn::platform(host);
  if (host.send != nullptr) {
    platform.makeURLSession = [&host] { return std::make_unique<ZLVHostSession>(host); };
  }
  if (host.dispatch != nullptr) platform.mainQueue = std::make_shared<ZLVHostQueue>(host);
  if (host.log != nullptr) platform.systemLog = std::make_shared<HostLog>(host);
  if (host.device_fact != nullptr) platform.device = std::make_shared<ZLVHostDevice>(host);
  if (host.show_page != nullptr) {
    platform.userInterface = std::make_shared<ZLVHostUserInterface>(host);
  } else {
    ZLVBuiltIn::setUserInterface(platform);
  }
  if (host.analytics_root_url != nullptr) platform.analyticsRootURL = host.analytics_root_url;
  if (host.maximum_decoded_size != 0) platform.maximumDecodedSize = host.maximum_decoded_size;
  return platform;
}

}  // namespace

const ZLVHost& ZLVHost::installed() noexcept { return *installedHost.load(); }

zlv_result zlv_install(const zlv_platform* platform) {
  return ZLVResultOf([&] {
    // Never freed, as the platform that refers to it.
    auto host = std::make_unique<ZLVHost>(ZLVHost{ZLVStruct(platform, installCall, "platform")});
    requireWholeGroups(*host);
    auto made = platformOf(*host);
    const ZLVHost* none = nullptr;
    if (!installedHost.compare_exchange_strong(none, host.get())) {
      ZLVThrowFault(installCall, "a platform is installed already");
    }
    static_cast<void>(host.release());
    ZLVPlatform::install(std::move(made));
  });
}

zlv_result zlv_run_until_idle(int64_t limit, void (*turn)(void* context, int64_t milliseconds),
                              void* context) {
  auto result = ZLV_BUSY;
  const auto failure = ZLVResultOf([&] {
    constexpr std::string_view call = "zlv_run_until_idle";
    if (!ZLVPlatform::isInstalled()) ZLVThrowFault(call, "no platform is installed");
    if (turn == nullptr && ZLVHost::installed().dispatch != nullptr) {
      ZLVThrowFault(call, "no turn, and the host's own dispatch");
    }
    using std::chrono::milliseconds;
    const auto takeTurn = [&](milliseconds left) {
      if (turn == nullptr) return ZLVBuiltIn::turn(left);
      turn(context, left.count());
    };
    if (ZLVActivity::runUntilIdle(milliseconds(limit), takeTurn)) result = ZLV_OK;
  });
  return failure == ZLV_OK ? result : failure;
}

int zlv_main_queue_descriptor(void) {
  int descriptor = -1;
  ZLVResultOf([&] { descriptor = ZLVBuiltIn::queueDescriptor(); });
  return descriptor;
}

zlv_result zlv_main_queue_drain(void) {
  return ZLVResultOf([] { ZLVBuiltIn::turn(std::chrono::milliseconds(0)); });
}

zlv_view* zlv_console_view(void) {
  zlv_view* view = nullptr;
  ZLVResultOf([&] { view = ZLVAddView(ZLVBuiltIn::consoleView()); });
  return view;
}

zlv_result zlv_console_close_page(void) { return ZLVResultOf(ZLVBuiltIn::closePage); }
