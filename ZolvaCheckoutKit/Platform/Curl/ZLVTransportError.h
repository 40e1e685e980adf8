#pragma once

#include <string>
#include <string_view>

#include <curl/curl.h>

#include <ZolvaCheckoutKit/ZLVError.h>

/// Error values of the domain `NSURLErrorDomain`.
namespace ZLVTransportError {

/// An error about `URL`, with a description for people and, where libcurl had its part in it,
/// `underlying`: libcurl's code and words. `wasSent` tells whether any server got the request.
ZLVError error(NSURLError code, const std::string& URL, bool wasSent,
               const std::string& underlying = {});

/// The code for what libcurl reports of `transfer`, in `message` too.
NSURLError code(CURLcode result, CURL* transfer, std::string_view message);

}  // namespace ZLVTransportError
