#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlSystem.h>

namespace {

bool writeAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(descriptor, text.data(), text.size());
    if (written <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace

void ZLVCurlSystem::nameThread(const char* name) { pthread_setname_np(pthread_self(), name); }

int ZLVCurlSystem::openSocket(int family, int type, int protocol,
                              std::chrono::milliseconds acknowledgement) {
  const int made = socket(family, type | SOCK_CLOEXEC, protocol);
  const auto milliseconds = static_cast<unsigned int>(acknowledgement.count());
  if (made >= 0) {
    setsockopt(made, IPPROTO_TCP, TCP_USER_TIMEOUT, &milliseconds, sizeof milliseconds);
  }
  return made;
}

bool ZLVCurlSystem::hasEnded(int socket) {
  pollfd event{socket, POLLRDHUP, 0};
  return poll(&event, 1, 0) != 0;
}

ZLVWakeSignal::~ZLVWakeSignal() {
  if (isOpen()) close(readEnd_);
}

bool ZLVWakeSignal::open() {
  if (!isOpen()) readEnd_ = writeEnd_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  return isOpen();
}

void ZLVWakeSignal::set() const { eventfd_write(writeEnd_, 1); }

ZLVMemoryFile::ZLVMemoryFile(std::string_view contents)
    : descriptor_(memfd_create("certificate authorities", MFD_CLOEXEC)) {
  if (descriptor_ >= 0 && writeAll(descriptor_, contents)) {
    path_ = "/proc/self/fd/" + std::to_string(descriptor_);
  }
}

ZLVMemoryFile::~ZLVMemoryFile() {
  if (descriptor_ >= 0) close(descriptor_);
}
