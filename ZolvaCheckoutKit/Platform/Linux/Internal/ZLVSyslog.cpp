#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <exception>

#include <sys/socket.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVSyslog.h>

namespace {

/// Well below what the kernel lets through in one datagram.
constexpr std::size_t maximumSize = std::size_t{64} * 1024;
constexpr std::string_view cutMark = "\u2026 (cut)";

/// What stands before the line: priority, local time in English, and the program's name.
std::string head() {
  constexpr std::string_view months = "JanFebMarAprMayJunJulAugSepOctNovDec";
  const auto now = std::time(nullptr);
  tm local{};
  localtime_r(&now, &local);
  std::array<char, 64> time{};
  std::strftime(time.data(), time.size(), " %e %H:%M:%S ", &local);
  std::string text = '<' + std::to_string(LOG_USER | LOG_INFO) + '>';
  text += months.substr(static_cast<std::size_t>(local.tm_mon) * 3, 3);
  return text + time.data() + program_invocation_short_name + ": ";
}

}  // namespace

void ZLVSyslog::log(std::string_view line) try {
  if ((setlogmask(0) & LOG_MASK(LOG_INFO)) == 0) return;  // NOLINT(*-mt-unsafe): only asks
  if (const auto dropped = dropped_.exchange(0);
      dropped > 0 && !send("lines dropped before this one: " + std::to_string(dropped))) {
    dropped_ += dropped;
  }
  if (!send(line)) ++dropped_;
} catch (const std::exception&) {  // no memory
  ++dropped_;
}

bool ZLVSyslog::send(std::string_view line) const {
  auto text = head();
  text += line.substr(0, maximumSize);
  if (text.size() > maximumSize) {
    auto end = maximumSize - cutMark.size();
    while ((static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;  // not in a character
    text.resize(end);
    text += cutMark;
  }
  // Daemons take a line for ended at some of these.
  std::ranges::replace_if(
      text, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');

  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  socket_.copy(address.sun_path, sizeof address.sun_path - 1);
  // A socket for each line needs no repair when the daemon starts again.
  const int descriptor = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  const auto* name = reinterpret_cast<const sockaddr*>(&address);  // NOLINT(*-reinterpret-cast)
  const auto sent =
      sendto(descriptor, text.data(), text.size(), MSG_NOSIGNAL, name, sizeof address);
  if (descriptor >= 0) close(descriptor);
  return sent >= 0;
}
