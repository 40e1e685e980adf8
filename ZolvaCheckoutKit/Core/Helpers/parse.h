#pragma once

#include <string_view>

#include <ZolvaCheckoutKit/ZLVError.h>
#include <ZolvaCheckoutKit/ZLVMappable.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

namespace parse {

/// The fault of an answer that has something else where `record` needs `kind`. Tells the kind of
/// what stands there, not its content, which may be private.
ZLVProgrammingFault misfit(std::string_view record, std::string_view kind, const ZLVValue& found);

/// A record of the class for every element of the array, unchecked and in order; nothing for an
/// absent array. Throws `ZLVProgrammingFault` for anything else and for an element that is no
/// dictionary.
template <class Record>
ZLVRecords<Record> mapToArray(const ZLVValue& array) {
  if (array.isAbsent()) return std::nullopt;
  if (array.array() == nullptr) {
    throw misfit("a list of records", "an array", array);
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
