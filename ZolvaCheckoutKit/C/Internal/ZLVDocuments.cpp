#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include <ZolvaCheckoutKit/C/Internal/ZLVBoundary.h>
#include <ZolvaCheckoutKit/C/Internal/ZLVDocuments.h>
#include <ZolvaCheckoutKit/Core/Values/ZLVJSONSerialization.h>

namespace {

/// An object of a document that a host wrote, for the messages with its place in it.
class Part {
 public:
  Part(ZLVDictionary fields, std::string_view call) : fields_(std::move(fields)), call_(call) {}

  /// What stands there; null is nothing.
  [[nodiscard]] ZLVValue field(std::string_view key) const {
    const auto& value = fields_[key];
    return value.isNull() ? ZLVValue() : value;
  }

  /// The object that stands there, or nothing.
  [[nodiscard]] std::optional<Part> part(std::string_view key) const {
    return partOf(field(key), key);
  }

  /// The list of objects that stands there, or nothing.
  [[nodiscard]] std::optional<std::vector<Part>> parts(std::string_view key) const {
    const auto value = field(key);
    if (value.isAbsent()) return std::nullopt;
    const auto* list = value.array();
    if (list == nullptr) misfit(key, "no list");
    std::vector<Part> parts;
    for (const auto& entry : *list) {
      auto part = partOf(entry, key);
      parts.push_back(*std::move(part));
    }
    return parts;
  }

  /// The text that stands there, or nothing.
  [[nodiscard]] ZLVOptionalText text(std::string_view key) const {
    const auto value = field(key);
    if (value.isAbsent()) return std::nullopt;
    const auto text = value.text();
    if (!text) misfit(key, "no text");
    return *text;
  }

 private:
  [[nodiscard]] std::optional<Part> partOf(const ZLVValue& value, std::string_view key) const {
    if (value.isAbsent()) return std::nullopt;
    if (value.dictionary() == nullptr) misfit(key, "no object");
    return Part(*value.dictionary(), call_);
  }

  [[noreturn]] void misfit(std::string_view key, std::string_view what) const {
    ZLVThrowFault(call_, std::string(what).append(" under \"").append(key).append("\""));
  }

  ZLVDictionary fields_;
  std::string_view call_;
};

std::shared_ptr<ZLVZolvaDetails> zolvaDetails(const Part& part) {
  auto record = ZLVZolvaDetails::initWithAccountID(part.field("account_id"),
                                                   part.field("payment_option_token"));
  if (auto url = part.field("callback_url"); !url.isAbsent()) record->setCallbackUrl(url);
  if (part.field("enable_callback").boolean() == false) record->setCallbackEnabled(false);
  return record;
}

std::shared_ptr<ZLVTransactionDetails> transactionDetails(const Part& part) {
  return ZLVTransactionDetails::initWithGrossAmount(part.field("gross_amount"),
                                                    part.field("order_id"), part.field("currency"));
}

std::shared_ptr<ZLVCustomerDetails> customerDetails(const Part& part) {
  return ZLVCustomerDetails::initWithPhoneNumber(part.field("phone"), part.field("first_name"),
                                                 part.field("last_name"), part.field("email"));
}

std::shared_ptr<ZLVItemDetails> itemDetails(const Part& part) {
  return ZLVItemDetails::initWithIthItemID(part.field("id"), part.field("name"),
                                           part.field("price"), part.field("quantity"),
                                           part.field("category"));
}

}  // namespace

ZLVValue ZLVValueOfText(std::string_view text, std::string_view call, std::string_view what) {
  auto decoded = ZLVJSONSerialization::JSONObjectWithData(text);
  if (auto* value = std::get_if<ZLVValue>(&decoded)) return std::move(*value);
  ZLVThrowFault(call, std::string(what).append(": ").append(
                          std::get<ZLVError>(decoded).localizedDescription()));
}

ZLVDictionary ZLVObjectOfText(std::string_view text, std::string_view call, std::string_view what) {
  const auto value = ZLVValueOfText(text, call, what);
  if (value.dictionary() == nullptr) ZLVThrowFault(call, std::string(what).append(": no object"));
  return *value.dictionary();
}

std::shared_ptr<ZLVPartnerDetails> ZLVPartnerDetailsOfText(const char* text) {
  if (text == nullptr) return nullptr;
  constexpr std::string_view call = "zlv_link";
  const Part part(ZLVObjectOfText(text, call, "partner details"), call);
  auto record = ZLVPartnerDetails::initWithPhoneNumber(part.field("phone_number"),
                                                       part.field("country_code"));
  if (auto url = part.field("redirect_url"); !url.isAbsent()) record->setCallbackUrl(url);
  return record;
}

ZLVCharge ZLVChargeOfText(const char* text) {
  constexpr std::string_view call = "zlv_charge";
  const Part document(ZLVObjectOfText(ZLVRequired(text, call, "details"), call, "details"), call);
  ZLVCharge charge;
  charge.paymentType = document.text("payment_type");
  if (const auto part = document.part("zolva")) charge.zolva = zolvaDetails(*part);
  if (const auto part = document.part("transaction_details")) {
    charge.transaction = transactionDetails(*part);
  }
  if (const auto part = document.part("customer_details")) {
    charge.customer = customerDetails(*part);
  }
  if (const auto parts = document.parts("item_details")) {
    auto& items = charge.items.emplace();
    for (const auto& part : *parts) items.push_back(itemDetails(part));
  }
  return charge;
}

std::string ZLVTextOfRecord(const ZLVMappable& record) {
  return ZLVValue(record.dictionaryValue()).description();
}

std::string ZLVTextOfError(const ZLVError& error) {
  ZLVDictionary document{
      {"domain", error.domain()},
      {"code", error.code()},
      {"description", error.localizedDescription()},
      {"request_may_have_taken_effect", error.requestMayHaveTakenEffect()},
      {"user_info", error.userInfo()},
  };
  if (auto reason = error.localizedFailureReason(); !reason.empty()) {
    document.set("failure_reason", std::move(reason));
  }
  return ZLVValue(std::move(document)).description();
}
