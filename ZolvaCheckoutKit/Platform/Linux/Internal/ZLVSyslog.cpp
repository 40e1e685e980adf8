#include <algorithm>
#include <climits>

#include <syslog.h>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVSyslog.h>

void ZLVSyslog::log(std::string_view line) {
  const auto length = static_cast<int>(std::min<std::size_t>(line.size(), INT_MAX));
  // NOLINTNEXTLINE(*-vararg): syslog(3) has no other form
  syslog(LOG_INFO, "%.*s", length, line.data());
}
