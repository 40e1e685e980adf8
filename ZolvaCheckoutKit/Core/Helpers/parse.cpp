#include <ZolvaCheckoutKit/Core/Helpers/parse.h>

ZLVValue parse::dictionaryValues(const ZLVValue& array) {
  const auto* elements = array.array();
  if (elements == nullptr) return {};
  ZLVArray dictionaries;
  for (const auto& element : *elements) {
    if (const auto record = element.record()) dictionaries.emplace_back(record->dictionaryValue());
  }
  return dictionaries;
}
