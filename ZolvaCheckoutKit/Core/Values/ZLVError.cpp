#include <algorithm>
#include <atomic>
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

/// What is said of an error that says nothing itself.
constexpr auto generic = ZLVErrorText("The operation couldn\u2019t be completed. (%s.)");

std::string filledIn(std::string format, std::string_view argument) {
  if (const auto place = format.find("%s"); place != std::string::npos) {
    format.replace(place, 2, argument);
  }
  return format;
}

/// The error by its domain and code.
std::string name(const ZLVError& error) {
  return error.domain() + " error " + std::to_string(error.code());
}

std::atomic<const std::function<std::string(const char*)>*> installedTranslation{nullptr};

std::string localized(const char* format) {
  const auto* translate = installedTranslation.load();
  return translate == nullptr ? format : (*translate)(format);
}

}  // namespace

void ZLVError::setTranslation(const Translation* translation) noexcept {
  installedTranslation = translation;
}

ZLVError::ZLVError(std::string_view domain, std::int64_t code, ZLVDictionary userInfo)
    : domain_(domain), code_(code), userInfo_(std::move(userInfo)) {}

ZLVError ZLVError::errorWithDomain(std::string_view domain, std::int64_t code,
                                   ZLVDictionary userInfo) {
  return {domain, code, std::move(userInfo)};
}

std::string ZLVError::domain() const { return domain_.description(); }

ZLVError ZLVError::errorWithDomain(std::string_view domain, std::int64_t code, ZLVErrorText text,
                                   ZLVDictionary userInfo) {
  userInfo.set(NSLocalizedDescriptionKey, filledIn(text.format, text.argument));
  ZLVError error(domain, code, std::move(userInfo));
  error.format_ = text.format;
  error.argument_ = text.argument;
  return error;
}

const ZLVDictionary& ZLVError::userInfo() const& noexcept { return *userInfo_.dictionary(); }

std::string ZLVError::localizedDescription() const {
  const auto& description = userInfo()[NSLocalizedDescriptionKey];
  if (format_ != nullptr) return filledIn(localized(format_), *argument_.text());
  if (!description.isAbsent()) return description.description();
  return filledIn(localized(generic.format), name(*this));
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
       message.isAbsent() ? filledIn(generic.format, name(*this)) : beginning(message),
       beginning(info)});
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
