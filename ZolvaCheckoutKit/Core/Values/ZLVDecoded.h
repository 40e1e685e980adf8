#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <ZolvaCheckoutKit/ZLVValue.h>

/// Makes values of text that a decoder has found to be UTF-8. The values' own constructors would
/// look at it once more.
struct ZLVDecoded {
  static ZLVValue text(std::string_view text) {
    ZLVValue value;
    value.storage_ = ZLVValue::stored(text);
    return value;
  }
  static ZLVValue text(std::string&& text) {
    ZLVValue value;
    value.storage_ = ZLVValue::stored(std::move(text));
    return value;
  }

  static ZLVDictionary dictionary(std::vector<ZLVDictionary::Entry> entries) {
    ZLVDictionary dictionary;
    dictionary.entries_ = std::move(entries);
    dictionary.arrange();
    return dictionary;
  }
};
