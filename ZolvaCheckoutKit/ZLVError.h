#pragma once

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

#include <ZolvaCheckoutKit/ZLVExport.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

/// The server answered with a failure. The code is the answer's own "status_code" or, where it has
/// none, the status of the HTTP answer. The user info has the server's words under
/// `NSLocalizedDescriptionKey` and its reasons, if any, under `NSLocalizedFailureReasonErrorKey`.
inline constexpr std::string_view ZLVErrorDomain = "com.zolva.checkoutkit";
/// The server asks for a page to be shown and names none that can be. The code is -1, and the user
/// info says under "Error message": "url is null".
inline constexpr std::string_view ZLVCheckoutErrorDomain = "com.zolva.checkoutkit.checkout";
/// User info: stands, as true, in an error of `NSURLErrorDomain` when a server had received the
/// request before the call failed, such as one that redirected it to a server that cannot be
/// reached.
inline constexpr std::string_view ZLVErrorRequestWasSentKey = "ZLVErrorRequestWasSent";

/// What Objective-C++ finds under the same names in its Foundation, with types of its own; there,
/// ours need the prefix `ZLVFoundation::`, and anywhere else they need none. The values are equal.
#ifdef __OBJC__
namespace ZLVFoundation {
#else
inline namespace ZLVFoundation {
#endif

/// The call got no answer that can be used. The codes are those of `NSURLError`.
inline constexpr std::string_view NSURLErrorDomain = "NSURLErrorDomain";
/// There is an answer that cannot be read. The code is `NSPropertyListReadCorruptError`.
inline constexpr std::string_view NSCocoaErrorDomain = "NSCocoaErrorDomain";

/// User info: what went wrong. A text, or in an error of `ZLVErrorDomain` whatever the server sent.
inline constexpr std::string_view NSLocalizedDescriptionKey = "NSLocalizedDescription";
/// User info: why it went wrong, whatever the server sent as its "validation_messages".
inline constexpr std::string_view NSLocalizedFailureReasonErrorKey = "NSLocalizedFailureReason";
/// User info, in an error of `NSURLErrorDomain`: what the session was told by the library below
/// it, a text for diagnostics. It may be missing, and its wording changes with that library.
inline constexpr std::string_view NSUnderlyingErrorKey = "NSUnderlyingError";
/// User info, in an error of `NSURLErrorDomain`: the URL that failed, a text without user name and
/// password. After a redirect it is the URL that the server named.
inline constexpr std::string_view NSURLErrorFailingURLStringErrorKey = "NSErrorFailingURLStringKey";

/// Codes of `NSURLErrorDomain`, the same on every platform. Whether the request may have been
/// carried out all the same, `ZLVError::requestMayHaveTakenEffect` tells.
enum NSURLError : std::int64_t {
  /// The call failed in a way that has no code of its own; `NSUnderlyingErrorKey` may tell more.
  NSURLErrorUnknown = -1,

  /// The call ended before it was answered: the session or the main queue went away while the call
  /// was under way, as at the end of the process. The library itself cancels nothing.
  NSURLErrorCancelled = -999,

  /// The request's URL is none, or its method or a header cannot be sent. Nothing was sent. Look at
  /// the configured server URL, and at the account id, which stands in the URL as it was given.
  NSURLErrorBadURL = -1000,

  /// Nothing was heard for as long as the request allows, or no connection was made in the time
  /// that the session allows for it.
  NSURLErrorTimedOut = -1001,

  /// The URL, or one that the server redirected to, is neither http nor https.
  NSURLErrorUnsupportedURL = -1002,

  /// The name of the server, or of the proxy in front of it, is not known. Either it is wrong, or
  /// this machine has no connection by which to ask.
  NSURLErrorCannotFindHost = -1003,

  /// The server, or the proxy in front of it, took no connection: it does not run, or something
  /// between refuses it.
  NSURLErrorCannotConnectToHost = -1004,

  /// The connection broke before the answer was whole. The request is not sent again, for the
  /// server may have carried it out: ask the server before you repeat a charge.
  NSURLErrorNetworkConnectionLost = -1005,

  /// The server redirected the request more often than the session follows.
  NSURLErrorHTTPTooManyRedirects = -1007,

  /// This machine has not enough memory for the call or for its answer.
  NSURLErrorResourceUnavailable = -1008,

  /// This machine has no network connection by which the server can be reached.
  NSURLErrorNotConnectedToInternet = -1009,

  /// The server redirected the request to something that is no URL.
  NSURLErrorRedirectToNonExistentLocation = -1010,

  /// What came back is not HTTP. Most likely the address or the port is that of another service.
  NSURLErrorBadServerResponse = -1011,

  /// The answer was compressed, and its data are damaged.
  NSURLErrorCannotDecodeRawData = -1015,

  /// The answer is compressed in a way that the session does not know.
  NSURLErrorCannotDecodeContentData = -1016,

  /// The connection would not have been encrypted, and the session does not allow that; the request
  /// was not sent over it. Give an https URL, or allow cleartext for a server of your tests.
  NSURLErrorAppTransportSecurityRequiresSecureConnection = -1022,

  /// The answer is larger than allowed: its data than the session allows, or its values than
  /// `ZLVPlatform::maximumDecodedSize`. The request has reached the server.
  NSURLErrorDataLengthExceedsMaximum = -1103,

  /// No encrypted connection could be agreed on with the server, or the host's file of certificate
  /// authorities cannot be read.
  NSURLErrorSecureConnectionFailed = -1200,

  /// The server's certificate has expired, or this machine's clock is wrong.
  NSURLErrorServerCertificateHasBadDate = -1201,

  /// The server's certificate is refused for another reason than those that have a code: it was
  /// made out to another name, revoked, or signed by itself.
  NSURLErrorServerCertificateUntrusted = -1202,

  /// The server's certificate comes from an authority that is not trusted here. For an authority of
  /// your own give its certificate to the backend.
  NSURLErrorServerCertificateHasUnknownRoot = -1203,

  /// The server's certificate is not valid yet, or this machine's clock is wrong.
  NSURLErrorServerCertificateNotYetValid = -1204,

  /// The server demands a certificate of the client, and the library has none to give.
  NSURLErrorClientCertificateRejected = -1205,
};

/// Code of `NSCocoaErrorDomain`: the answer is empty, is not JSON, or has a structure that fits no
/// record of the call. The description says what is wrong and, in a text that is not JSON, at which
/// byte; it does not repeat what stands there.
inline constexpr std::int64_t NSPropertyListReadCorruptError = 3840;

}  // namespace ZLVFoundation

/// A text of the library's own that says what went wrong, in English. "%s" in it stands for the
/// argument, such as a server's name. Where it is shown, `ZLVPlatform::localizedText` translates
/// it.
struct ZLVErrorText {
  /// Neither is copied; the text has to stay as long as the process.
  constexpr explicit ZLVErrorText(const char* text, std::string_view name = {}) noexcept
      : format(text), argument(name) {}
  /// The text, in the form that there are translations for.
  const char* format;
  /// Stands in it as it is, in any language.
  std::string_view argument;
};

/// A failure handed to a completion. An immutable value; copy it freely, read it on any thread.
class ZLV_EXPORT ZLVError {
 public:
  /// An error of the domain; a session of the host's own makes those of `NSURLErrorDomain` that it
  /// answers with so. Texts are made UTF-8, as in any `ZLVValue`.
  static ZLVError errorWithDomain(std::string_view domain, std::int64_t code,
                                  ZLVDictionary userInfo);
  /// The same with the text under `NSLocalizedDescriptionKey`, in English.
  static ZLVError errorWithDomain(std::string_view domain, std::int64_t code, ZLVErrorText text,
                                  ZLVDictionary userInfo = {});

