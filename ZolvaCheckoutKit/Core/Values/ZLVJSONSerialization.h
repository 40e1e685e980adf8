#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include <ZolvaCheckoutKit/ZLVError.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

/// JSON text to values and back. The only place that knows the JSON library. Any thread.
namespace ZLVJSONSerialization {

/// What a value has that JSON text has not: a record, an absent value, a number that is not
/// finite.
enum class Unwritable {
  Refuse,    ///< Writing fails.
  Describe,  ///< A record is written as its dictionary, anything else as null.
};

/// Reads one JSON value of any kind. Strict RFC 8259 after an optional byte-order mark: UTF-8 is
/// validated, at most 512 levels deep, of equal keys the last one stays, integers keep 64 bits
/// and larger ones become doubles. The error is of `NSCocoaErrorDomain` and tells the offset; or
/// it is `NSURLErrorDataLengthExceedsMaximum`, when the value and the record made of it could
/// take more than `maximumSize` bytes of memory, or `NSURLErrorResourceUnavailable`, when there
/// is not as much.
std::variant<ZLVValue, ZLVError> JSONObjectWithData(std::string_view data,
                                                    std::size_t maximumSize = SIZE_MAX);

/// Compact JSON text, or nothing where it cannot be written. Only its first `lookedAt` bytes need
/// be right: what comes behind may be left out.
std::optional<std::string> dataWithJSONObject(const ZLVValue& value,
                                              Unwritable unwritable = Unwritable::Refuse,
                                              std::size_t lookedAt = SIZE_MAX);

/// The reading error of an answer that is JSON but not an object.
ZLVError notAnObjectError();
/// The same of an object that does not fit its record; `misfit` says where.
ZLVError misfitError(std::string_view misfit);

}  // namespace ZLVJSONSerialization
