#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/ZLVError.h>

TEST(Error, SaysWhetherTheRequestMayHaveTakenEffect) {
  const std::tuple<std::string_view, std::int64_t, bool> cases[] = {
      {ZLVErrorDomain, 400, false},
      {ZLVErrorDomain, 499, false},
      {ZLVErrorDomain, 500, true},
      {ZLVErrorDomain, 302, true},
      {ZLVErrorDomain, 0, true},
      {ZLVCheckoutErrorDomain, -1, true},
      {NSCocoaErrorDomain, NSPropertyListReadCorruptError, true},
      {"a session's own", 404, true},
      {NSURLErrorDomain, NSURLErrorCancelled, true},
      {NSURLErrorDomain, NSURLErrorTimedOut, true},
      {NSURLErrorDomain, NSURLErrorNetworkConnectionLost, true},
      {NSURLErrorDomain, NSURLErrorSecureConnectionFailed, true},
      {NSURLErrorDomain, NSURLErrorDataLengthExceedsMaximum, true},
      {NSURLErrorDomain, NSURLErrorBadURL, false},
      {NSURLErrorDomain, NSURLErrorUnsupportedURL, false},
      {NSURLErrorDomain, NSURLErrorCannotFindHost, false},
      {NSURLErrorDomain, NSURLErrorCannotConnectToHost, false},
      {NSURLErrorDomain, NSURLErrorNotConnectedToInternet, false},
      {NSURLErrorDomain, NSURLErrorAppTransportSecurityRequiresSecureConnection, false},
      {NSURLErrorDomain, NSURLErrorServerCertificateHasBadDate, false},
      {NSURLErrorDomain, NSURLErrorServerCertificateUntrusted, false},
      {NSURLErrorDomain, NSURLErrorServerCertificateHasUnknownRoot, false},
      {NSURLErrorDomain, NSURLErrorServerCertificateNotYetValid, false},
  };
  for (const auto& [domain, code, mayHave] : cases) {
    const auto error = ZLVError::errorWithDomain(domain, code, {});
    EXPECT_EQ(error.requestMayHaveTakenEffect(), mayHave) << error.debugDescription();
    // On a later hop of a redirect.
    const auto later =
        ZLVError::errorWithDomain(domain, code, {{std::string(ZLVErrorRequestWasSentKey), true}});
    EXPECT_EQ(later.requestMayHaveTakenEffect(), mayHave || domain == NSURLErrorDomain);
  }
}
