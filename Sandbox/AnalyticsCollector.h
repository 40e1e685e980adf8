#pragma once

#include <string_view>
#include <vector>

#include <Sandbox/Exchange.h>
#include <Sandbox/Sandbox.h>

/// The analytics service's upload: keeps every record. No lock, the caller sees to that.
class ZLVAnalyticsCollector {
 public:
  ZLVSandboxAnswer upload(const ZLVSandboxRequest& request, std::string_view);

  [[nodiscard]] const std::vector<ZLVSandboxEvent>& events() const { return events_; }

 private:
  std::vector<ZLVSandboxEvent> events_;
};
