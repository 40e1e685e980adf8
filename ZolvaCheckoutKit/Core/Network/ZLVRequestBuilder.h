#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <ZolvaCheckoutKit/Core/Network/ZLVNetworkService.h>
#include <ZolvaCheckoutKit/Platform/ZLVURLSession.h>
#include <ZolvaCheckoutKit/ZLVURL.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

/// Turns the description of a call into its request. Checks nothing and escapes nothing: a text
/// that is no URL becomes a request without one. Any thread.
class ZLVRequestBuilder {
 public:
  ZLVRequestBuilder() = delete;

  /// The whole request; the other operations are its steps.
  static ZLVURLRequest buildRequestFrom(const ZLVNetworkService& service);

  /// Header names and values of a call.
  static ZLVDictionary buildHeader(ZLVHTTPMethod method, ZLVServiceType type);
  /// The two joined by one "/", of which one more is dropped from either side.
  static std::string combineBaseURL(std::string_view baseURL, std::string_view path);
  /// The URL, with the parameters as its query when the method is GET and there are parameters.
  static std::optional<ZLVURL> buildURL(std::string_view URL, ZLVHTTPMethod method,
                                        const ZLVValue& parameters);
  static std::string_view buildMethod(ZLVHTTPMethod method);
  static ZLVURLRequest buildRequest(ZLVHTTPMethod method, const ZLVDictionary& header,
                                    std::optional<ZLVURL> requestURL, const ZLVValue& parameters);
};
