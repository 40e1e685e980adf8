#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <ZolvaCheckoutKit/ZLVValue.h>

/// Query strings. Keys and brackets are written as they are and text values percent-decoded, never
/// encoded. A value that is no text, number, null or array (in an array: no text, number or array)
/// throws `ZLVProgrammingFault`.
namespace core_parse {

/// The pieces of all entries, joined by "&", in the dictionary's order.
std::string queryStringValue(const ZLVDictionary& dictionary);

/// One piece for each element of the array and of the arrays nested in it.
std::vector<std::string> pairsOfArray(const ZLVArray& array, std::string_view key);

}  // namespace core_parse
