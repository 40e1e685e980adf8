#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace encode {

/// `string` with its percent-escapes replaced by what they stand for; nothing is escaped, despite
/// the name. Nothing when an escape is malformed or the result is not UTF-8.
std::optional<std::string> ZLVURLEncodedString(std::string_view string);

}  // namespace encode
