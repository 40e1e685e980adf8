#pragma once

#include <memory>

#include <curl/curl.h>

/// A libcurl handle with its options.
///
/// Handles are used once: libcurl before 8.2 keeps a pointer to the last header of an answer and,
/// where the next answer begins with a folded line, follows it when that is gone.
class ZLVCurlHandle {
 public:
  struct Cleanup {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };

  ZLVCurlHandle() {
    if (handle_ == nullptr) error_ = CURLE_OUT_OF_MEMORY;
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

  /// Why the handle cannot be used, if it cannot.
  [[nodiscard]] CURLcode error() const { return error_; }

 private:
  std::unique_ptr<curl_slist, Cleanup> header_;  // outlives the handle, which refers to it
  std::unique_ptr<CURL, Cleanup> handle_{curl_easy_init()};
  CURLcode error_ = CURLE_OK;
};
