#pragma once

#include <cstdint>

#include <ZolvaCheckoutKit/ZLVError.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

namespace builder {

/// An error of `ZLVErrorDomain`. The message and the reasons may be of any kind and are kept as
/// they are; an absent one is left out.
ZLVError errorWithCode(std::int64_t code, ZLVValue message, ZLVValue reasons);

}  // namespace builder
