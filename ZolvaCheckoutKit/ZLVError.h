#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include <ZolvaCheckoutKit/ZLVExport.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

/// The server answered with a failure; the code is its status code.
inline constexpr std::string_view ZLVErrorDomain = "com.zolva.checkoutkit";
/// The checkout flow could not go on; the code is -1.
inline constexpr std::string_view ZLVCheckoutErrorDomain = "com.zolva.checkoutkit.checkout";
/// The call got no answer; the codes are `NSURLError`.
inline constexpr std::string_view NSURLErrorDomain = "NSURLErrorDomain";
/// The answer could not be read; the code is `NSPropertyListReadCorruptError`.
inline constexpr std::string_view NSCocoaErrorDomain = "NSCocoaErrorDomain";

/// User-info keys.
inline constexpr std::string_view NSLocalizedDescriptionKey = "NSLocalizedDescription";
inline constexpr std::string_view NSLocalizedFailureReasonErrorKey = "NSLocalizedFailureReason";
inline constexpr std::string_view NSUnderlyingErrorKey = "NSUnderlyingError";
inline constexpr std::string_view NSURLErrorFailingURLStringErrorKey = "NSErrorFailingURLStringKey";
/// Stands, as true, in an error of `NSURLErrorDomain` when a server had received the request before
/// the call failed, such as one that redirected it to a server that cannot be reached.
inline constexpr std::string_view ZLVErrorRequestWasSentKey = "ZLVErrorRequestWasSent";

/// Codes of `NSURLErrorDomain`, the same on every platform.
enum NSURLError : std::int64_t {
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
  NSURLErrorResourceUnavailable = -1008,  ///< This machine has not enough memory for the call.
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
  NSURLErrorClientCertificateRejected = -1205,
};

/// Code of `NSCocoaErrorDomain` for an answer that is not the JSON it should be.
inline constexpr std::int64_t NSPropertyListReadCorruptError = 3840;

/// A failure handed to a completion. An immutable value; copy it freely, read it on any thread.
class ZLV_EXPORT ZLVError {
 public:
  /// `errorWithDomain:code:userInfo:`.
  static ZLVError errorWithDomain(std::string_view domain, std::int64_t code,
                                  ZLVDictionary userInfo);

  [[nodiscard]] std::string domain() const;
  [[nodiscard]] std::int64_t code() const noexcept { return code_; }
  [[nodiscard]] const ZLVDictionary& userInfo() const& noexcept;
  [[nodiscard]] ZLVDictionary userInfo() const&& { return userInfo(); }

  /// A text to show: the one in the user info (rendered as JSON where the server sent something
  /// other than a text), or a generic one that names domain and code.
  [[nodiscard]] std::string localizedDescription() const;
  /// Why it failed, in the same form; empty when the server gave no reasons.
  [[nodiscard]] std::string localizedFailureReason() const;
  /// Domain, code, description and user info in one line, for diagnostics; this is what is uploaded
  /// with usage events. At most 4 KB, cut behind that; a URL stands in it without user name,
  /// password, query and fragment.
  [[nodiscard]] std::string debugDescription() const;

  /// Whether the server may have carried out the request although the call ended in this error:
  /// after a charge, ask your server what became of the order before you charge again.
  ///
  /// False only where it is certain that nothing came of it: the request never left this machine
  /// (`NSURLErrorBadURL`, `NSURLErrorUnsupportedURL`, `NSURLErrorCannotFindHost`,
  /// `NSURLErrorCannotConnectToHost`, `NSURLErrorNotConnectedToInternet`,
  /// `NSURLErrorAppTransportSecurityRequiresSecureConnection` or a refused server certificate, each
  /// without `ZLVErrorRequestWasSentKey`), or your server refused it (400 to 499).
  ///
  /// ```cpp
  /// if (error->requestMayHaveTakenEffect()) return askServerFor(order);
  /// offerToPayAgain(error->localizedDescription());
  /// ```
  [[nodiscard]] bool requestMayHaveTakenEffect() const noexcept;

  friend bool operator==(const ZLVError&, const ZLVError&) = default;

 private:
  ZLVError(std::string_view domain, std::int64_t code, ZLVDictionary userInfo);

  ZLVValue domain_;
  std::int64_t code_;
  ZLVValue userInfo_;
};

/// A mistake in the program that uses the library, or an answer whose structure does not fit the
/// record it is read into. Thrown, never handed to a completion; the text names what is missing
/// and in which call, or what does not fit. On the main thread it leaves through the main queue
/// towards the host's loop, and the call is answered all the same.
class ZLV_EXPORT ZLVProgrammingFault : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};
