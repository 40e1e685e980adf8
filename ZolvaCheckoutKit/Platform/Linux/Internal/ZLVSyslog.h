#pragma once

#include <ZolvaCheckoutKit/Platform/ZLVSystemLog.h>

/// The system log by syslog(3), under whatever name and facility the host gave to openlog(3).
class ZLVSyslog final : public ZLVSystemLog {
 public:
  void log(std::string_view line) override;
};
