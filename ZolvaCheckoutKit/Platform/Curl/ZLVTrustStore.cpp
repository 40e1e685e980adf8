#include <fstream>
#include <iterator>
#include <memory>
#include <utility>

#include <curl/curl.h>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVTrustStore.h>

namespace {

std::string contents(std::ifstream file) {
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace

ZLVTrustStore::ZLVTrustStore(std::optional<std::string> hostFile)
    : hostFile_(std::move(hostFile)), file_(hostFile_.value_or("")) {}

bool ZLVTrustStore::read() {
  if (isRead_) return false;
  // What curl_version_info tells as well, but that asks every library below libcurl for its
  // version.
  const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> asked(curl_easy_init(),
                                                                  &curl_easy_cleanup);
  char* systemFile = nullptr;
  curl_easy_getinfo(asked.get(), CURLINFO_CAINFO, &systemFile);
  hasSystemFile_ = systemFile != nullptr;
  isRead_ = !hostFile_;
  if (isRead_) return true;

  const std::string further = contents(std::ifstream(*hostFile_));
  if (further.empty()) return true;
  const std::string system = hasSystemFile_ ? contents(std::ifstream(systemFile)) : "";
  bundle_.emplace(system + '\n' + further);
  isRead_ = !bundle_->path().empty();
  if (isRead_) file_ = bundle_->path();
  return true;
}
