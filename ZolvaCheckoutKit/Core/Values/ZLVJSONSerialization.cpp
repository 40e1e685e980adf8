#include <algorithm>
#include <cmath>
#include <cstdint>
#include <new>
#include <utility>
#include <vector>

#include <ZolvaCheckoutKit/Core/Values/ZLVJSONSerialization.h>

#define ZLV_JSON_PARSER  // this file is the one that has all of the JSON library
#include <ZolvaCheckoutKit/Core/Values/ZLVDecoded.h>
#include <ZolvaCheckoutKit/Core/Values/ZLVJSONLibrary.h>
#include <ZolvaCheckoutKit/Core/Values/ZLVNumberText.h>
#include <ZolvaCheckoutKit/Core/Values/ZLVText.h>
#include <ZolvaCheckoutKit/ZLVMappable.h>

namespace {

namespace json = zlv_boost::json;

constexpr std::size_t maximumDepth = 512;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// What memory is counted for, rounded up. An entry waits on the stack, then stands in a container,
/// and takes half as much again while that is sorted.
constexpr std::size_t entrySize = sizeof(ZLVDictionary::Entry) * 5 / 2;
constexpr std::size_t sharedSize = 64;       // an array, or what a long text needs beside itself
constexpr std::size_t dictionarySize = 256;  // with the record that is made of it
constexpr std::size_t longestFreeText = 15;  // it stands in its entry

/// The parser's word for what it never meets, because its own limits are off.
constexpr auto tooLarge = json::error::array_too_large;

/// Builds the value straight from the parser's events. A container's entries wait on one stack
/// until it ends.
class ValueBuilder {
 public:
  explicit ValueBuilder(std::size_t maximumSize) : remaining_(maximumSize) {}

  static constexpr std::size_t max_object_size = SIZE_MAX;
  static constexpr std::size_t max_array_size = SIZE_MAX;
  static constexpr std::size_t max_key_size = SIZE_MAX;
  static constexpr std::size_t max_string_size = SIZE_MAX;

  ZLVValue takeValue() { return std::move(entries_.back().second); }

  bool on_document_begin(json::error_code&) { return true; }
  bool on_document_end(json::error_code&) { return true; }

  bool on_object_begin(json::error_code& error) { return begin(dictionarySize, error); }
  bool on_object_end(std::size_t count, json::error_code& error) {
    const auto first = entries_.end() - static_cast<std::ptrdiff_t>(count);
    auto dictionary = ZLVDecoded::dictionary(
        {std::make_move_iterator(first), std::make_move_iterator(entries_.end())});
    return endContainer(count, std::move(dictionary), error);
  }
  bool on_array_begin(json::error_code& error) { return begin(sharedSize, error); }
  bool on_array_end(std::size_t count, json::error_code& error) {
    ZLVArray array;
    array.reserve(count);
    for (auto entry = entries_.end() - static_cast<std::ptrdiff_t>(count); entry != entries_.end();
         ++entry) {
      array.push_back(std::move(entry->second));
    }
    return endContainer(count, std::move(array), error);
  }

  bool on_key_part(json::string_view part, std::size_t length, json::error_code& error) {
    if (!countText(part, length, error)) return false;
    key_.append(part.data(), part.size());
    return true;
  }
  bool on_key(json::string_view part, std::size_t length, json::error_code& error) {
    return on_key_part(part, length, error);
  }
  bool on_string_part(json::string_view part, std::size_t length, json::error_code& error) {
    if (!countText(part, length, error)) return false;
    text_.append(part.data(), part.size());
    return true;
  }
  bool on_string(json::string_view part, std::size_t length, json::error_code& error) {
    if (!text_.empty()) {
      return on_string_part(part, length, error) &&
             add(ZLVDecoded::text(std::exchange(text_, {})), error);
    }
    return countText(part, length, error) &&
           add(ZLVDecoded::text(std::string_view(part.data(), part.size())), error);
  }
  bool on_number_part(json::string_view, json::error_code&) { return true; }
  bool on_int64(std::int64_t number, json::string_view, json::error_code& error) {
    return add(number, error);
  }
  bool on_uint64(std::uint64_t number, json::string_view, json::error_code& error) {
    return add(number, error);
  }
  bool on_double(double number, json::string_view text, json::error_code& error) {
    // The parser rounds more than once.
    number = ZLVExactNumber({text.data(), text.size()}, number);
    if (std::isfinite(number)) return add(number, error);
    error = json::error::exponent_overflow;
    return false;
  }
  bool on_bool(bool boolean, json::error_code& error) { return add(boolean, error); }
  bool on_null(json::error_code& error) { return add(ZLVNull, error); }
  bool on_comment_part(json::string_view, json::error_code&) { return true; }
  bool on_comment(json::string_view, json::error_code&) { return true; }

 private:
  /// Counts memory before it is taken.
  bool count(std::size_t size, json::error_code& error) {
    if (size <= remaining_) {
      remaining_ -= size;
      return true;
    }
    error = tooLarge;
    return false;
  }
  bool countText(json::string_view part, std::size_t length, json::error_code& error) {
    return length <= longestFreeText || count(part.size() + sharedSize, error);
  }
  bool begin(std::size_t size, json::error_code& error) {
    if (!count(size, error)) return false;
    keys_.push_back(std::move(key_));
    return true;
  }
  bool add(ZLVValue value, json::error_code& error) {
    if (!count(entrySize, error)) return false;
    entries_.emplace_back(std::move(key_), std::move(value));
    key_.clear();
    return true;
  }
  bool endContainer(std::size_t count, ZLVValue container, json::error_code& error) {
    entries_.resize(entries_.size() - count);
    key_ = std::move(keys_.back());
    keys_.pop_back();
    return add(std::move(container), error);
  }

