#pragma once

// Calls through the session of the Linux platform, one after the other.

#include <future>
#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>

#include "Tests/Support/RawServer.h"

using Reply = RawServer::Reply;
using Then = RawServer::Then;

inline Reply hello(const std::string& /*request*/) { return {RawServer::response("hello")}; }

inline ZLVLinuxOptions linuxOptions() {
  return {.applicationName = "Tests", .applicationVersion = "1"};
}

inline std::unique_ptr<ZLVURLSession> makeSession(const ZLVLinuxOptions& options = linuxOptions()) {
  return ZLVLinuxPlatform::platformWithOptions(options).makeURLSession();
}

inline ZLVURLRequest request(const std::string& url, const std::string& method = "GET") {
  ZLVURLRequest request;
  request.URL = ZLVURL::URLWithString(url);
  request.HTTPMethod = method;
  return request;
}

inline std::future<ZLVURLAnswer> start(ZLVURLSession& session, ZLVURLRequest request) {
  std::promise<ZLVURLAnswer> promise;
  auto answer = promise.get_future();
  session.dataTask(std::move(request), [promise = std::move(promise)](ZLVURLAnswer value) mutable {
    promise.set_value(std::move(value));
  });
  return answer;
}

inline ZLVURLAnswer call(ZLVURLSession& session, ZLVURLRequest request) {
  return start(session, std::move(request)).get();
}

inline ZLVURLAnswer call(ZLVURLRequest request, const ZLVLinuxOptions& options = linuxOptions()) {
  return call(*makeSession(options), std::move(request));
}

/// The error's code, after a check of what every error has to have; 0 for an answer.
inline std::int64_t code(const ZLVURLAnswer& answer) {
  if (!answer.error) return 0;
  EXPECT_EQ(answer.error->domain(), NSURLErrorDomain);
  EXPECT_TRUE(answer.error->userInfo().contains(NSLocalizedDescriptionKey));
  EXPECT_TRUE(answer.error->userInfo().contains(NSURLErrorFailingURLStringErrorKey));
  EXPECT_TRUE(answer.data.empty());
  return answer.error->code();
}
