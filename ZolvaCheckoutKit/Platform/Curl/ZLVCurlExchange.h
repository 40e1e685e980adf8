#pragma once

#include <array>
#include <optional>
#include <string>

#include <curl/curl.h>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlContext.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlHandle.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVHTTPAnswerReader.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVHTTPHop.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVIdleLimit.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVSendOnce.h>

/// One try of a hop: its request and its answer, by one libcurl handle.
class ZLVCurlExchange {
 public:
  /// How the request gets a connection.
  struct Manner {
    bool isHasty = true;   ///< An address that does not answer soon is left for the next one.
    bool isFresh = false;  ///< Kept connections are left alone.
    /// The connection is made and kept, and nothing goes out on it.
    bool isAhead = false;
  };

  struct Failure {
    NSURLError code;
    std::string underlying = {};  ///< libcurl's code and words.
  };

  /// The options that all exchanges of a session have in common.
  static ZLVCurlHandles::Owner makeModel(ZLVCurlContext& context);

  /// All that it is given outlives it.
  ZLVCurlExchange(const ZLVHTTPHop& hop, Manner manner, ZLVSendOnce& sending, ZLVIdleLimit& idle,
                  ZLVCurlContext& context);
  ZLVCurlExchange(const ZLVCurlExchange&) = delete;
  ZLVCurlExchange& operator=(const ZLVCurlExchange&) = delete;
  ~ZLVCurlExchange();

  [[nodiscard]] CURL* handle() const { return handle_.get(); }

  /// Whether the handle can be given to libcurl; `failure` tells why not.
  [[nodiscard]] bool isReady() const { return result_ == CURLE_OK; }

  /// libcurl is done with the handle. What follows tells what became of it.
  void finish(CURLcode result);

  /// The kept connection that it was to go out on had something to read, and was not used.
  [[nodiscard]] bool isSpoilt() const { return isSpoilt_; }

  /// In haste no address answered. Nothing was sent.
  [[nodiscard]] bool wasTooHasty() const;

  /// The answer's status.
  [[nodiscard]] long status() const;

  /// Where the answer sends the request; null when it is the answer. Valid as long as this.
  [[nodiscard]] const char* location() const;

  /// Nothing when there is an answer.
  [[nodiscard]] std::optional<Failure> failure() const;

  /// The answer's body.
  [[nodiscard]] std::string& body() { return reader_.body(); }

 private:
  struct Callbacks;

  ZLVSendOnce& sending_;
  ZLVIdleLimit& idle_;
  ZLVCurlContext& context_;
  const Manner manner_;
  ZLVCurlSockets::Attempt attempt_;
  ZLVHTTPAnswerReader reader_;
  std::array<char, CURL_ERROR_SIZE> message_{};
  bool isSpoilt_ = false;
  CURLcode result_ = CURLE_OK;
  ZLVCurlHandle handle_;
};
