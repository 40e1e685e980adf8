#pragma once

#include <string>

#include <curl/curl.h>

#include <ZolvaCheckoutKit/ZLVError.h>

/// Error values of the domain `NSURLErrorDomain`.
class ZLVTransportError {
 public:
  /// An error about `URL`, with a description for people and, where libcurl had its part in it,
  /// `underlying`: libcurl's code and words.
  static ZLVError error(NSURLError code, const std::string& URL,
                        const std::string& underlying = {});

  /// The code for what libcurl reports of `transfer`.
  static NSURLError code(CURLcode result, CURL* transfer);
};
