#include <ZolvaCheckoutKit/Core/Helpers/extract.h>
#include <ZolvaCheckoutKit/Core/Models/ZLVRecordMapping.h>

void ZLVMember::read(ZLVMappable& record, const ZLVValue& value) const {
  if (const auto* member = std::get_if<Value>(&member_)) {
    record.*(*member) = value;
  } else if (const auto* flag = std::get_if<Flag>(&member_)) {
    (record.*(*flag)).isSet = !value.isAbsent();
  } else {
    (*std::get_if<Records>(&member_))->read(record, value);
  }
}

ZLVValue ZLVMember::write(const ZLVMappable& record) const {
  if (const auto* member = std::get_if<Value>(&member_)) return record.*(*member);
  if (const auto* flag = std::get_if<Flag>(&member_)) return (record.*(*flag)).isSet;
  return (*std::get_if<Records>(&member_))->write(record);
}

namespace {

void readFields(ZLVMappable& record, const ZLVRecordTable& table, const ZLVDictionary& dictionary) {
  if (table.start != nullptr) readFields(record, *table.start, dictionary);
  for (const auto& field : table.fields) {
    field.member.read(record, extract::objectOrNilForKey(dictionary, field.keyRead));
  }
}

}  // namespace

void ZLVReadRecord(ZLVMappable& record, const ZLVRecordTable& table, const ZLVValue& value) {
  if (value.isAbsent()) return readFields(record, table, {});
  if (value.dictionary() == nullptr) throw parse::misfit(table.record, "a dictionary", value);
  readFields(record, table, *value.dictionary());
}

ZLVDictionary ZLVWrittenRecord(const ZLVMappable& record, const ZLVRecordTable& table) {
  ZLVDictionary dictionary;
  for (const auto* part = &table; part != nullptr; part = part->start) {
    for (const auto& field : part->fields) dictionary.set(field.key, field.member.write(record));
  }
  return dictionary;
}
