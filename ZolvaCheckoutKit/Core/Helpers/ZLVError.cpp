#include <algorithm>
#include <utility>

#include <ZolvaCheckoutKit/Core/Helpers/ZLVText.h>
#include <ZolvaCheckoutKit/ZLVError.h>

namespace {

/// Codes of `NSURLErrorDomain` that arise before a request is sent.
constexpr std::int64_t beforeSending[] = {NSURLErrorBadURL,
                                          NSURLErrorUnsupportedURL,
                                          NSURLErrorCannotFindHost,
                                          NSURLErrorCannotConnectToHost,
                                          NSURLErrorNotConnectedToInternet,
                                          NSURLErrorAppTransportSecurityRequiresSecureConnection,
                                          NSURLErrorServerCertificateHasBadDate,
                                          NSURLErrorServerCertificateUntrusted,
                                          NSURLErrorServerCertificateHasUnknownRoot,
                                          NSURLErrorServerCertificateNotYetValid};

}  // namespace

ZLVError::ZLVError(std::string_view domain, std::int64_t code, ZLVDictionary userInfo)
    : domain_(domain), code_(code), userInfo_(std::move(userInfo)) {}

ZLVError ZLVError::errorWithDomain(std::string_view domain, std::int64_t code,
                                   ZLVDictionary userInfo) {
  return {domain, code, std::move(userInfo)};
}

std::string ZLVError::domain() const { return domain_.description(); }

const ZLVDictionary& ZLVError::userInfo() const& noexcept { return *userInfo_.dictionary(); }

std::string ZLVError::localizedDescription() const {
  const auto& description = userInfo()[NSLocalizedDescriptionKey];
  if (!description.isAbsent()) return description.description();
  return "The operation couldn\u2019t be completed. (" + domain() + " error " +
         std::to_string(code_) + ".)";
}

std::string ZLVError::localizedFailureReason() const {
  const auto& reason = userInfo()[NSLocalizedFailureReasonErrorKey];
  return reason.isAbsent() ? std::string() : reason.description();
}

std::string ZLVError::debugDescription() const {
  return ZLVOneLine(ZLVStringWithFormat(
      "Error Domain=%@ Code=%@ \"%@\" UserInfo=%@",
      {domain(), std::to_string(code_), localizedDescription(), userInfo_.description()}));
}

bool ZLVError::requestMayHaveTakenEffect() const noexcept {
  if (domain_.text() == ZLVErrorDomain) return code_ < 400 || code_ > 499;
  if (domain_.text() != NSURLErrorDomain) return true;
  return userInfo().contains(ZLVErrorRequestWasSentKey) ||
         std::ranges::find(beforeSending, code_) == std::end(beforeSending);
}
