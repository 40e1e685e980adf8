#include <ctime>
#include <tuple>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVSystemFact.h>
#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVSystemFile.h>

namespace {

/// File systems tell no two moments apart that are closer than this, in seconds.
constexpr std::time_t granularity = 2;

bool isSame(const struct stat& left, const struct stat& right) {
  const auto identity = [](const struct stat& file) {
    return std::tuple(file.st_dev, file.st_ino, file.st_ctim.tv_sec, file.st_ctim.tv_nsec);
  };
  return identity(left) == identity(right);
}

}  // namespace

ZLVSystemFact::ZLVSystemFact(const std::filesystem::path& root, const char* file, const char* key)
    : file_(root / file), key_(key) {}

std::optional<std::string> ZLVSystemFact::value() const {
  struct stat file {};
  if (stat(file_.c_str(), &file) != 0) return std::nullopt;
  const std::lock_guard lock(mutex_);
  if (!known_ || !isSame(*known_, file)) {
    value_ = *key_ == '\0' ? ZLVSystemFile::firstLine(file_) : ZLVSystemFile::setting(file_, key_);
    known_.reset();
    // A file that has only just changed may change once more without showing it.
    if (file.st_ctim.tv_sec + granularity < std::time(nullptr)) known_ = file;
  }
  return value_;
}
