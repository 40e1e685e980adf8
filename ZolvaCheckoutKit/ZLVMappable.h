#pragma once

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <ZolvaCheckoutKit/ZLVExport.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

/// What every wire record offers: it is read from a decoded JSON dictionary by a static
/// `initWithDictionary(dictionary)` of its class and turns itself back into one.
///
/// Records are plain and mutable: one getter and one setter for each field, no locks, no value
/// equality. A getter refers to the field, so keep the record while you use what it hands out. A
/// field that was filled from an answer holds exactly what the server sent, whatever its kind.
/// `initWithDictionary` never reports an error for a missing, null or unexpected plain value; it
/// throws `ZLVProgrammingFault` where an array or a dictionary is needed and something else stands.
class ZLV_EXPORT ZLVMappable {
 public:
  ZLVMappable() = default;
  ZLVMappable(const ZLVMappable&) = default;
  ZLVMappable& operator=(const ZLVMappable&) = default;
  virtual ~ZLVMappable() = default;

  /// A new dictionary of the fields that hold something. Nested records stand in it as records.
  [[nodiscard]] virtual ZLVDictionary dictionaryValue() const = 0;
};

/// A field that holds a record, or nothing.
template <class Record>
using ZLVRecord = std::shared_ptr<Record>;

/// A field that holds a list of records, or nothing.
template <class Record>
using ZLVRecords = std::optional<std::vector<std::shared_ptr<Record>>>;

// A record class names its fields in one table, a macro that applies its argument to
//   (type, getter, setter, JSON key [, key read where it differs from the key written])
// for every field, in reading order. The field's type decides how it is read and written.

/// Declares the accessors and the storage of the fields of a table.
#define ZLV_DECLARE_FIELD(Type, getter, setter, ...)              \
 public:                                                          \
  [[nodiscard]] const Type& getter() const& { return getter##_; } \
  [[nodiscard]] Type getter() const&& { return getter##_; }       \
  void setter(Type value) { getter##_ = std::move(value); }       \
                                                                  \
 private:                                                         \
  Type getter##_{};

/// Declares a record class's mapping and the fields of its table.
#define ZLV_DECLARE_RECORD(Class, FIELDS)                                       \
 public:                                                                        \
  /** Reads a record; an absent dictionary reads as an empty one. */            \
  static std::shared_ptr<Class> initWithDictionary(const ZLVValue& dictionary); \
  [[nodiscard]] ZLVDictionary dictionaryValue() const override;                 \
  FIELDS(ZLV_DECLARE_FIELD)