  std::size_t remaining_;
  std::vector<ZLVDictionary::Entry> entries_;  // key and value; the key is empty in arrays
  std::vector<std::string> keys_;              // of the containers still open
  std::string key_;
  std::string text_;
};

ZLVError readingError(ZLVErrorText text) {
  return ZLVError::errorWithDomain(NSCocoaErrorDomain, NSPropertyListReadCorruptError, text);
}

/// Whether the character may not stand in JSON text as it is. Hardly any text has one.
constexpr bool needsCare(char character) {
  const auto byte = static_cast<std::uint8_t>(character);
  return byte < 0x20 || byte >= 0x7F || character == '"' || character == '\\';
}

class Writer {
 public:
  Writer(ZLVJSONSerialization::Unwritable unwritable, std::size_t lookedAt)
      : unwritable_(unwritable), lookedAt_(lookedAt) {
    constexpr std::size_t usual = 512;  // bytes of a usage event
    text_.reserve(usual);
  }

  std::string takeText() { return std::move(text_); }

  bool write(const ZLVValue& value) {
    using Kind = ZLVValue::Kind;
    switch (value.kind()) {
      case Kind::Null:
        return put("null");
      case Kind::Boolean:
        return put(*value.boolean() ? "true" : "false");
      case Kind::Double:
        return std::isfinite(*value.number()) ? put(value.description()) : writeUnwritable();
      case Kind::Integer:
      case Kind::Unsigned:
        return put(value.description());
      case Kind::Text:
        return writeText(*value.text());
      case Kind::Array:
        return writeList('[', *value.array(), ']',
                         [this](const ZLVValue& item) { return write(item); });
      case Kind::Dictionary:
        return writeDictionary(*value.dictionary());
      case Kind::Record:
        if (unwritable_ == ZLVJSONSerialization::Unwritable::Refuse) return false;
        return writeDictionary(value.record()->dictionaryValue());
      case Kind::Absent:
        break;
    }
    return writeUnwritable();
  }

 private:
  bool put(std::string_view piece) {
    text_ += piece;
    return true;
  }
  bool writeUnwritable() {
    return unwritable_ == ZLVJSONSerialization::Unwritable::Describe && put("null");
  }
  bool writeText(std::string_view value) {  // which is UTF-8, like every text
    value = ZLVBeginning(value, lookedAt_);
    if (std::ranges::none_of(value, needsCare)) return put("\"") && put(value) && put("\"");
    return put(json::serialize(json::string_view(value.data(), value.size())));
  }
  bool writeDictionary(const ZLVDictionary& dictionary) {
    return writeList('{', dictionary, '}', [this](const ZLVDictionary::Entry& entry) {
      return writeText(entry.first) && put(":") && write(entry.second);
    });
  }
  template <class List, class WriteItem>
  bool writeList(char open, const List& list, char close, WriteItem writeItem) {
    text_ += open;
    bool isFirst = true;
    for (const auto& item : list) {
      if (text_.size() >= lookedAt_) break;
      if (!std::exchange(isFirst, false)) text_ += ',';
      if (!writeItem(item)) return false;
    }
    text_ += close;
    return true;
  }

  ZLVJSONSerialization::Unwritable unwritable_;
  std::size_t lookedAt_;
  std::string text_;
};

}  // namespace

std::variant<ZLVValue, ZLVError> ZLVJSONSerialization::JSONObjectWithData(
    std::string_view data, std::size_t maximumSize) try {
  std::size_t offset = 0;
  if (data.starts_with(byteOrderMark)) offset = byteOrderMark.size();
  if (data.size() == offset) return readingError(ZLVErrorText("The answer is empty."));

  json::parse_options options;
  options.max_depth = maximumDepth;
  json::basic_parser<ValueBuilder> parser(options, maximumSize);
  json::error_code error;
  offset += parser.write_some(false, data.data() + offset, data.size() - offset, error);
  if (!error && offset < data.size()) error = json::error::extra_data;
  if (!error) return parser.handler().takeValue();
  if (error == tooLarge) {
    return ZLVError::errorWithDomain(
        NSURLErrorDomain, NSURLErrorDataLengthExceedsMaximum,
        ZLVErrorText("The answer is larger than allowed once it is decoded."));
  }
  return readingError(ZLVErrorText("The answer is not valid JSON: %s.",
                                   error.message() + " at byte " + std::to_string(offset)));
} catch (const std::bad_alloc&) {
  return ZLVError::errorWithDomain(
      NSURLErrorDomain, NSURLErrorResourceUnavailable,
      ZLVErrorText("There is not enough memory to decode the answer."));
}

std::optional<std::string> ZLVJSONSerialization::dataWithJSONObject(const ZLVValue& value,
                                                                    Unwritable unwritable,
                                                                    std::size_t lookedAt) {
  Writer writer(unwritable, lookedAt);
  if (!writer.write(value)) return std::nullopt;
  return writer.takeText();
}

ZLVError ZLVJSONSerialization::notAnObjectError() {
  return readingError(ZLVErrorText("The answer is not a JSON object."));
}

ZLVError ZLVJSONSerialization::misfitError(std::string_view misfit) {
  return readingError(ZLVErrorText("The answer does not have the expected structure: %s.", misfit));
}
