#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include <ZolvaCheckoutKit/Core/Values/ZLVJSONSerialization.h>
#include <ZolvaCheckoutKit/Core/Values/ZLVNumberText.h>
#include <ZolvaCheckoutKit/Core/Values/ZLVText.h>
#include <ZolvaCheckoutKit/ZLVMappable.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

namespace {

using Integers = std::numeric_limits<std::int64_t>;

std::int64_t integerAtStart(std::string_view text) noexcept {
  const auto start = text.find_first_not_of(" \t\n\v\f\r");
  if (start == std::string_view::npos) return 0;
  text.remove_prefix(start);
  const bool isNegative = text.front() == '-';
  if (text.front() == '+') {
    text.remove_prefix(1);
    if (text.starts_with('-')) return 0;
  }
  std::int64_t value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc::result_out_of_range) return value;
  return isNegative ? Integers::min() : Integers::max();
}

std::int64_t saturated(double number) noexcept {
  constexpr double limit = 0x1p63;
  if (std::isnan(number)) return 0;
  if (number >= limit) return Integers::max();
  if (number < -limit) return Integers::min();
  return static_cast<std::int64_t>(number);
}

const ZLVValue absentValue;

/// Stable. Nearly every dictionary is small, and then the general way costs more than it saves.
void sortByKey(std::vector<ZLVDictionary::Entry>& entries) {
  constexpr std::size_t small = 16;
  const auto isLess = [](const auto& left, const auto& right) { return left.first < right.first; };
  if (entries.size() > small) {
    std::stable_sort(entries.begin(), entries.end(), isLess);
    return;
  }
  for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
    if (entry == entries.begin() || !isLess(*entry, *std::prev(entry))) continue;
    std::rotate(std::upper_bound(entries.begin(), entry, *entry, isLess), entry, entry + 1);
  }
}

bool isBefore(const ZLVDictionary::Entry& entry, std::string_view key) noexcept {
  return entry.first < key;
}

}  // namespace

std::optional<ZLVValue::ShortText> ZLVValue::shortened(std::string_view text) noexcept {
  ShortText shortText{};
  if (text.size() > shortText.characters.size()) return std::nullopt;
  std::copy(text.begin(), text.end(), shortText.characters.begin());
  shortText.size = static_cast<std::uint8_t>(text.size());
  return shortText;
}

ZLVValue::Storage ZLVValue::stored(std::string&& text) {
  if (const auto shortText = shortened(text)) return *shortText;
  return std::make_shared<const std::string>(std::move(text));
}

ZLVValue::Storage ZLVValue::stored(std::string_view text) {
  if (const auto shortText = shortened(text)) return *shortText;
  return std::make_shared<const std::string>(text);
}

ZLVValue::ZLVValue(std::string text)
    : storage_(stored(ZLVIsUTF8(text) ? std::move(text) : ZLVUTF8Text(text))) {}

ZLVValue::ZLVValue(std::string_view text)
    : storage_(ZLVIsUTF8(text) ? stored(text) : stored(ZLVUTF8Text(text))) {}

ZLVValue::ZLVValue(const char* text) {
  if (text != nullptr) *this = std::string_view(text);
}

ZLVValue::ZLVValue(ZLVArray array) : storage_(std::make_shared<const ZLVArray>(std::move(array))) {}

ZLVValue::ZLVValue(ZLVDictionary dictionary)
    : storage_(std::make_shared<const ZLVDictionary>(std::move(dictionary))) {}

std::optional<bool> ZLVValue::boolean() const noexcept {
  const auto* boolean = std::get_if<bool>(&storage_);
  return boolean != nullptr ? std::optional(*boolean) : std::nullopt;
}

std::optional<std::string_view> ZLVValue::text() const& noexcept {
  if (const auto* text = std::get_if<ShortText>(&storage_)) {
    return std::string_view(text->characters.data(), text->size);
  }
  const auto* text = std::get_if<std::shared_ptr<const std::string>>(&storage_);
  return text != nullptr ? std::optional<std::string_view>(**text) : std::nullopt;
}

std::optional<double> ZLVValue::number() const noexcept {
  if (const auto* integer = std::get_if<std::int64_t>(&storage_)) {
    return static_cast<double>(*integer);
  }
  if (const auto* integer = std::get_if<std::uint64_t>(&storage_)) {
    return static_cast<double>(*integer);
  }
  const auto* number = std::get_if<double>(&storage_);
  return number != nullptr ? std::optional(*number) : std::nullopt;
}

const ZLVArray* ZLVValue::array() const& noexcept {
  const auto* array = std::get_if<std::shared_ptr<const ZLVArray>>(&storage_);
  return array != nullptr ? array->get() : nullptr;
}

