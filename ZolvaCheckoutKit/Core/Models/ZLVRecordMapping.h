#pragma once

#include <string_view>

#include <ZolvaCheckoutKit/Core/Helpers/extract.h>
#include <ZolvaCheckoutKit/Core/Helpers/parse.h>
#include <ZolvaCheckoutKit/ZLVError.h>
#include <ZolvaCheckoutKit/ZLVMappable.h>

// How a record's field table becomes its reading and writing.

/// The key of a field; most are read from the key they are written to.
struct ZLVFieldKey {
  std::string_view written;
  std::string_view read = written;
};

/// How a field of a type is read from the value under its key and written back.
template <class Field>
struct ZLVFieldMapping;

/// A plain field holds what stood there.
template <>
struct ZLVFieldMapping<ZLVValue> {
  static ZLVValue read(ZLVValue value) { return value; }
  static const ZLVValue& write(const ZLVValue& field) { return field; }
};

/// A boolean is true where anything stands at all.
template <>
struct ZLVFieldMapping<bool> {
  static bool read(const ZLVValue& value) { return !value.isAbsent(); }
  static ZLVValue write(bool field) { return field; }
};

/// A nested record is always made, and written as itself.
template <class Record>
struct ZLVFieldMapping<ZLVRecord<Record>> {
  static ZLVRecord<Record> read(const ZLVValue& value) { return Record::initWithDictionary(value); }
  static ZLVValue write(const ZLVRecord<Record>& field) { return field; }
};

/// A list of records is made only where a list stands, and written as dictionaries.
template <class Record>
struct ZLVFieldMapping<ZLVRecords<Record>> {
  static ZLVRecords<Record> read(const ZLVValue& value) { return parse::mapToArray<Record>(value); }
  static ZLVValue write(const ZLVRecords<Record>& field) {
    if (!field) return {};
    return parse::dictionaryValues(ZLVArray(field->begin(), field->end()));
  }
};

/// The dictionary to read a record from. Throws `ZLVProgrammingFault` where something else stands.
inline const ZLVDictionary& ZLVDictionaryOfRecord(const ZLVValue& value, std::string_view record) {
  static const ZLVDictionary empty;
  if (value.isAbsent()) return empty;
  if (value.dictionary() != nullptr) return *value.dictionary();
  throw parse::misfit(record, "a dictionary", value);
}

#define ZLV_READ_FIELD(Type, getter, setter, ...) \
  record->setter(ZLVFieldMapping<Type>::read(     \
      extract::objectOrNilForKey(fields, ZLVFieldKey{__VA_ARGS__}.read)));

#define ZLV_WRITE_FIELD(Type, getter, setter, ...) \
  dictionary.set(ZLVFieldKey{__VA_ARGS__}.written, ZLVFieldMapping<Type>::write(getter()));

#define ZLV_DEFINE_READING(Class, FIELDS)                                        \
  std::shared_ptr<Class> Class::initWithDictionary(const ZLVValue& dictionary) { \
    const auto& fields = ZLVDictionaryOfRecord(dictionary, #Class);              \
    auto record = std::make_shared<Class>();                                     \
    FIELDS(ZLV_READ_FIELD)                                                       \
    return record;                                                               \
  }

#define ZLV_DEFINE_RECORD(Class, FIELDS)         \
  ZLV_DEFINE_READING(Class, FIELDS)              \
  ZLVDictionary Class::dictionaryValue() const { \
    ZLVDictionary dictionary;                    \
    FIELDS(ZLV_WRITE_FIELD)                      \
    return dictionary;                           \
  }
