#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <utility>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVTransportError.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVWebURL.h>

namespace {

/// Marks a text for the translators.
constexpr const char* N_(const char* text) { return text; }

struct Description {
  NSURLError code;
  const char* text;  // %s stands for the server
};

/// Where a server redirected the request. The others hold there as well.
constexpr auto descriptionsWhenSent = std::to_array<Description>({
    {NSURLErrorCannotConnectToHost, N_("The request was redirected to %s, which could not be "
                                       "reached. It may have been carried out all the same.")},
    {NSURLErrorAppTransportSecurityRequiresSecureConnection,
     N_("The request was redirected to %s, and not sent there, because the connection would not be "
        "encrypted. It may have been carried out all the same.")},
});

constexpr auto descriptions = std::to_array<Description>({
    {NSURLErrorCancelled, N_("The call was cancelled.")},
    {NSURLErrorBadURL, N_("The request cannot be sent: its URL, method or a header is malformed.")},
    {NSURLErrorTimedOut, N_("%s did not answer in time. Try again later.")},
    {NSURLErrorUnsupportedURL, N_("The URL is neither http nor https.")},
    {NSURLErrorCannotFindHost,
     N_("%s was not found. Check the address and the network connection.")},
    {NSURLErrorCannotConnectToHost,
     N_("Could not connect to %s. Check that it is running and can be reached from here.")},
    {NSURLErrorNetworkConnectionLost,
     N_("The connection to %s was lost before its answer was complete. It may have carried out the "
        "request all the same.")},
    {NSURLErrorHTTPTooManyRedirects, N_("%s redirected the request too many times.")},
    {NSURLErrorResourceUnavailable, N_("There is not enough memory for the call to %s.")},
    {NSURLErrorNotConnectedToInternet, N_("%s cannot be reached: there is no network connection.")},
    {NSURLErrorRedirectToNonExistentLocation,
     N_("%s redirected the request to something that is no URL.")},
    {NSURLErrorBadServerResponse, N_("What %s answered is not HTTP. Check the address and port.")},
    {NSURLErrorCannotDecodeRawData, N_("The compressed answer of %s is damaged.")},
    {NSURLErrorCannotDecodeContentData, N_("The answer of %s is compressed in an unknown way.")},
    {NSURLErrorAppTransportSecurityRequiresSecureConnection,
     N_("Nothing was sent to %s, because the connection would not be encrypted. Use an https "
        "URL.")},
    {NSURLErrorDataLengthExceedsMaximum, N_("The answer of %s is larger than allowed.")},
    {NSURLErrorSecureConnectionFailed, N_("A secure connection to %s could not be made.")},
    {NSURLErrorServerCertificateHasBadDate,
     N_("The certificate of %s has expired. Check this machine's clock, or have the certificate "
        "renewed.")},
    {NSURLErrorServerCertificateUntrusted, N_("The certificate of %s is not valid: it is "
                                              "self-signed, revoked or made out to another name.")},
    {NSURLErrorServerCertificateHasUnknownRoot,
     N_("The certificate of %s is from an authority that is not trusted here. If the authority is "
        "your own, give its certificate as the CA file.")},
    {NSURLErrorServerCertificateNotYetValid,
     N_("The certificate of %s is not valid yet. Check this machine's clock.")},
    {NSURLErrorClientCertificateRejected, N_("%s demands a client certificate.")},
    {NSURLErrorUnknown, N_("The call to %s failed.")},
});

/// What libcurl reports, with a detail of it or with any; the first that fits counts.
struct Meaning {
  CURLcode result;
  long detail;
  NSURLError code;
};

constexpr long any = -1;
constexpr long unknownCoding = 1;

constexpr auto meanings = std::to_array<Meaning>({
    {CURLE_URL_MALFORMAT, any, NSURLErrorBadURL},
    {CURLE_COULDNT_RESOLVE_PROXY, any, NSURLErrorCannotFindHost},
    {CURLE_COULDNT_RESOLVE_HOST, any, NSURLErrorCannotFindHost},
    // Details are system error numbers.
    {CURLE_COULDNT_CONNECT, ENETUNREACH, NSURLErrorNotConnectedToInternet},
    {CURLE_COULDNT_CONNECT, ENETDOWN, NSURLErrorNotConnectedToInternet},
    {CURLE_COULDNT_CONNECT, ETIMEDOUT, NSURLErrorTimedOut},
    {CURLE_COULDNT_CONNECT, any, NSURLErrorCannotConnectToHost},
    {CURLE_PROXY, any, NSURLErrorCannotConnectToHost},
    {CURLE_OPERATION_TIMEDOUT, any, NSURLErrorTimedOut},
    {CURLE_UNSUPPORTED_PROTOCOL, any, NSURLErrorBadServerResponse},  // not even HTTP/1.0
    {CURLE_WEIRD_SERVER_REPLY, any, NSURLErrorBadServerResponse},
    {CURLE_HTTP2, any, NSURLErrorNetworkConnectionLost},
    {CURLE_HTTP2_STREAM, any, NSURLErrorNetworkConnectionLost},
    {CURLE_OUT_OF_MEMORY, any, NSURLErrorResourceUnavailable},
    {CURLE_PARTIAL_FILE, any, NSURLErrorNetworkConnectionLost},
    {CURLE_GOT_NOTHING, any, NSURLErrorNetworkConnectionLost},
    {CURLE_SEND_ERROR, any, NSURLErrorNetworkConnectionLost},
    {CURLE_RECV_ERROR, any, NSURLErrorNetworkConnectionLost},
    {CURLE_BAD_CONTENT_ENCODING, unknownCoding, NSURLErrorCannotDecodeContentData},
    {CURLE_BAD_CONTENT_ENCODING, any, NSURLErrorCannotDecodeRawData},
    // Details are OpenSSL's X509_V_ERR_… numbers.
    {CURLE_PEER_FAILED_VERIFICATION, 2, NSURLErrorServerCertificateHasUnknownRoot},
    {CURLE_PEER_FAILED_VERIFICATION, 9, NSURLErrorServerCertificateNotYetValid},
    {CURLE_PEER_FAILED_VERIFICATION, 10, NSURLErrorServerCertificateHasBadDate},
    {CURLE_PEER_FAILED_VERIFICATION, 19, NSURLErrorServerCertificateHasUnknownRoot},
    {CURLE_PEER_FAILED_VERIFICATION, 20, NSURLErrorServerCertificateHasUnknownRoot},
    {CURLE_PEER_FAILED_VERIFICATION, 21, NSURLErrorServerCertificateHasUnknownRoot},
    {CURLE_PEER_FAILED_VERIFICATION, any, NSURLErrorServerCertificateUntrusted},
    {CURLE_SSL_ISSUER_ERROR, any, NSURLErrorServerCertificateUntrusted},
    {CURLE_SSL_CERTPROBLEM, any, NSURLErrorClientCertificateRejected},
    {CURLE_SSL_CLIENTCERT, any, NSURLErrorClientCertificateRejected},
    {CURLE_SSL_CONNECT_ERROR, any, NSURLErrorSecureConnectionFailed},
    {CURLE_SSL_CACERT_BADFILE, any, NSURLErrorSecureConnectionFailed},
    {CURLE_SSL_CIPHER, any, NSURLErrorSecureConnectionFailed},
    {CURLE_SSL_ENGINE_INITFAILED, any, NSURLErrorSecureConnectionFailed},
    {CURLE_SSL_ENGINE_NOTFOUND, any, NSURLErrorSecureConnectionFailed},
    {CURLE_SSL_ENGINE_SETFAILED, any, NSURLErrorSecureConnectionFailed},
    {CURLE_SSL_SHUTDOWN_FAILED, any, NSURLErrorSecureConnectionFailed},
});

long information(CURL* transfer, CURLINFO item) {
  long value = 0;
  curl_easy_getinfo(transfer, item, &value);
  return value;
}

bool hasKnownCoding(CURL* transfer) {
  constexpr auto known =
      std::to_array<std::string_view>({"gzip", "x-gzip", "deflate", "br", "zstd"});
  curl_header* header = nullptr;
  return curl_easy_header(transfer, "Content-Encoding", 0, CURLH_HEADER, -1, &header) ==
             CURLHE_OK &&
         std::ranges::find(known, std::string_view(header->value)) != known.end();
}

long detail(CURLcode result, CURL* transfer) {
  switch (result) {
    case CURLE_COULDNT_CONNECT:
      return information(transfer, CURLINFO_OS_ERRNO);
    case CURLE_PEER_FAILED_VERIFICATION:
      return information(transfer, CURLINFO_SSL_VERIFYRESULT);
    case CURLE_BAD_CONTENT_ENCODING:
      return hasKnownCoding(transfer) ? 0 : unknownCoding;
    default:
      return 0;
  }
}

const char* textFor(NSURLError code, bool wasSent) {
  const auto* found = std::ranges::find(descriptionsWhenSent, code, &Description::code);
  if (!wasSent || found == descriptionsWhenSent.end()) {
    found = std::ranges::find(descriptions, code, &Description::code);
  }
  return found->text;
}

}  // namespace

