#include <algorithm>
#include <climits>

#include <syslog.h>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVSyslog.h>

void ZLVSyslog::log(std::string_view line) {
  const auto length = static_cast<int>(std::min<std::size_t>(line.size(), INT_MAX));
  syslog(LOG_INFO, "%.*s", length, line.data());
}
