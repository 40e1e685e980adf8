#pragma once

#include <memory>
#include <vector>

#include <curl/curl.h>

/// A session's libcurl handles, which all have the same options that never change.
///
/// Before 8.2 a handle is used once: libcurl keeps a pointer to the last header of an answer and,
/// where the next answer begins with a folded line, follows it when that is gone.
class ZLVCurlHandles {
 public:
  struct Cleanup {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
  };
  using Owner = std::unique_ptr<CURL, Cleanup>;

  /// Whether the libcurl that runs may be given a handle again.
  static bool mayBeUsedAgain();

  /// All handles have the options of `model` from now on.
  void setModel(Owner model, bool areUsedAgain);

  [[nodiscard]] bool hasModel() const { return model_ != nullptr; }

  /// Null when there is no memory for one.
  Owner take();

  /// libcurl is done with it.
  void giveBack(Owner handle);

  /// Lets go of all that are here.
  void clear();

 private:
  Owner model_;
  bool areUsedAgain_ = false;
  std::vector<Owner> used_;
};