ZLVError ZLVTransportError::error(NSURLError code, const std::string& URL, bool wasSent,
                                  const std::string& underlying) {
  ZLVDictionary userInfo{
      {std::string(NSURLErrorFailingURLStringErrorKey), ZLVWebURL::withoutCredentials(URL)}};
  if (!underlying.empty()) userInfo.set(NSUnderlyingErrorKey, underlying);
  if (wasSent) userInfo.set(ZLVErrorRequestWasSentKey, true);
  const auto url = ZLVWebURL::parsed(URL);
  const std::string server = url ? url->host : "the server";
  return ZLVError::errorWithDomain(
      NSURLErrorDomain, code, ZLVErrorText(textFor(code, wasSent), server), std::move(userInfo));
}

NSURLError ZLVTransportError::code(CURLcode result, CURL* transfer, std::string_view message) {
  // TLS 1.3 tells only once the request is on its way, and libcurl only in OpenSSL's words.
  if (result == CURLE_RECV_ERROR &&
      message.find("certificate required") != std::string_view::npos) {
    return NSURLErrorClientCertificateRejected;
  }
  const long wanted = detail(result, transfer);
  const auto* found = std::ranges::find_if(meanings, [&](const Meaning& meaning) {
    return meaning.result == result && (meaning.detail == any || meaning.detail == wanted);
  });
  return found == meanings.end() ? NSURLErrorUnknown : found->code;
}
