#include <utility>

#include <ZolvaCheckoutKit/Core/Helpers/ZLVText.h>
#include <ZolvaCheckoutKit/ZLVError.h>

ZLVError::ZLVError(std::string_view domain, std::int64_t code, ZLVDictionary userInfo)
    : domain_(domain), code_(code), userInfo_(std::move(userInfo)) {}

ZLVError ZLVError::errorWithDomain(std::string_view domain, std::int64_t code,
                                   ZLVDictionary userInfo) {
  return {domain, code, std::move(userInfo)};
}

std::string ZLVError::domain() const { return domain_.description(); }

const ZLVDictionary& ZLVError::userInfo() const noexcept { return *userInfo_.dictionary(); }

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
