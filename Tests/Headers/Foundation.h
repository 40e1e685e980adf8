// The names that the library's headers have in common with Objective-C's Foundation, declared as
// they are there.
#pragma once

@class NSString;
typedef long NSInteger;
typedef unsigned char Boolean;
typedef NSString* NSErrorDomain;
typedef NSString* NSErrorUserInfoKey;

extern "C" NSErrorDomain const NSCocoaErrorDomain;
extern "C" NSErrorDomain const NSURLErrorDomain;
extern "C" NSErrorUserInfoKey const NSLocalizedDescriptionKey;
extern "C" NSErrorUserInfoKey const NSLocalizedFailureReasonErrorKey;
extern "C" NSErrorUserInfoKey const NSUnderlyingErrorKey;
extern "C" NSString* const NSURLErrorFailingURLStringErrorKey;

enum : NSInteger { NSPropertyListReadCorruptError = 3840 };
enum NSURLError : NSInteger {
  NSURLErrorUnknown = -1,
  NSURLErrorCancelled = -999,
  NSURLErrorBadURL = -1000,
  NSURLErrorTimedOut = -1001,
  NSURLErrorUnsupportedURL = -1002,
  NSURLErrorCannotFindHost = -1003,
  NSURLErrorCannotConnectToHost = -1004,
  NSURLErrorNetworkConnectionLost = -1005,
  NSURLErrorDNSLookupFailed = -1006,
  NSURLErrorHTTPTooManyRedirects = -1007,
  NSURLErrorResourceUnavailable = -1008,
  NSURLErrorNotConnectedToInternet = -1009,
  NSURLErrorRedirectToNonExistentLocation = -1010,
  NSURLErrorBadServerResponse = -1011,
  NSURLErrorCannotDecodeRawData = -1015,
  NSURLErrorCannotDecodeContentData = -1016,
  NSURLErrorAppTransportSecurityRequiresSecureConnection = -1022,
  NSURLErrorDataLengthExceedsMaximum = -1103,
  NSURLErrorSecureConnectionFailed = -1200,
  NSURLErrorServerCertificateHasBadDate = -1201,
  NSURLErrorServerCertificateUntrusted = -1202,
  NSURLErrorServerCertificateHasUnknownRoot = -1203,
  NSURLErrorServerCertificateNotYetValid = -1204,
  NSURLErrorClientCertificateRejected = -1205
};
