// Bytes -> value -> every record class, and back.

#include <algorithm>
#include <initializer_list>

#include <ZolvaCheckoutKit/Core/Helpers/builder.h>
#include <ZolvaCheckoutKit/Core/Values/ZLVJSONSerialization.h>
#include <ZolvaCheckoutKit/Core/Values/ZLVText.h>
#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

#include "Tests/Fuzz/Fuzz.h"

namespace {

namespace JSON = ZLVJSONSerialization;

/// Whether `read` is what was written as `written`. JSON knows one kind of number, and no records.
bool isAlike(const ZLVValue& written, const ZLVValue& read) {
  if (const auto record = written.record()) return isAlike(record->dictionaryValue(), read);
  if (written.kind() != read.kind() && written.isNumber()) return written.number() == read.number();
  if (written.array() != nullptr && read.array() != nullptr) {
    return std::ranges::equal(*written.array(), *read.array(), isAlike);
  }
  if (written.dictionary() != nullptr && read.dictionary() != nullptr) {
    return std::ranges::equal(
        *written.dictionary(), *read.dictionary(), [](const auto& left, const auto& right) {
          return left.first == right.first && isAlike(left.second, right.second);
        });
  }
  return written == read;
}

/// The value after its way through JSON text.
ZLVValue rewritten(const ZLVValue& value, JSON::Unwritable unwritable) {
  const auto text = JSON::dataWithJSONObject(value, unwritable);
  promise(text.has_value(), "What was read can be written.", value.description());
  const auto read = JSON::JSONObjectWithData(*text);
  const auto* again = std::get_if<ZLVValue>(&read);
  promise(again != nullptr && isAlike(value, *again), "What is written is read back the same.",
          *text);
  return *again;
}

/// Takes any bytes for a text, as a host may.
void checkText(std::string_view bytes) {
  const ZLVValue text(bytes);
  promise(ZLVIsUTF8(*text.text()), "A text is UTF-8.", bytes);
  promise(ZLVIsUTF8(bytes) == (text.text() == bytes), "Only what is not UTF-8 changes.", bytes);
  const ZLVDictionary dictionary{{std::string(bytes), text}};
  promise(dictionary[bytes] == text, "A key is found.", bytes);
  rewritten(dictionary, JSON::Unwritable::Refuse);
}

/// Takes every reading of the value and of those inside it. None of them throws.
void readAll(const ZLVValue& value) {
  for (const auto& element : value.array() != nullptr ? *value.array() : ZLVArray()) {
    readAll(element);
  }
  for (const auto& [key, element] :
       value.dictionary() != nullptr ? *value.dictionary() : ZLVDictionary()) {
    promise(ZLVIsUTF8(key), "A key is UTF-8.", key);
    readAll(element);
  }
  if (const auto text = value.text()) promise(ZLVIsUTF8(*text), "A text is UTF-8.", *text);
  const bool isContainer = value.array() != nullptr || value.dictionary() != nullptr;
  promise(isContainer || !value.description().empty() || value.text() == "",
          "A value has a description.", "");
  promise(value.record() == nullptr && !value.isAbsent(), "JSON has no such value.", "");
}

/// Whether a record's fields hold exactly what stood in the dictionary that it was read from.
bool holds(const ZLVValue& field, const ZLVValue& source) {
  if (field == source) return true;
  if (field.boolean()) return *field.boolean() == !(source.isAbsent() || source.isNull());
  const auto record = field.record();
  if (record != nullptr || field.dictionary() != nullptr) {
    const auto fields = record != nullptr ? record->dictionaryValue() : *field.dictionary();
    const auto sources = source.dictionary() != nullptr ? *source.dictionary() : ZLVDictionary();
    return std::ranges::all_of(
        fields, [&](const auto& entry) { return holds(entry.second, sources[entry.first]); });
  }
  return field.array() != nullptr && source.array() != nullptr &&
         std::ranges::equal(*field.array(), *source.array(), holds);
}

/// What a record of the class is read from in a dictionary of its making.
template <class Record>
const ZLVValue& ownPart(const ZLVValue& written) {
  return written;
}
template <>
const ZLVValue& ownPart<ZLVPartnerDetails>(const ZLVValue& written) {
  return (*written.dictionary())["zolva_partner"];
}

/// Reads a record, checks it, and returns what it writes; absent where there is no record.
template <class Record>
ZLVValue throughRecord(const ZLVValue& value) try {
  const ZLVValue written = Record::initWithDictionary(value)->dictionaryValue();
  auto source = *value.dictionary();
  if (std::is_same_v<Record, ZLVCustomerDetails>) {
    for (const auto* key : {"first_name", "last_name", "email"}) source.set(key, source["phone"]);
  }
  promise(holds(ownPart<Record>(written), source), "A record holds what the server sent.",
          value.description());
  return rewritten(written, JSON::Unwritable::Describe);
} catch (const ZLVProgrammingFault&) {
  const std::initializer_list<std::string_view> structured{"actions", "balance", "metadata",
                                                           "payment_options"};
  const auto* fields = value.dictionary();
  promise(fields == nullptr ||
              std::ranges::any_of(structured, [&](auto key) { return fields->contains(key); }),
          "Only structure can fail to fit a record.", value.description());
  return {};
}

template <class Record>
void checkRecord(const ZLVValue& value) {
  const auto first = throughRecord<Record>(value);
  if (first.isAbsent()) return;
  // The first time, a boolean that was missing becomes one that is there, and so true.
  const auto second = throughRecord<Record>(ownPart<Record>(first));
  promise(second == throughRecord<Record>(ownPart<Record>(second)),
          "A record is read from what it writes.", value.description());
}

template <class... Records>
void checkRecords(const ZLVValue& value) {
  (checkRecord<Records>(value), ...);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto text = textOf(data, size);
  checkText(text);
  const auto read = JSON::JSONObjectWithData(text);
  if (const auto* error = std::get_if<ZLVError>(&read)) {
    promise(
        error->domain() == NSCocoaErrorDomain && error->code() == NSPropertyListReadCorruptError,
        "What is no JSON is said to be none.", error->debugDescription());
    return 0;
  }
  const auto& value = std::get<ZLVValue>(read);
  promise(ZLVIsUTF8(text), "JSON is UTF-8.", text);
  readAll(value);
  const auto error = builder::errorWithCode(value.integerValue(), value, value);
  promise(error.localizedDescription() == value.description() &&
              error.localizedFailureReason() == value.description() &&
              error.debugDescription().find('\n') == std::string::npos,
          "An error shows the server's message, and its diagnosis is one line.", text);
  rewritten(value, JSON::Unwritable::Refuse);
  checkRecords<ZLVLinkAccountResult, ZLVDisableAccountResult, ZLVLinkAccountActions,
               ZLVLinkAccountResponse, ZLVPaymentOptionsBalance, ZLVPaymentOptions,
               ZLVAccountMetadata, ZLVAccountInfo, ZLVTransactionResult,
               ZLVCreateTransactionActions, ZLVTransactionResponse, ZLVPartnerDetails,
               ZLVZolvaDetails, ZLVTransactionDetails, ZLVCustomerDetails, ZLVItemDetails>(value);
  return 0;
}
