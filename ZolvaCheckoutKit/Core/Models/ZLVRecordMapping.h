#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <variant>

#include <ZolvaCheckoutKit/Core/Helpers/parse.h>
#include <ZolvaCheckoutKit/ZLVMappable.h>

// How a record is read and written: by the table of its fields, which `ZLVFieldsOf` holds for each
// class.

/// How a field that holds records is read and written, whatever their class.
struct ZLVNestingRule {
  void (*read)(ZLVMappable& record, const ZLVValue& value);
  ZLVValue (*write)(const ZLVMappable& record);
  std::size_t size;
};

template <auto member>
struct ZLVNesting;

/// A nested record is always made, and written as itself.
template <class Record, class Nested, ZLVRecord<Nested> Record::*member>
struct ZLVNesting<member> {
  static void read(ZLVMappable& record, const ZLVValue& value) {
    static_cast<Record&>(record).*member = Nested::initWithDictionary(value);
  }
  static ZLVValue write(const ZLVMappable& record) {
    return static_cast<const Record&>(record).*member;
  }
  static constexpr ZLVNestingRule rule{read, write, sizeof(ZLVRecord<Nested>)};
};

/// A list of records is made only where a list stands, and written as dictionaries.
template <class Record, class Nested, ZLVRecords<Nested> Record::*member>
struct ZLVNesting<member> {
  static void read(ZLVMappable& record, const ZLVValue& value) {
    static_cast<Record&>(record).*member = parse::mapToArray<Nested>(value);
  }
  static ZLVValue write(const ZLVMappable& record) {
    const auto& records = static_cast<const Record&>(record).*member;
    if (!records) return {};
    return parse::dictionaryValues(ZLVArray(records->begin(), records->end()));
  }
  static constexpr ZLVNestingRule rule{read, write, sizeof(ZLVRecords<Nested>)};
};

/// A member of some record class. Its type is the rule: a value holds what stands under the key, a
/// flag is set where anything stands at all, and records nest.
class ZLVMember {
 public:
  using Value = ZLVValue ZLVMappable::*;
  using Flag = ZLVFlag ZLVMappable::*;
  using Records = const ZLVNestingRule*;

  template <class Record>
  constexpr ZLVMember(ZLVValue Record::*member) : member_(static_cast<Value>(member)) {}
  template <class Record>
  constexpr ZLVMember(ZLVFlag Record::*member) : member_(static_cast<Flag>(member)) {}
  constexpr ZLVMember(const ZLVNestingRule& rule) : member_(&rule) {}

  void read(ZLVMappable& record, const ZLVValue& value) const;
  [[nodiscard]] ZLVValue write(const ZLVMappable& record) const;

  [[nodiscard]] constexpr std::size_t size() const {
    if (const auto* rule = std::get_if<Records>(&member_)) return (*rule)->size;
    return std::holds_alternative<Flag>(member_) ? sizeof(ZLVFlag) : sizeof(ZLVValue);
  }
  [[nodiscard]] constexpr std::size_t alignment() const {
    return std::holds_alternative<Records>(member_) ? alignof(void*) : alignof(ZLVValue);
  }
  friend constexpr bool operator==(const ZLVMember&, const ZLVMember&) = default;

 private:
  std::variant<Value, Flag, Records> member_;
};

/// A field: most are read from the key that they are written to.
struct ZLVField {
  std::string_view key;
  ZLVMember member;
  std::string_view keyRead = key;
};

/// The fields of a record class in reading order, behind those of the table that it continues.
struct ZLVRecordTable {
  std::string_view record;  ///< The class, as a fault names it.
  std::span<const ZLVField> fields;
  const ZLVRecordTable* start = nullptr;
};

constexpr std::size_t ZLVAligned(std::size_t offset, std::size_t alignment) {
  return (offset + alignment - 1) / alignment * alignment;
}

/// How often the table has the field's member, or writes to its key.
constexpr int ZLVCount(const ZLVRecordTable& table, const ZLVField& field) {
  int count = table.start != nullptr ? ZLVCount(*table.start, field) : 0;
  for (const auto& other : table.fields) {
    if (other.member == field.member || other.key == field.key) ++count;
  }
  return count;
}

/// Where a record ends that has the table's members, each once; 0 when one is there twice.
constexpr std::size_t ZLVEndOf(const ZLVRecordTable& table) {
  auto end = table.start != nullptr ? ZLVEndOf(*table.start) : sizeof(ZLVMappable);
  for (const auto& field : table.fields) {
    if (ZLVCount(table, field) > 1) return 0;
    end = ZLVAligned(end, field.member.alignment()) + field.member.size();
  }
  return end;
}

/// Fills a new record. Throws `ZLVProgrammingFault` where something other than a dictionary stands.
void ZLVReadRecord(ZLVMappable& record, const ZLVRecordTable& table, const ZLVValue& value);

/// What the fields hold that hold anything.
ZLVDictionary ZLVWrittenRecord(const ZLVMappable& record, const ZLVRecordTable& table);

template <class Record>
std::shared_ptr<Record> ZLVRecordWithDictionary(const ZLVValue& dictionary) {
  constexpr auto& table = ZLVFieldsOf<Record>::table;
  static_assert(ZLVAligned(ZLVEndOf(table), alignof(Record)) == sizeof(Record),
                "the table lacks a member of the record, or has one twice");
  auto record = std::make_shared<Record>();
  ZLVReadRecord(*record, table, dictionary);
  return record;
}

/// Defines a record class's mapping by its table. Undefined again at the end of each file.
#define ZLV_MAP_BY_TABLE(Record)                                                   \
  std::shared_ptr<Record> Record::initWithDictionary(const ZLVValue& dictionary) { \
    return ZLVRecordWithDictionary<Record>(dictionary);                            \
  }                                                                                \
  ZLVDictionary Record::dictionaryValue() const {                                  \
    return ZLVWrittenRecord(*this, ZLVFieldsOf<Record>::table);                    \
  }
