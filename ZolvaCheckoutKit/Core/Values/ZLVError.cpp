#include <algorithm>
#include <utility>

#include <ZolvaCheckoutKit/Core/Values/ZLVJSONSerialization.h>
#include <ZolvaCheckoutKit/Core/Values/ZLVText.h>
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

constexpr std::size_t maximumDiagnosisSize = 4096;
constexpr std::string_view cutMark = "\u2026 (cut)";

/// Of what the server sent, which may be a thousand times as long, no more is looked at than shows
/// that it is too long, for this is done on the main thread.
constexpr std::size_t lookedAt = 2 * maximumDiagnosisSize;

std::string beginning(const ZLVValue& value) {
  if (const auto text = value.text()) return std::string(text->substr(0, lookedAt));
  if (value.array() == nullptr && value.dictionary() == nullptr) return value.description();
  return *ZLVJSONSerialization::dataWithJSONObject(
      value, ZLVJSONSerialization::Unwritable::Describe, lookedAt);
}

/// The URL without what it may give away: user info, query and fragment.
std::string shown(std::string_view URL) {
  std::string text(URL.substr(0, URL.find_first_of("?#")));
  if (const auto start = text.find("//"); start != std::string::npos) {
    const auto at = text.rfind('@', text.find('/', start + 2));
    if (at != std::string::npos && at > start) text.erase(start + 2, at - start - 1);
  }
  return text;
}

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
  const auto& message = userInfo()[NSLocalizedDescriptionKey];
  auto info = userInfo();
  if (const auto URL = info[NSURLErrorFailingURLStringErrorKey].text()) {
    info.set(NSURLErrorFailingURLStringErrorKey, shown(*URL));
  }
  const auto text = ZLVStringWithFormat(
      "Error Domain=%@ Code=%@ \"%@\" UserInfo=%@",
      {domain(), std::to_string(code_),
       message.isAbsent() ? localizedDescription() : beginning(message), beginning(info)});
  auto line = ZLVOneLine(std::string_view(text).substr(0, lookedAt));
  if (line.size() <= maximumDiagnosisSize) return line;
  line.resize(ZLVBeginning(line, maximumDiagnosisSize - cutMark.size()).size());
  return line += cutMark;
}

bool ZLVError::requestMayHaveTakenEffect() const noexcept {
  if (domain_.text() == ZLVErrorDomain) return code_ < 400 || code_ > 499;
  if (domain_.text() != NSURLErrorDomain) return true;
  return userInfo().contains(ZLVErrorRequestWasSentKey) ||
         std::ranges::find(beforeSending, code_) == std::end(beforeSending);
}
