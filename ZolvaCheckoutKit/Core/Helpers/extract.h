#pragma once

#include <string_view>

#include <ZolvaCheckoutKit/ZLVValue.h>

namespace extract {

/// The value under the key, which the dictionary keeps; absent when the key is missing or holds
/// null.
const ZLVValue& objectOrNilForKey(const ZLVDictionary& dictionary, std::string_view key) noexcept;

}  // namespace extract