const ZLVDictionary* ZLVValue::dictionary() const& noexcept {
  const auto* dictionary = std::get_if<std::shared_ptr<const ZLVDictionary>>(&storage_);
  return dictionary != nullptr ? dictionary->get() : nullptr;
}

std::shared_ptr<ZLVMappable> ZLVValue::record() const noexcept {
  const auto* record = std::get_if<std::shared_ptr<ZLVMappable>>(&storage_);
  return record != nullptr ? *record : nullptr;
}

std::int64_t ZLVValue::integerValue() const noexcept {
  switch (kind()) {
    case Kind::Boolean:
      return *boolean() ? 1 : 0;
    case Kind::Integer:
      return *std::get_if<std::int64_t>(&storage_);
    case Kind::Unsigned:
      return Integers::max();
    case Kind::Double:
      return saturated(*number());
    case Kind::Text:
      return integerAtStart(*text());
    default:
      return 0;
  }
}

std::string ZLVValue::description() const {
  switch (kind()) {
    case Kind::Absent:
      return std::string(ZLVMissingObjectText);
    case Kind::Null:
      return "<null>";
    case Kind::Boolean:
    case Kind::Integer:
      return std::to_string(integerValue());
    case Kind::Unsigned:
      return std::to_string(*std::get_if<std::uint64_t>(&storage_));
    case Kind::Double:
      return ZLVDecimalText(*number());
    case Kind::Text:
      return std::string(*text());
    default:
      return *ZLVJSONSerialization::dataWithJSONObject(*this,
                                                       ZLVJSONSerialization::Unwritable::Describe);
  }
}

bool operator==(const ZLVValue& left, const ZLVValue& right) noexcept {
  using Kind = ZLVValue::Kind;
  if (left.kind() != right.kind()) return false;
  switch (left.kind()) {
    case Kind::Null:
    case Kind::Absent:
      return true;
    case Kind::Boolean:
      return left.boolean() == right.boolean();
    case Kind::Text:
      return left.text() == right.text();
    case Kind::Array:
      return *left.array() == *right.array();
    case Kind::Dictionary:
      return *left.dictionary() == *right.dictionary();
    case Kind::Record:
      return left.record() == right.record();
    case Kind::Double:
      return left.number() == right.number();
    case Kind::Integer:
      return std::get<std::int64_t>(left.storage_) == std::get<std::int64_t>(right.storage_);
    case Kind::Unsigned:
      return std::get<std::uint64_t>(left.storage_) == std::get<std::uint64_t>(right.storage_);
  }
  return false;
}

ZLVDictionary::ZLVDictionary(std::initializer_list<Entry> entries)
    : ZLVDictionary(std::vector<Entry>(entries)) {}

ZLVDictionary::ZLVDictionary(std::vector<Entry> entries) : entries_(std::move(entries)) {
  for (auto& [key, value] : entries_) {
    if (!ZLVIsUTF8(key)) key = ZLVUTF8Text(key);
  }
  arrange();
  std::erase_if(entries_, [](const Entry& entry) { return entry.second.isAbsent(); });
}

void ZLVDictionary::arrange() {
  sortByKey(entries_);
  // The last of equal keys stays, so duplicates are looked for from the end.
  const auto isSame = [](const Entry& left, const Entry& right) {
    return left.first == right.first;
  };
  const auto firstKept = std::unique(entries_.rbegin(), entries_.rend(), isSame).base();
  entries_.erase(entries_.begin(), firstKept);
}

const ZLVValue& ZLVDictionary::operator[](std::string_view key) const& noexcept {
  const auto entry = std::lower_bound(entries_.begin(), entries_.end(), key, isBefore);
  if (entry != entries_.end() && entry->first == key) return entry->second;
  return ZLVIsUTF8(key) ? absentValue : (*this)[ZLVUTF8Text(key)];
}

bool ZLVDictionary::contains(std::string_view key) const noexcept {
  return !(*this)[key].isAbsent();
}

void ZLVDictionary::set(std::string_view key, ZLVValue value) {
  if (!ZLVIsUTF8(key)) return set(ZLVUTF8Text(key), std::move(value));
  const auto entry = std::lower_bound(entries_.begin(), entries_.end(), key, isBefore);
  const bool isPresent = entry != entries_.end() && entry->first == key;
  if (value.isAbsent()) {
    if (isPresent) entries_.erase(entry);
  } else if (isPresent) {
    entry->second = std::move(value);
  } else {
    entries_.emplace(entry, key, std::move(value));
  }
}

void ZLVDictionary::merge(const ZLVDictionary& other) {
  for (const auto& [key, value] : other) set(key, value);
}
