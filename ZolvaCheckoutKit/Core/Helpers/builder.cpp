#include <utility>

#include <ZolvaCheckoutKit/Core/Helpers/builder.h>

ZLVError builder::errorWithCode(std::int64_t code, ZLVValue message, ZLVValue reasons) {
  ZLVDictionary userInfo;
  userInfo.set(NSLocalizedDescriptionKey, std::move(message));
  userInfo.set(NSLocalizedFailureReasonErrorKey, std::move(reasons));
  return ZLVError::errorWithDomain(ZLVErrorDomain, code, std::move(userInfo));
}
