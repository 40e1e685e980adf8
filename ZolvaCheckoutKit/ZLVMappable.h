#pragma once

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <ZolvaCheckoutKit/ZLVExport.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

/// What every wire record offers: a static `initWithDictionary(dictionary)` of its class makes it
/// from a decoded JSON dictionary, and `dictionaryValue()` turns it back into one.
///
/// Records are plain and mutable: they have one getter and one setter for each field, no locks and
/// no value equality. A getter refers to the field, so keep the record while you use what it hands
/// out; of a temporary record it copies.
///
/// Most fields are a `ZLVValue`, and hold exactly what the server sent, whatever its kind. The kind
/// that a field's description names is the usual one: ask the value for it, and expect nothing.
/// `initWithDictionary` reports no error for a missing, null or unexpected plain value; it throws
/// `ZLVProgrammingFault` where an array or a dictionary is needed and something else stands.
class ZLV_EXPORT ZLVMappable {
 public:
  ZLVMappable() = default;
  /// Copies what the fields hold; nested records are shared.
  ZLVMappable(const ZLVMappable&) = default;
  /// As the copy constructor does.
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

/// Where a record stores a boolean. It leaves no gap behind it in which another member could hide:
/// the table of a record's fields is checked against its size.
struct alignas(ZLVValue) ZLVFlag {
  /// What is stored.
  bool isSet = false;
};

/// The keys, members and rules of a record class, which the source of the class defines.
template <class Record>
struct ZLVFieldsOf;
