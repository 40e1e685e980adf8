#include <utility>

#include <ZolvaCheckoutKit/Core/Models/ZLVRecordMapping.h>
#include <ZolvaCheckoutKit/ZLVRequestRecords.h>
#include <ZolvaCheckoutKit/ZLVVendor.h>

template <>
struct ZLVFieldsOf<ZLVPartnerDetails> {
  using Record = ZLVPartnerDetails;
  static constexpr ZLVField fields[] = {{"phone_number", &Record::phoneNumber_},
                                        {"country_code", &Record::countryCode_},
                                        {"redirect_url", &Record::callbackUrl_}};
  static constexpr ZLVRecordTable table{"ZLVPartnerDetails", fields};
};

std::shared_ptr<ZLVPartnerDetails> ZLVPartnerDetails::initWithDictionary(
    const ZLVValue& dictionary) {
  return ZLVRecordWithDictionary<ZLVPartnerDetails>(dictionary);
}

ZLVDictionary ZLVPartnerDetails::dictionaryValue() const {
  return {{"zolva_partner", ZLVWrittenRecord(*this, ZLVFieldsOf<ZLVPartnerDetails>::table)}};
}

template <>
struct ZLVFieldsOf<ZLVZolvaDetails> {
  using Record = ZLVZolvaDetails;
  static constexpr ZLVField fields[] = {{"account_id", &Record::accountID_},
                                        {"payment_option_token", &Record::paymentOptionToken_},
                                        {"callback_url", &Record::callbackUrl_},
                                        {"enable_callback", &Record::callbackEnabled_}};
  static constexpr ZLVRecordTable table{"ZLVZolvaDetails", fields};
};
ZLV_MAP_BY_TABLE(ZLVZolvaDetails)

template <>
struct ZLVFieldsOf<ZLVTransactionDetails> {
  using Record = ZLVTransactionDetails;
  static constexpr ZLVField fields[] = {{"gross_amount", &Record::grossAmount_},
                                        {"order_id", &Record::orderID_},
                                        {"currency", &Record::currency_}};
  static constexpr ZLVRecordTable table{"ZLVTransactionDetails", fields};
};
ZLV_MAP_BY_TABLE(ZLVTransactionDetails)

template <>
struct ZLVFieldsOf<ZLVCustomerDetails> {
  using Record = ZLVCustomerDetails;
  static constexpr ZLVField fields[] = {{"phone", &Record::phoneNumber_},
                                        {"first_name", &Record::firstName_, "phone"},
                                        {"last_name", &Record::lastName_, "phone"},
                                        {"email", &Record::email_, "phone"}};
  static constexpr ZLVRecordTable table{"ZLVCustomerDetails", fields};
};
ZLV_MAP_BY_TABLE(ZLVCustomerDetails)

template <>
struct ZLVFieldsOf<ZLVItemDetails> {
  using Record = ZLVItemDetails;
  static constexpr ZLVField fields[] = {{"id", &Record::itemID_},
                                        {"name", &Record::name_},
                                        {"price", &Record::price_},
                                        {"quantity", &Record::quantity_},
                                        {"category", &Record::category_}};
  static constexpr ZLVRecordTable table{"ZLVItemDetails", fields};
};
ZLV_MAP_BY_TABLE(ZLVItemDetails)

#undef ZLV_MAP_BY_TABLE

std::shared_ptr<ZLVPartnerDetails> ZLVPartnerDetails::initWithPhoneNumber(ZLVValue phoneNumber,
                                                                          ZLVValue countryCode) {
  auto record = std::make_shared<ZLVPartnerDetails>();
  record->setPhoneNumber(std::move(phoneNumber));
  record->setCountryCode(std::move(countryCode));
  record->setCallbackUrl(ZLVVendor::shared().callbackUrl());
  return record;
}

std::shared_ptr<ZLVZolvaDetails> ZLVZolvaDetails::initWithAccountID(ZLVValue accountID,
                                                                    ZLVValue paymentOptionToken) {
  auto record = std::make_shared<ZLVZolvaDetails>();
  record->setAccountID(std::move(accountID));
  record->setPaymentOptionToken(std::move(paymentOptionToken));
  record->setCallbackUrl(ZLVVendor::shared().callbackUrl());
  record->setCallbackEnabled(true);
  return record;
}

std::shared_ptr<ZLVTransactionDetails> ZLVTransactionDetails::initWithGrossAmount(
    ZLVValue grossAmount, ZLVValue orderID, ZLVValue currency) {
  auto record = std::make_shared<ZLVTransactionDetails>();
  record->setGrossAmount(std::move(grossAmount));
  record->setOrderID(std::move(orderID));
  record->setCurrency(std::move(currency));
  return record;
}

std::shared_ptr<ZLVCustomerDetails> ZLVCustomerDetails::initWithPhoneNumber(ZLVValue phoneNumber,
                                                                            ZLVValue firstName,
                                                                            ZLVValue lastName,
                                                                            ZLVValue email) {
  auto record = std::make_shared<ZLVCustomerDetails>();
  record->setPhoneNumber(std::move(phoneNumber));
  record->setFirstName(std::move(firstName));
  record->setLastName(std::move(lastName));
  record->setEmail(std::move(email));
  return record;
}

namespace {

template <class Item>
std::shared_ptr<Item> makeItem(ZLVValue itemID, ZLVValue name, ZLVValue price, ZLVValue quantity,
                               ZLVValue category) {
  auto item = std::make_shared<Item>();
  item->setItemID(std::move(itemID));
  item->setName(std::move(name));
  item->setPrice(std::move(price));
  item->setQuantity(std::move(quantity));
  item->setCategory(std::move(category));
  return item;
}

}  // namespace

std::shared_ptr<ZLVItemDetails> ZLVItemDetails::initWithIthItemID(ZLVValue itemID, ZLVValue name,
                                                                  ZLVValue price, ZLVValue quantity,
                                                                  ZLVValue category) {
  return makeItem<ZLVItemDetails>(std::move(itemID), std::move(name), std::move(price),
                                  std::move(quantity), std::move(category));
}

std::shared_ptr<ZLVItem> ZLVItem::initWithIthItemID(ZLVValue itemID, ZLVValue name, ZLVValue price,
                                                    ZLVValue quantity, ZLVValue category) {
  return makeItem<ZLVItem>(std::move(itemID), std::move(name), std::move(price),
                           std::move(quantity), std::move(category));
}
