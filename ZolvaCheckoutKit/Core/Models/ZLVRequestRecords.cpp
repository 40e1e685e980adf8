#include <utility>

#include <ZolvaCheckoutKit/Core/Models/ZLVRecordMapping.h>
#include <ZolvaCheckoutKit/ZLVRequestRecords.h>
#include <ZolvaCheckoutKit/ZLVVendor.h>

ZLV_DEFINE_READING(ZLVPartnerDetails, ZLV_PARTNER_DETAILS_FIELDS)
ZLV_DEFINE_RECORD(ZLVZolvaDetails, ZLV_ZOLVA_DETAILS_FIELDS)
ZLV_DEFINE_RECORD(ZLVTransactionDetails, ZLV_TRANSACTION_DETAILS_FIELDS)
ZLV_DEFINE_RECORD(ZLVCustomerDetails, ZLV_CUSTOMER_DETAILS_FIELDS)
ZLV_DEFINE_RECORD(ZLVItemDetails, ZLV_ITEM_FIELDS)

ZLVDictionary ZLVPartnerDetails::dictionaryValue() const {
  ZLVDictionary dictionary;
  ZLV_PARTNER_DETAILS_FIELDS(ZLV_WRITE_FIELD)
  return {{"zolva_partner", std::move(dictionary)}};
}

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
