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
  /// Explicit and of an argument, so that `{}` never makes a null.
  explicit constexpr ZLVNullType(int /*unused*/) noexcept {}
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
  /// What a value holds.
  enum class Kind : std::uint8_t {
    Absent,      ///< No such key, or never set.
    Null,        ///< `ZLVNull`.
    Boolean,     ///< True or false, which is no number here.
    Integer,     ///< An integer of the signed 64-bit range.
    Unsigned,    ///< An integer above that range.
    Double,      ///< Any other number.
    Text,        ///< UTF-8.
    Array,       ///< `ZLVArray`.
    Dictionary,  ///< `ZLVDictionary`.
    Record       ///< A record in place of its dictionary.
  };

  /// Makes an absent value.
  ZLVValue() noexcept = default;
  /// Makes an absent value.
  ZLVValue(std::nullopt_t /*absent*/) noexcept {}
  /// Makes an absent value.
  ZLVValue(std::nullptr_t /*absent*/) noexcept {}
  /// Makes JSON's null.
  ZLVValue(ZLVNullType null) noexcept : storage_(null) {}
  /// Takes a `bool` and nothing that converts to it.
  template <std::same_as<bool> Boolean>
  ZLVValue(Boolean value) noexcept : storage_(value) {}
  /// Makes an integer.
  template <std::signed_integral Integer>
  ZLVValue(Integer value) noexcept : storage_(std::int64_t{value}) {}
  /// Makes an integer, of the kind that its size needs.
  template <std::unsigned_integral Unsigned>
  requires(!std::same_as<Unsigned, bool>) ZLVValue(Unsigned value)
  noexcept : storage_(fromUnsigned(value)) {}
  /// A character is no number, and whether one has a sign differs between processors.
  template <std::same_as<char> Character>
  ZLVValue(Character character) = delete;
  /// Keeps what is no number or not finite, too; such a value cannot be sent.
  ZLVValue(double value) noexcept : storage_(value) {}
  /// Makes a text, and makes it UTF-8.
  ZLVValue(std::string text);
  /// Makes a text, and makes it UTF-8.
  ZLVValue(std::string_view text);
  /// Makes a text, and makes it UTF-8. A null pointer makes an absent value.
  ZLVValue(const char* text);
  /// An empty optional makes an absent value.
  template <class Content>
  requires std::convertible_to<Content, ZLVValue> ZLVValue(std::optional<Content> content) {
    if (content) *this = ZLVValue(*std::move(content));
  }
  /// Moves the array into the value, where it no longer changes.
  ZLVValue(ZLVArray array);
  /// Moves the dictionary into the value, where it no longer changes.
  ZLVValue(ZLVDictionary dictionary);
  /// Holds the record itself, not its dictionary. A null pointer makes an absent value.
  template <std::derived_from<ZLVMappable> Record>
  ZLVValue(std::shared_ptr<Record> record) {
    if (record != nullptr) storage_ = std::shared_ptr<ZLVMappable>(std::move(record));
  }

  /// What it holds.
  [[nodiscard]] Kind kind() const noexcept {
    return std::holds_alternative<ShortText>(storage_) ? Kind::Text
                                                       : static_cast<Kind>(storage_.index());
  }
  /// Whether there is nothing, not even null.
  [[nodiscard]] bool isAbsent() const noexcept { return kind() == Kind::Absent; }
  /// Whether it is JSON's null.
  [[nodiscard]] bool isNull() const noexcept { return kind() == Kind::Null; }
  /// True for both integer kinds and doubles; booleans are not numbers here.
  [[nodiscard]] bool isNumber() const noexcept {
    return kind() >= Kind::Integer && kind() <= Kind::Double;
  }

  /// The boolean, or nothing.
  [[nodiscard]] std::optional<bool> boolean() const noexcept;

  /// The text, or nothing; valid as long as this value lives and is not assigned to.
  [[nodiscard]] std::optional<std::string_view> text() const& noexcept;
  void text() const&& = delete;

  /// The number as a double, or nothing; integers beyond 53 bits are rounded.
  [[nodiscard]] std::optional<double> number() const noexcept;

  /// The array, or a null pointer; owned by this value.
  [[nodiscard]] const ZLVArray* array() const& noexcept;
  void array() const&& = delete;

  /// The dictionary, or a null pointer; owned by this value.
  [[nodiscard]] const ZLVDictionary* dictionary() const& noexcept;
  void dictionary() const&& = delete;

  /// The record, or a null pointer.
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
  template <Kind kind, class Type>
  static constexpr bool isStoredAs =
      std::same_as<std::variant_alternative_t<static_cast<std::size_t>(kind), Storage>, Type>;
  static_assert(isStoredAs<Kind::Absent, std::monostate> && isStoredAs<Kind::Null, ZLVNullType> &&
                isStoredAs<Kind::Boolean, bool> && isStoredAs<Kind::Integer, std::int64_t> &&
                isStoredAs<Kind::Unsigned, std::uint64_t> && isStoredAs<Kind::Double, double> &&
                isStoredAs<Kind::Text, std::shared_ptr<const std::string>> &&
                isStoredAs<Kind::Array, std::shared_ptr<const ZLVArray>> &&
                isStoredAs<Kind::Dictionary, std::shared_ptr<const ZLVDictionary>> &&
                isStoredAs<Kind::Record, std::shared_ptr<ZLVMappable>>);

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
  /// A key and what stands under it.
  using Entry = std::pair<std::string, ZLVValue>;

  /// Makes an empty one.
  ZLVDictionary() = default;
  /// Of entries with the same key the last one stays; entries with absent values are left out.
  ZLVDictionary(std::initializer_list<Entry> entries);
  /// As of a list of entries.
  explicit ZLVDictionary(std::vector<Entry> entries);

  /// The value under the key, or an absent value.
  [[nodiscard]] const ZLVValue& operator[](std::string_view key) const& noexcept;
  [[nodiscard]] ZLVValue operator[](std::string_view key) const&& noexcept { return (*this)[key]; }

  /// Whether something stands under the key, be it null.
  [[nodiscard]] bool contains(std::string_view key) const noexcept;

  /// Sets the key; an absent value removes it.
  void set(std::string_view key, ZLVValue value);
  /// Sets every entry of `other` here.
  void merge(const ZLVDictionary& other);

  /// How many keys there are.
  [[nodiscard]] std::size_t size() const noexcept { return entries_.size(); }
  /// Whether there is none.
  [[nodiscard]] bool empty() const noexcept { return entries_.empty(); }

  /// Over the entries, in the order of their keys' bytes. Of a temporary dictionary there is none.
  [[nodiscard]] auto begin() const& noexcept { return entries_.begin(); }
  [[nodiscard]] auto end() const& noexcept { return entries_.end(); }
  void begin() const&& = delete;
  void end() const&& = delete;

  /// Equal keys with equal values.
  friend bool operator==(const ZLVDictionary&, const ZLVDictionary&) = default;

 private:
  friend struct ZLVDecoded;

  void arrange();

  std::vector<Entry> entries_;
};
