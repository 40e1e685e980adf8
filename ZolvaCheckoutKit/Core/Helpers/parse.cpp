#include <array>
#include <string>

#include <ZolvaCheckoutKit/Core/Helpers/parse.h>
#include <ZolvaCheckoutKit/Core/Values/ZLVText.h>

namespace {

/// In the order of the kinds.
constexpr std::array<std::string_view, 10> kinds{
    "nothing",  "null",   "a boolean", "a number",     "a number",
    "a number", "a text", "an array",  "a dictionary", "a record"};

constexpr std::string_view named(ZLVValue::Kind kind) {
  return kinds.at(static_cast<std::size_t>(kind));
}
static_assert(named(ZLVValue::Kind::Boolean) == "a boolean" &&
              named(ZLVValue::Kind::Text) == "a text" &&
              named(ZLVValue::Kind::Dictionary) == "a dictionary" &&
              named(ZLVValue::Kind::Record) == kinds.back());

}  // namespace

ZLVProgrammingFault parse::misfit(std::string_view record, std::string_view kind,
                                  const ZLVValue& found) {
  return ZLVProgrammingFault(ZLVStringWithFormat("%@ needs %@ where the answer has %@",
                                                 {record, kind, named(found.kind())}));
}

ZLVValue parse::dictionaryValues(const ZLVValue& array) {
  const auto* elements = array.array();
  if (elements == nullptr) return {};
  ZLVArray dictionaries;
  for (const auto& element : *elements) {
    if (const auto record = element.record()) dictionaries.emplace_back(record->dictionaryValue());
  }
  return dictionaries;
}