  /// Which family of failures it is of; `ZLVErrorDomain` and its neighbours name the library's.
  [[nodiscard]] std::string domain() const;
  /// Which failure it is among those of its domain.
  [[nodiscard]] std::int64_t code() const noexcept { return code_; }
  /// What else is known about it, under the keys above; empty where nothing is.
  [[nodiscard]] const ZLVDictionary& userInfo() const& noexcept;
  [[nodiscard]] ZLVDictionary userInfo() const&& { return userInfo(); }

  /// A text to show: the one in the user info (rendered as JSON where the server sent something
  /// other than a text), or a generic one that names domain and code. What the library itself says
  /// is in the user's language where the platform has it, see `ZLVPlatform::localizedText`; what
  /// the server says, and the user info, stay as they are.
  [[nodiscard]] std::string localizedDescription() const;
  /// Why it failed, in the same form; empty when the server gave no reasons.
  [[nodiscard]] std::string localizedFailureReason() const;
  /// Domain, code, description and user info in one line, in English, for diagnostics; this is what
  /// is uploaded with usage events. At most 4 KB, cut behind that; a URL stands in it without user
  /// name, password, query and fragment.
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

  /// Equal domain, code and user info.
  friend bool operator==(const ZLVError& left, const ZLVError& right) {
    return left.code_ == right.code_ && left.domain_ == right.domain_ &&
           left.userInfo_ == right.userInfo_;
  }

 private:
  friend struct ZLVPlatform;
  /// In the user's language, of a format; kept as long as the process.
  using Translation = std::function<std::string(const char* format)>;
  static void setTranslation(const Translation* translation) noexcept;

  ZLVError(std::string_view domain, std::int64_t code, ZLVDictionary userInfo);

  ZLVValue domain_;
  std::int64_t code_;
  ZLVValue userInfo_;
  const char* format_ = nullptr;  // of the description, where it is the library's own
  ZLVValue argument_;
};

/// A mistake in the program that uses the library, or an answer whose structure does not fit the
/// record it is read into. Thrown, never handed to a completion; the text names what is missing
/// and in which call, or what does not fit. On the main thread it leaves through the main queue
/// towards the host's loop, and the call is answered all the same.
class ZLV_EXPORT ZLVProgrammingFault : public std::logic_error {
 public:
  /// With the text that `what()` returns.
  using std::logic_error::logic_error;
};
