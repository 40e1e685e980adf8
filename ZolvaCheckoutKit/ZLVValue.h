#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include <ZolvaCheckoutKit/ZLVExport.h>

class ZLVDictionary;
class ZLVMappable;
class ZLVValue;

/// An ordered list of values.
using ZLVArray = std::vector<ZLVValue>;

/// The type of `ZLVNull`.
struct ZLVNullType {
  explicit constexpr ZLVNullType(int /*unused*/) noexcept {}  // no value is made of {}
};
/// JSON's null: `ZLVDictionary{{"note", ZLVNull}}`. A null pointer is not it but an absent value.
inline constexpr ZLVNullType ZLVNull{0};

/// One value of a decoded JSON tree, or a record standing in its place.
///
/// A value is immutable and cheap to copy: texts, arrays and dictionaries are shared. Values may be
/// copied and read on several threads at once. Texts are UTF-8: in bytes that are not, U+FFFD
/// replaces every ill-formed sequence, as the WHATWG's decoders do. No reading fails; one that does
/// not fit the kind answers with nothing, so a host can ask a server's answer without checking it
/// first:
///
/// ```cpp
/// if (auto status = info->accountStatus().text(); status == "ENABLED") { … }
/// ```
///
/// A temporary value hands out no view and no pointer, as these would dangle: such code does not
/// compile. Give the value a name first, compare it, as in
/// `record->dictionaryValue()["order_id"] == "o-1"`, or take its `description()`.
class ZLV_EXPORT ZLVValue {
 public:
  /// What a value holds. `Absent` is "no such key" or "never set"; `Null` is `ZLVNull`.
  enum class Kind : std::uint8_t {
    Absent,
    Null,
    Boolean,
    Integer,
    Unsigned,  ///< Only for integers above the signed 64-bit range.
    Double,
    Text,
    Array,
    Dictionary,
    Record
  };

  /// Makes an absent value.
  ZLVValue() noexcept = default;
  ZLVValue(std::nullopt_t /*absent*/) noexcept {}
  ZLVValue(std::nullptr_t /*absent*/) noexcept {}
  ZLVValue(ZLVNullType null) noexcept : storage_(null) {}
  template <std::same_as<bool> Boolean>
  ZLVValue(Boolean value) noexcept : storage_(value) {}
  template <std::signed_integral Integer>
  ZLVValue(Integer value) noexcept : storage_(std::int64_t{value}) {}
  template <std::unsigned_integral Unsigned>
  requires(!std::same_as<Unsigned, bool>) ZLVValue(Unsigned value)
  noexcept : storage_(fromUnsigned(value)) {}
  ZLVValue(double value) noexcept : storage_(value) {}
  ZLVValue(std::string text);
  ZLVValue(std::string_view text);
  /// A null pointer makes an absent value.
  ZLVValue(const char* text);
  /// An empty optional makes an absent value.
  template <class Content>
  requires std::convertible_to<Content, ZLVValue> ZLVValue(std::optional<Content> content) {
    if (content) *this = ZLVValue(*std::move(content));
  }
  ZLVValue(ZLVArray array);
  ZLVValue(ZLVDictionary dictionary);
  /// Holds the record itself, not its dictionary. A null pointer makes an absent value.
  template <std::derived_from<ZLVMappable> Record>
  ZLVValue(std::shared_ptr<Record> record) {
    if (record != nullptr) storage_ = std::shared_ptr<ZLVMappable>(std::move(record));
  }

  [[nodiscard]] Kind kind() const noexcept {
    return std::holds_alternative<ShortText>(storage_) ? Kind::Text
                                                       : static_cast<Kind>(storage_.index());
  }
  [[nodiscard]] bool isAbsent() const noexcept { return kind() == Kind::Absent; }
  [[nodiscard]] bool isNull() const noexcept { return kind() == Kind::Null; }
  /// True for both integer kinds and doubles; booleans are not numbers here.
  [[nodiscard]] bool isNumber() const noexcept {
    return kind() >= Kind::Integer && kind() <= Kind::Double;
  }

