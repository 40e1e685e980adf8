#pragma once

#include <ZolvaCheckoutKit/ZLVError.h>
#include <ZolvaCheckoutKit/ZLVMappable.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

namespace parse {

/// A record of the class for every element of the array, unchecked and in order; nothing for an
/// absent array. Throws `ZLVProgrammingFault` for anything else and for an element that is no
/// dictionary.
template <class Record>
ZLVRecords<Record> mapToArray(const ZLVValue& array) {
  if (array.isAbsent()) return std::nullopt;
  if (array.array() == nullptr) {
    throw ZLVProgrammingFault("mapToArray: an array is needed, the answer has " +
                              array.description());
  }
  ZLVRecords<Record> records(std::in_place);
  records->reserve(array.array()->size());
  for (const auto& element : *array.array()) {
    records->push_back(Record::initWithDictionary(element));
  }
  return records;
}

/// The dictionaries of the records in the array; other elements are skipped. Absent for an absent
/// array.
ZLVValue dictionaryValues(const ZLVValue& array);

}  // namespace parse
