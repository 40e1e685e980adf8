#pragma once

#include <memory>

#include <ZolvaCheckoutKit/ZLVExport.h>
#include <ZolvaCheckoutKit/ZLVMappable.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

// The records that a host fills to describe a request. An initialiser stores its arguments as
// given; nothing is validated, and an absent argument is left out of the request.

#define ZLV_PARTNER_DETAILS_FIELDS(FIELD)                      \
  FIELD(ZLVValue, phoneNumber, setPhoneNumber, "phone_number") \
  FIELD(ZLVValue, countryCode, setCountryCode, "country_code") \
  FIELD(ZLVValue, callbackUrl, setCallbackUrl, "redirect_url")

/// The wallet user to link. Written under the single key "zolva_partner", read without it.
class ZLV_EXPORT ZLVPartnerDetails : public ZLVMappable {
  ZLV_DECLARE_RECORD(ZLVPartnerDetails, ZLV_PARTNER_DETAILS_FIELDS)

 public:
  /// The callback URL is the one configured at this moment.
  static std::shared_ptr<ZLVPartnerDetails> initWithPhoneNumber(ZLVValue phoneNumber,
                                                                ZLVValue countryCode);
};

#define ZLV_ZOLVA_DETAILS_FIELDS(FIELD)                                              \
  FIELD(ZLVValue, accountID, setAccountID, "account_id")                             \
  FIELD(ZLVValue, paymentOptionToken, setPaymentOptionToken, "payment_option_token") \
  FIELD(ZLVValue, callbackUrl, setCallbackUrl, "callback_url")                       \
  FIELD(bool, callbackEnabled, setCallbackEnabled, "enable_callback")

/// The linked wallet account to charge.
class ZLV_EXPORT ZLVZolvaDetails : public ZLVMappable {
  ZLV_DECLARE_RECORD(ZLVZolvaDetails, ZLV_ZOLVA_DETAILS_FIELDS)

 public:
  /// The callback URL is the one configured at this moment; the callback is enabled.
  static std::shared_ptr<ZLVZolvaDetails> initWithAccountID(ZLVValue accountID,
                                                            ZLVValue paymentOptionToken);
};

#define ZLV_TRANSACTION_DETAILS_FIELDS(FIELD)                  \
  FIELD(ZLVValue, grossAmount, setGrossAmount, "gross_amount") \
  FIELD(ZLVValue, orderID, setOrderID, "order_id")             \
  FIELD(ZLVValue, currency, setCurrency, "currency")

/// What is charged.
class ZLV_EXPORT ZLVTransactionDetails : public ZLVMappable {
  ZLV_DECLARE_RECORD(ZLVTransactionDetails, ZLV_TRANSACTION_DETAILS_FIELDS)

 public:
  /// `grossAmount` is a number in the currency's main unit.
  static std::shared_ptr<ZLVTransactionDetails> initWithGrossAmount(ZLVValue grossAmount,
                                                                    ZLVValue orderID,
                                                                    ZLVValue currency);
};

#define ZLV_CUSTOMER_DETAILS_FIELDS(FIELD)                        \
  FIELD(ZLVValue, phoneNumber, setPhoneNumber, "phone")           \
  FIELD(ZLVValue, firstName, setFirstName, "first_name", "phone") \
  FIELD(ZLVValue, lastName, setLastName, "last_name", "phone")    \
  FIELD(ZLVValue, email, setEmail, "email", "phone")

/// Who pays. Reading fills all four fields from "phone".
class ZLV_EXPORT ZLVCustomerDetails : public ZLVMappable {
  ZLV_DECLARE_RECORD(ZLVCustomerDetails, ZLV_CUSTOMER_DETAILS_FIELDS)

 public:
  static std::shared_ptr<ZLVCustomerDetails> initWithPhoneNumber(ZLVValue phoneNumber,
                                                                 ZLVValue firstName,
                                                                 ZLVValue lastName, ZLVValue email);
};

#define ZLV_ITEM_FIELDS(FIELD)                       \
  FIELD(ZLVValue, itemID, setItemID, "id")           \
  FIELD(ZLVValue, name, setName, "name")             \
  FIELD(ZLVValue, price, setPrice, "price")          \
  FIELD(ZLVValue, quantity, setQuantity, "quantity") \
  FIELD(ZLVValue, category, setCategory, "category")

/// One purchased item of a charge.
class ZLV_EXPORT ZLVItemDetails : public ZLVMappable {
  ZLV_DECLARE_RECORD(ZLVItemDetails, ZLV_ITEM_FIELDS)

 public:
  /// `price` and `quantity` are numbers. The spelling of the name is the established one.
  static std::shared_ptr<ZLVItemDetails> initWithIthItemID(ZLVValue itemID, ZLVValue name,
                                                           ZLVValue price, ZLVValue quantity,
                                                           ZLVValue category);
};

/// An item as a plain value for the host's own use. A charge takes `ZLVItemDetails`.
class ZLV_EXPORT ZLVItem {
  ZLV_ITEM_FIELDS(ZLV_DECLARE_FIELD)

 public:
  static std::shared_ptr<ZLVItem> initWithIthItemID(ZLVValue itemID, ZLVValue name, ZLVValue price,
                                                    ZLVValue quantity, ZLVValue category);
};
