#pragma once

#include <memory>
#include <optional>
#include <string>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlExchange.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVHTTPHop.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVIdleLimit.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVSendOnce.h>
#include <ZolvaCheckoutKit/Platform/ZLVURLSession.h>

/// One call: its request on the way along redirects, to its answer. Made on any thread, then used
/// on the session's.
///
/// After `start`, and after each `finishHop`, it either is answered or has another `handle` for
/// libcurl.
class ZLVCurlTransfer {
 public:
  ZLVCurlTransfer(ZLVURLRequest request, ZLVURLSession::CompletionHandler handler);

  /// No call, but the connection to a server that calls will find there.
  static std::unique_ptr<ZLVCurlTransfer> ahead(const std::string& URL);

  /// Prepares the first hop. `context` outlives the transfer.
  void start(ZLVCurlContext& context);

  /// Takes in that libcurl is done with the handle, and prepares what is to be sent next, if
  /// anything is.
  void finishHop(CURLcode result);

  /// Ends the call with an error.
  void fail(NSURLError code, const std::string& underlying = {});

  [[nodiscard]] bool isAnswered() const { return answer_.has_value(); }

  /// Gives the answer to the handler, once there is one; the transfer is over.
  void complete();

  [[nodiscard]] CURL* handle() const { return exchange_->handle(); }

  /// The server that the call is on the way to.
  [[nodiscard]] const ZLVWebURL& server() const { return hop_.url; }

  /// Whether the request has gone out to that server.
  [[nodiscard]] bool isSent() const { return sending_.isSent(); }

  /// The moment at which the call has made no progress for too long.
  [[nodiscard]] ZLVIdleLimit::Clock::time_point deadline() const { return idle_.deadline(); }

 private:
  void prepareHop();
  void prepareExchange();

  ZLVURLRequest request_;
  ZLVURLSession::CompletionHandler handler_;
  ZLVIdleLimit idle_;
  ZLVCurlContext* context_ = nullptr;

  ZLVHTTPHop hop_;
  ZLVSendOnce sending_{false};
  ZLVCurlExchange::Manner manner_;
  bool isAhead_ = false;
  std::optional<ZLVCurlExchange> exchange_;
  std::optional<ZLVURLAnswer> answer_;
};
