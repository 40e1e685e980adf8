#pragma once

#include <array>
#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include <curl/curl.h>

#include <ZolvaCheckoutKit/Platform/Curl/Internal/ZLVCurlSockets.h>
#include <ZolvaCheckoutKit/Platform/Curl/Internal/ZLVHTTPHop.h>
#include <ZolvaCheckoutKit/Platform/ZLVURLSession.h>

/// What all transfers of a session have in common.
struct ZLVCurlConfiguration {
  bool allowsCleartext = false;
  /// Whether the system's certificate authorities stand in a file.
  bool hasSystemFile = false;
  std::size_t maximumAnswerSize = 0;
  /// The file of certificate authorities; libcurl's own when empty.
  std::string certificateAuthorities = {};
  /// Cookies and TLS sessions.
  CURLSH* share = nullptr;
  ZLVCurlSockets* sockets = nullptr;
};

/// One call: its request on the way along redirects, and its answer so far. Used on the session's
/// thread, which gives `handle` to libcurl each time that `start` or `redirected` says so.
class ZLVCurlTransfer {
 public:
  using Clock = std::chrono::steady_clock;
  struct Cleanup {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };
  using Handle = std::unique_ptr<CURL, Cleanup>;

  ZLVCurlTransfer(ZLVURLRequest request, ZLVURLSession::CompletionHandler handler);
  ZLVCurlTransfer(const ZLVCurlTransfer&) = delete;
  ZLVCurlTransfer& operator=(const ZLVCurlTransfer&) = delete;
  ~ZLVCurlTransfer() = default;

  [[nodiscard]] CURL* handle() const { return handle_.get(); }

  /// Prepares a handle for the first hop. False when the request cannot be sent; `answer` then says
  /// why.
  bool start(const ZLVCurlConfiguration& configuration);

  /// Takes in that libcurl is done with the handle. True when another one is prepared for another
  /// hop.
  bool continueAfter(CURLcode result);

  /// The server that the call is on the way to: scheme, host and port.
  [[nodiscard]] std::string server() const;

  /// Whether the request has gone out to that server.
  [[nodiscard]] bool isSent() const { return isSent_; }

  /// The moment at which the call has made no progress for too long.
  [[nodiscard]] Clock::time_point deadline() const { return lastProgress_ + timeoutInterval_; }

  void fail(NSURLError code, const std::string& underlying = {});

  /// Gives the answer to the handler; the transfer is over.
  void complete();

 private:
  struct Callbacks;

  bool prepare();
  /// Sets an option, unless an earlier one could not be set.
  template <class Value>
  void set(CURLoption option, Value value);
  void setCallOptions();
  void setHopOptions();
  void addLine(const std::string& text);
  [[nodiscard]] std::optional<NSURLError> refusal() const;
  bool refusesToSend();
  bool mustStartAgain(CURLcode result);
  void conclude(CURLcode result);

  ZLVURLRequest request_;
  ZLVURLSession::CompletionHandler handler_;
  const ZLVCurlConfiguration* configuration_ = nullptr;
  Clock::duration timeoutInterval_;
  Clock::time_point lastProgress_ = Clock::now();

  ZLVHTTPHop hop_;
  ZLVURLAnswer answer_;
  curl_off_t bytesMoved_ = 0;
  CURLcode setting_ = CURLE_OK;
  bool isSent_ = false;       // this hop
  bool isLost_ = false;       // libcurl wanted to send this hop again
  bool isSpoilt_ = false;     // the connection was, on which this hop was to be sent
  bool mustConnect_ = false;  // this hop, on a connection of its own
  ZLVCurlSockets::Manner manner_;
  bool isTooLarge_ = false;
  bool isOutOfMemory_ = false;
  bool isHeaderWhole_ = false;
  std::size_t headerSize_ = 0;
  std::array<char, CURL_ERROR_SIZE> message_{};
  std::unique_ptr<curl_slist, Cleanup> headers_;
  Handle handle_;
};
