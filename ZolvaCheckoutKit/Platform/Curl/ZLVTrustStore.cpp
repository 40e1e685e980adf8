#include <fstream>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>

#include <curl/curl.h>
#include <dirent.h>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVTrustStore.h>

namespace {

std::string contents(std::ifstream file) {
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

struct Close {
  void operator()(DIR* folder) const { closedir(folder); }
};

/// Whether there is a file named by a hash, as in "4f316efb.0". Without the standard library's
/// folders, which take 60 KB more.
bool hasHashes(const std::string& folder) {
  constexpr std::size_t digits = 8;
  const std::unique_ptr<DIR, Close> entries(opendir(folder.c_str()));
  while (const auto* entry = entries ? readdir(entries.get()) : nullptr) {  // NOLINT(*-mt-unsafe)
    const std::string_view name = entry->d_name;
    if (name.size() == digits + 2 && name.ends_with(".0") &&
        name.find_first_not_of("0123456789abcdef") == digits) {
      return true;
    }
  }
  return false;
}

}  // namespace

ZLVTrustStore::ZLVTrustStore(std::optional<std::string> hostFile, std::optional<std::string> folder)
    : hostFile_(std::move(hostFile)), systemFolder_(std::move(folder)) {}

bool ZLVTrustStore::read() {
  if (isRead_) return false;
  // What curl_version_info tells as well, but that asks every library below libcurl for its
  // version.
  const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> asked(curl_easy_init(),
                                                                  &curl_easy_cleanup);
  const auto pathOf = [&asked](CURLINFO info) -> std::optional<std::string> {
    char* path = nullptr;
    curl_easy_getinfo(asked.get(), info, &path);
    return path != nullptr ? std::optional<std::string>(path) : std::nullopt;
  };
  folder_ = systemFolder_ ? systemFolder_ : pathOf(CURLINFO_CAPATH);
  curl_tlssessioninfo* library = nullptr;
  curl_easy_getinfo(asked.get(), CURLINFO_TLS_SSL_PTR, &library);
  const bool readsByHash = library != nullptr && library->backend == CURLSSLBACKEND_OPENSSL;

  file_ = hostFile_.value_or("");
  isRead_ = readsByHash && folder_ && hasHashes(*folder_);
  if (isRead_) return true;

  const auto systemFile = pathOf(CURLINFO_CAINFO);
  // Beside a folder libcurl would keep nothing of the file.
  if (systemFile && folder_) folder_ = "";
  isRead_ = !hostFile_;
  if (isRead_) {
    file_ = systemFile.value_or("");
    return true;
  }
  const std::string further = contents(std::ifstream(*hostFile_));
  if (further.empty()) return true;
  const std::string system = systemFile ? contents(std::ifstream(*systemFile)) : "";
  bundle_.emplace(system + '\n' + further);
  isRead_ = !bundle_->path().empty();
  if (isRead_) file_ = bundle_->path();
  return true;
}
