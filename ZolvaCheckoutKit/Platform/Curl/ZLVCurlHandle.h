#pragma once

#include <memory>
#include <utility>

#include <curl/curl.h>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlHandles.h>

/// A libcurl handle with the options of one hop.
class ZLVCurlHandle {
 public:
  struct Cleanup {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };

  /// `handles` outlives it.
  explicit ZLVCurlHandle(ZLVCurlHandles& handles) : handles_(handles), handle_(handles.take()) {
    if (handle_ == nullptr) error_ = CURLE_OUT_OF_MEMORY;
  }
  ZLVCurlHandle(const ZLVCurlHandle&) = delete;
  ZLVCurlHandle& operator=(const ZLVCurlHandle&) = delete;
  ~ZLVCurlHandle() {
    if (isLike_) handles_.giveBack(std::move(handle_));
  }

  [[nodiscard]] CURL* get() const { return handle_.get(); }

  /// Sets an option, unless an earlier one could not be set.
  template <class Value>
  void set(CURLoption option, Value value) {
    if (error_ == CURLE_OK) error_ = curl_easy_setopt(get(), option, value);
  }

  /// Appends to what is sent as the header. `setHeader` once all are there.
  void addHeaderLine(const char* line) {
    curl_slist* list = curl_slist_append(header_.get(), line);
    if (list == nullptr) error_ = CURLE_OUT_OF_MEMORY;
    if (header_ == nullptr) header_.reset(list);
  }
  void setHeader() { set(CURLOPT_HTTPHEADER, header_.get()); }

  /// It has options that no other hop has, and is not used again.
  void useOnce() { isLike_ = false; }

  /// Why the handle cannot be used, if it cannot.
  [[nodiscard]] CURLcode error() const { return error_; }

 private:
  std::unique_ptr<curl_slist, Cleanup> header_;  // outlives the handle, which refers to it
  ZLVCurlHandles& handles_;
  ZLVCurlHandles::Owner handle_;
  CURLcode error_ = CURLE_OK;
  bool isLike_ = true;  // the others
};
