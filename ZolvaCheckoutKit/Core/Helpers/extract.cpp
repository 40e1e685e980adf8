#include <ZolvaCheckoutKit/Core/Helpers/extract.h>

ZLVValue extract::objectOrNilForKey(const ZLVDictionary& dictionary, std::string_view key) {
  const auto& value = dictionary[key];
  return value.isNull() ? ZLVValue() : value;
}
