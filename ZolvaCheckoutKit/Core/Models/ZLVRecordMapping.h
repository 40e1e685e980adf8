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

  void read(ZLVMappable& record, ZLVValue value) const;
  [[nodiscard]] ZLVValue write(const ZLVMappable& record) const;

  [[nodiscard]] constexpr std::size_t size() const {
    if (const auto* rule = std::get_if<Records>(&member_)) return (*rule)->size;
    return std::holds_alternative<Flag>(member_) ? sizeof(ZLVFlag) : sizeof(ZLVValue);
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

/// Whether the table has each member of a record of so many bytes, and has it once.
constexpr bool ZLVHasEveryMemberOnce(const ZLVRecordTable& table, std::size_t size) {
  std::size_t inTable = sizeof(ZLVMappable);
  for (const auto* part = &table; part != nullptr; part = part->start) {
    for (const auto& field : part->fields) {
      inTable += field.member.size();
      for (const auto* otherPart = part; otherPart != nullptr; otherPart = otherPart->start) {
        for (const auto& other : otherPart->fields) {
          if (&field == &other) continue;
          if (field.member == other.member || field.key == other.key) return false;
        }
      }
    }
  }
  return inTable == size;
}

/// Fills a new record. Throws `ZLVProgrammingFault` where something other than a dictionary stands.
void ZLVReadRecord(ZLVMappable& record, const ZLVRecordTable& table, const ZLVValue& value);

/// What the fields hold that hold anything.
ZLVDictionary ZLVWrittenRecord(const ZLVMappable& record, const ZLVRecordTable& table);

template <class Record>
std::shared_ptr<Record> ZLVRecordWithDictionary(const ZLVValue& dictionary) {
  constexpr auto& table = ZLVFieldsOf<Record>::table;
  static_assert(ZLVHasEveryMemberOnce(table, sizeof(Record)),
                "a member is missing or is there twice");
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
