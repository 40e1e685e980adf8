#include <cstddef>
#include <utility>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlHandles.h>

namespace {

/// A handle takes some 6 KB.
constexpr std::size_t maximumKept = 64;

}  // namespace

bool ZLVCurlHandles::mayBeUsedAgain() {
  // An option that came with it. curl_version_info asks every library below libcurl for its
  // version, from pages that nobody else needs: 300 KB.
  return curl_easy_option_by_name("HAPROXY_CLIENT_IP") != nullptr;
}

void ZLVCurlHandles::setModel(Owner model, bool areUsedAgain) {
  model_ = std::move(model);
  areUsedAgain_ = areUsedAgain;
  used_.clear();
}

ZLVCurlHandles::Owner ZLVCurlHandles::take() {
  if (used_.empty()) return Owner(model_ ? curl_easy_duphandle(model_.get()) : nullptr);
  auto handle = std::move(used_.back());
  used_.pop_back();
  return handle;
}

void ZLVCurlHandles::giveBack(Owner handle) {
  if (!areUsedAgain_ || !handle || used_.size() >= maximumKept) return;
  // What it refers to goes. The rest is set for each hop.
  curl_easy_setopt(handle.get(), CURLOPT_ERRORBUFFER, nullptr);
  curl_easy_setopt(handle.get(), CURLOPT_CURLU, nullptr);
  curl_easy_setopt(handle.get(), CURLOPT_HTTPHEADER, nullptr);
  curl_easy_setopt(handle.get(), CURLOPT_POSTFIELDS, nullptr);
  used_.push_back(std::move(handle));
}

void ZLVCurlHandles::clear() {
  used_.clear();
  model_.reset();
}
