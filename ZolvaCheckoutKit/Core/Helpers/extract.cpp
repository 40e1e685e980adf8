#include <ZolvaCheckoutKit/Core/Helpers/extract.h>

namespace {

const ZLVValue nothing;

}  // namespace

const ZLVValue& extract::objectOrNilForKey(const ZLVDictionary& dictionary,
                                           std::string_view key) noexcept {
  const auto& value = dictionary[key];
  return value.isNull() ? nothing : value;
}