  [[nodiscard]] std::optional<bool> boolean() const noexcept;
  /// The text, valid as long as this value lives and is not assigned to.
  [[nodiscard]] std::optional<std::string_view> text() const& noexcept;
  void text() const&& = delete;
  /// The number as a double; integers beyond 53 bits are rounded.
  [[nodiscard]] std::optional<double> number() const noexcept;
  /// The array, or a null pointer; owned by this value.
  [[nodiscard]] const ZLVArray* array() const& noexcept;
  void array() const&& = delete;
  /// The dictionary, or a null pointer; owned by this value.
  [[nodiscard]] const ZLVDictionary* dictionary() const& noexcept;
  void dictionary() const&& = delete;
  [[nodiscard]] std::shared_ptr<ZLVMappable> record() const noexcept;

  /// The integer that this value reads as: a number without its fraction; for a text the decimal
  /// integer at its start (white space, sign, digits), 0 when there is none; 1 or 0 for a boolean;
  /// 0 for every other kind. Saturates at the limits of 64 bits.
  [[nodiscard]] std::int64_t integerValue() const noexcept;

  /// A text for people: a text as itself, an integer in its digits, a double as ECMAScript writes
  /// it, a boolean as 1 or 0, null as "<null>", absent as "(null)"; arrays and dictionaries as one
  /// line of JSON in which records stand as their dictionaries.
  [[nodiscard]] std::string description() const;

  /// Equal kind and equal content; records are equal only to themselves.
  friend ZLV_EXPORT bool operator==(const ZLVValue& left, const ZLVValue& right) noexcept;

 private:
  friend struct ZLVDecoded;

  /// Most texts are this short, and need no memory of their own.
  struct ShortText {
    std::array<char, 15> characters;
    std::uint8_t size;
  };
  /// In the order of the kinds; the short text comes behind them.
  using Storage =
      std::variant<std::monostate, ZLVNullType, bool, std::int64_t, std::uint64_t, double,
                   std::shared_ptr<const std::string>, std::shared_ptr<const ZLVArray>,
                   std::shared_ptr<const ZLVDictionary>, std::shared_ptr<ZLVMappable>, ShortText>;

  static std::optional<ShortText> shortened(std::string_view text) noexcept;
  /// Of text that is UTF-8.
  static Storage stored(std::string&& text);
  static Storage stored(std::string_view text);

  static Storage fromUnsigned(std::uint64_t value) noexcept {
    if (value <= static_cast<std::uint64_t>(INT64_MAX)) return static_cast<std::int64_t>(value);
    return value;
  }

  Storage storage_;
};

/// A dictionary from text keys to values, kept in key order. Keys are UTF-8, made so as texts are.
///
/// An ordinary container value: copying copies the entries (cheaply, see `ZLVValue`), and a
/// dictionary inside a `ZLVValue` is shared and can no longer change.
class ZLV_EXPORT ZLVDictionary {
 public:
  using Entry = std::pair<std::string, ZLVValue>;

  ZLVDictionary() = default;
  /// Of entries with the same key the last one stays; entries with absent values are left out.
  ZLVDictionary(std::initializer_list<Entry> entries);
  explicit ZLVDictionary(std::vector<Entry> entries);

  /// The value under the key, or an absent value.
  [[nodiscard]] const ZLVValue& operator[](std::string_view key) const& noexcept;
  [[nodiscard]] ZLVValue operator[](std::string_view key) const&& noexcept { return (*this)[key]; }
  [[nodiscard]] bool contains(std::string_view key) const noexcept;

  /// Sets the key; an absent value removes it.
  void set(std::string_view key, ZLVValue value);
  /// Sets every entry of `other` here.
  void merge(const ZLVDictionary& other);

  [[nodiscard]] std::size_t size() const noexcept { return entries_.size(); }
  [[nodiscard]] bool empty() const noexcept { return entries_.empty(); }
  [[nodiscard]] auto begin() const& noexcept { return entries_.begin(); }
  [[nodiscard]] auto end() const& noexcept { return entries_.end(); }
  void begin() const&& = delete;
  void end() const&& = delete;

  friend bool operator==(const ZLVDictionary&, const ZLVDictionary&) = default;

 private:
  friend struct ZLVDecoded;

  void arrange();

  std::vector<Entry> entries_;
};
