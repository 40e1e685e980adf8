#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <ZolvaCheckoutKit/Platform/ZLVOnce.h>
#include <ZolvaCheckoutKit/ZLVError.h>
#include <ZolvaCheckoutKit/ZLVExport.h>
#include <ZolvaCheckoutKit/ZLVURL.h>

/// How a request deals with caches.
enum class ZLVURLRequestCachePolicy : unsigned {
  UseProtocolCachePolicy = 0  ///< As HTTP says; the only one that the library asks for.
};

/// One HTTP request, ready to send.
struct ZLVURLRequest {
  /// Absent when its text was no URL; the library does not pass such a request to a session.
  std::optional<ZLVURL> URL;
  /// Its name in capitals, such as "POST".
  std::string HTTPMethod = "GET";
  /// Names and values, each name once, in no particular order.
  std::vector<std::pair<std::string, std::string>> allHTTPHeaderFields;
  /// Absent is no body; a request other than GET then has a body of length zero.
  std::optional<std::string> HTTPBody;
  /// A session without a cache keeps to every policy.
  ZLVURLRequestCachePolicy cachePolicy = ZLVURLRequestCachePolicy::UseProtocolCachePolicy;
  /// Seconds without any progress, connecting included, after which the request times out.
  double timeoutInterval = 60;
};

/// What came back: an answer (`statusCode` and `data`) or, with `error`, none.
struct ZLVURLAnswer {
  /// The answer's body, decompressed; any bytes.
  std::string data;
  /// The status of the HTTP answer, 100 to 999.
  int statusCode = 0;
  /// Why there is no answer. What else stands here then counts for nothing.
  std::optional<ZLVError> error;
};

/// Sends HTTP requests.
///
/// A session behaves as follows: a request goes out once, and only one without effects (GET) may
/// be sent again after a connection is lost; redirects are followed, at most 20 of them, to http
/// and https only and never from https to http; a redirect to another origin does not take the
/// request's own headers along, save Content-Type; compressed answers arrive decoded; cookies live
/// in memory; certificates are checked. Failures are of `NSURLErrorDomain`.
class ZLV_EXPORT ZLVURLSession {
 public:
  /// Called once, on a thread of the session's.
  using CompletionHandler = ZLVOnce<void(ZLVURLAnswer answer)>;

  /// Calls under way are answered with `NSURLErrorCancelled`, or their handlers are destroyed
  /// uncalled, which the library reports the same way.
  virtual ~ZLVURLSession() = default;

  /// Sends `request` and returns at once. Called on any thread, also on several at once. The
  /// session owns `handler` until it has called it, never inside this call. Must not throw; what
  /// cannot be sent is answered with an error.
  virtual void dataTask(ZLVURLRequest request, CompletionHandler handler) = 0;
};
