#include <fstream>
#include <iterator>

#include <sys/mman.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Curl/Internal/ZLVCertificateBundle.h>

namespace {

std::string contents(std::ifstream file) {
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

bool writeAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(descriptor, text.data(), text.size());
    if (written <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace

ZLVCertificateBundle::ZLVCertificateBundle(const char* systemFile, const std::string& furtherFile)
    : path_(furtherFile) {
  const std::string further = contents(std::ifstream(furtherFile));
  if (further.empty()) return;
  const std::string system = systemFile == nullptr ? "" : contents(std::ifstream(systemFile));

  descriptor_ = memfd_create("certificate authorities", MFD_CLOEXEC);
  if (descriptor_ >= 0 && writeAll(descriptor_, system + '\n' + further)) {
    path_ = "/proc/self/fd/" + std::to_string(descriptor_);
    isWhole_ = true;
  }
}

ZLVCertificateBundle::~ZLVCertificateBundle() {
  if (descriptor_ >= 0) close(descriptor_);
}
