#pragma once

#include <string_view>

#include <ZolvaCheckoutKit/ZLVValue.h>

namespace extract {

/// The value under the key; absent when the key is missing or holds null.
ZLVValue objectOrNilForKey(const ZLVDictionary& dictionary, std::string_view key);

}  // namespace extract
