#include <ZolvaCheckoutKit/Core/Helpers/core_parse.h>
#include <ZolvaCheckoutKit/Core/Helpers/encode.h>
#include <ZolvaCheckoutKit/Core/Values/ZLVText.h>
#include <ZolvaCheckoutKit/ZLVError.h>

namespace {

constexpr std::string_view pairFormat = "%@=%@";
constexpr std::string_view arrayPairFormat = "%@[]=%@";

std::string pair(std::string_view format, std::string_view key, const ZLVValue& value) {
  if (value.isNumber() || value.boolean()) {
    return ZLVStringWithFormat(format, {key, value.description()});
  }
  const auto text = value.text();
  if (!text) {
    throw ZLVProgrammingFault("queryStringValue: the value of \"" + std::string(key) +
                              "\" cannot stand in a query string");
  }
  return ZLVStringWithFormat(format, {key, encode::ZLVURLEncodedString(*text)});
}

}  // namespace

std::string core_parse::queryStringValue(const ZLVDictionary& dictionary) {
  std::string query;
  const auto append = [&query](std::string_view piece) {
    if (!query.empty()) query += '&';
    query += piece;
  };
  for (const auto& [key, value] : dictionary) {
    if (const auto* array = value.array()) {
      for (const auto& piece : pairsOfArray(*array, key)) append(piece);
    } else {
      append(pair(pairFormat, key, value.isNull() ? ZLVValue("") : value));
    }
  }
  return query;
}

std::vector<std::string> core_parse::pairsOfArray(const ZLVArray& array, std::string_view key) {
  std::vector<std::string> pieces;
  for (const auto& element : array) {
    if (const auto* inner = element.array()) {
      for (auto& piece : pairsOfArray(*inner, key)) pieces.push_back(std::move(piece));
    } else {
      pieces.push_back(pair(arrayPairFormat, key, element));
    }
  }
  return pieces;
}
