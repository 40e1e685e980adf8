#pragma once

#include <memory>
#include <string>
#include <thread>
#include <utility>

#include <curl/curl.h>

#include <ZolvaCheckoutKit/Platform/ZLVURLSession.h>

/// What is pinned: calls below this URL go to a server with this key or nowhere.
struct Pin {
  std::string baseURL;     ///< As it was given to the library, without a "/" at the end.
  std::string publicKeys;  ///< "sha256//…", several parted by ";": have a second one in reserve.
  std::string CAFile;      ///< Where the key's authority is not one of the system's; may be empty.
};

/// Sends calls to the pinned server itself, and leaves all others to the session below. Redirects
/// are not followed: the pin says nothing of other servers.
class PinnedSession final : public ZLVURLSession {
 public:
  PinnedSession(std::unique_ptr<ZLVURLSession> others, Pin pin)
      : others_(std::move(others)), pin_(std::make_shared<const Pin>(std::move(pin))) {
    curl_global_init(CURL_GLOBAL_DEFAULT);
  }

  void dataTask(ZLVURLRequest request, CompletionHandler handler) override {
    if (!request.URL->absoluteString().starts_with(pin_->baseURL + '/')) {
      return others_->dataTask(std::move(request), std::move(handler));
    }
    // A shop makes a call now and then: a thread for each is enough. Where there is none left, the
    // handler goes unused, which the library reports as a cancelled call.
    try {
      std::thread([pin = pin_, request = std::move(request),
                   handler = std::move(handler)]() mutable {
        std::move(handler)(answer(*pin, request));
      }).detach();
    } catch (const std::system_error&) {
    }
  }

 private:
  static NSURLError codeOf(CURLcode result) {
    switch (result) {
      case CURLE_SSL_PINNEDPUBKEYNOTMATCH:
      case CURLE_PEER_FAILED_VERIFICATION:
        return NSURLErrorServerCertificateUntrusted;  // nothing was sent
      case CURLE_COULDNT_RESOLVE_HOST:
        return NSURLErrorCannotFindHost;
      case CURLE_COULDNT_CONNECT:
        return NSURLErrorCannotConnectToHost;
      case CURLE_OPERATION_TIMEDOUT:
        return NSURLErrorTimedOut;
      case CURLE_FILESIZE_EXCEEDED:
        return NSURLErrorDataLengthExceedsMaximum;
      default:
        return NSURLErrorNetworkConnectionLost;  // the server may have carried it out
    }
  }

  static std::size_t append(char* bytes, std::size_t, std::size_t count, void* data) {
    constexpr std::size_t largest = 8 * 1024 * 1024;
    auto& text = *static_cast<std::string*>(data);
    if (text.size() + count > largest) return 0;
    text.append(bytes, count);
    return count;
  }

  static ZLVURLAnswer answer(const Pin& pin, const ZLVURLRequest& request) {
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> call(curl_easy_init(),
                                                                   &curl_easy_cleanup);
    const auto set = [&](CURLoption option, auto value) {
      curl_easy_setopt(call.get(), option, value);
    };
    curl_slist* fields = nullptr;
    for (const auto& [name, value] : request.allHTTPHeaderFields) {
      fields = curl_slist_append(fields, (name + ": " + value).c_str());
    }
    const std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> kept(fields,
                                                                           &curl_slist_free_all);
    ZLVURLAnswer answer;
    set(CURLOPT_URL, request.URL->absoluteString().c_str());
    set(CURLOPT_PROTOCOLS_STR, "https");
    set(CURLOPT_PINNEDPUBLICKEY, pin.publicKeys.c_str());
    if (!pin.CAFile.empty()) set(CURLOPT_CAINFO, pin.CAFile.c_str());
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_ACCEPT_ENCODING, "");
    set(CURLOPT_HTTPHEADER, fields);
    if (request.HTTPMethod != "GET") {
      set(CURLOPT_POSTFIELDSIZE_LARGE,
          static_cast<curl_off_t>(request.HTTPBody.value_or("").size()));
      set(CURLOPT_COPYPOSTFIELDS, request.HTTPBody.value_or("").c_str());
      set(CURLOPT_CUSTOMREQUEST, request.HTTPMethod.c_str());
    }
    set(CURLOPT_LOW_SPEED_LIMIT, 1L);
    set(CURLOPT_LOW_SPEED_TIME, static_cast<long>(request.timeoutInterval));
    set(CURLOPT_WRITEFUNCTION, &append);
    set(CURLOPT_WRITEDATA, &answer.data);

    const auto result = curl_easy_perform(call.get());
    long status = 0;
    curl_easy_getinfo(call.get(), CURLINFO_RESPONSE_CODE, &status);
    answer.statusCode = static_cast<int>(status);
    if (result != CURLE_OK) {
      const std::string words = curl_easy_strerror(result);
      answer.error = ZLVError::errorWithDomain(NSURLErrorDomain, codeOf(result),
                                               ZLVErrorText("The shop cannot be reached safely."),
                                               {{std::string(NSUnderlyingErrorKey), words}});
    }
    return answer;
  }

  const std::unique_ptr<ZLVURLSession> others_;
  const std::shared_ptr<const Pin> pin_;
};
