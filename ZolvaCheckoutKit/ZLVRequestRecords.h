#pragma once

#include <memory>
#include <utility>

#include <ZolvaCheckoutKit/ZLVExport.h>
#include <ZolvaCheckoutKit/ZLVMappable.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

// The records that a host fills to describe a request. An initialiser stores its arguments as
// given: nothing is validated, escaped or converted, and an absent argument is left out of the
// request. The kinds and forms told here are those that a merchant server expects.

/// The wallet user to link. Written under the single key "zolva_partner", read without it.
class ZLV_EXPORT ZLVPartnerDetails : public ZLVMappable {
 public:
  /// Reads a record; an absent dictionary reads as an empty one.
  static std::shared_ptr<ZLVPartnerDetails> initWithDictionary(const ZLVValue& dictionary);
  /// The callback URL is the one configured at this moment; a later configuration does not reach
  /// the record.
  static std::shared_ptr<ZLVPartnerDetails> initWithPhoneNumber(ZLVValue phoneNumber,
                                                                ZLVValue countryCode);
  [[nodiscard]] ZLVDictionary dictionaryValue() const override;

  /// Phone number that the wallet is registered with, without the country code: digits, text.
  [[nodiscard]] const ZLVValue& phoneNumber() const& { return phoneNumber_; }
  [[nodiscard]] ZLVValue phoneNumber() const&& { return phoneNumber_; }
  void setPhoneNumber(ZLVValue value) { phoneNumber_ = std::move(value); }

  /// Country code of the phone number, such as "1" or "44": digits without a plus sign, text.
  [[nodiscard]] const ZLVValue& countryCode() const& { return countryCode_; }
  [[nodiscard]] ZLVValue countryCode() const&& { return countryCode_; }
  void setCountryCode(ZLVValue value) { countryCode_ = std::move(value); }

  /// Where the wallet returns the user to: text, an absolute URL.
  [[nodiscard]] const ZLVValue& callbackUrl() const& { return callbackUrl_; }
  [[nodiscard]] ZLVValue callbackUrl() const&& { return callbackUrl_; }
  void setCallbackUrl(ZLVValue value) { callbackUrl_ = std::move(value); }

 private:
  template <class>
  friend struct ZLVFieldsOf;

  ZLVValue phoneNumber_;
  ZLVValue countryCode_;
  ZLVValue callbackUrl_;
};

/// The linked wallet account to charge.
class ZLV_EXPORT ZLVZolvaDetails : public ZLVMappable {
 public:
  /// Reads a record; an absent dictionary reads as an empty one.
  static std::shared_ptr<ZLVZolvaDetails> initWithDictionary(const ZLVValue& dictionary);
  /// The callback URL is the one configured at this moment; the callback is enabled.
  static std::shared_ptr<ZLVZolvaDetails> initWithAccountID(ZLVValue accountID,
                                                            ZLVValue paymentOptionToken);
  [[nodiscard]] ZLVDictionary dictionaryValue() const override;

  /// The server's id of the account, see `ZLVLinkAccountResult::accountID`: text.
  [[nodiscard]] const ZLVValue& accountID() const& { return accountID_; }
  [[nodiscard]] ZLVValue accountID() const&& { return accountID_; }
  void setAccountID(ZLVValue value) { accountID_ = std::move(value); }

  /// What is paid with, see `ZLVPaymentOptions::token`: text.
  [[nodiscard]] const ZLVValue& paymentOptionToken() const& { return paymentOptionToken_; }
  [[nodiscard]] ZLVValue paymentOptionToken() const&& { return paymentOptionToken_; }
  void setPaymentOptionToken(ZLVValue value) { paymentOptionToken_ = std::move(value); }

  /// Where the wallet returns the user to: text, an absolute URL.
  [[nodiscard]] const ZLVValue& callbackUrl() const& { return callbackUrl_; }
  [[nodiscard]] ZLVValue callbackUrl() const&& { return callbackUrl_; }
  void setCallbackUrl(ZLVValue value) { callbackUrl_ = std::move(value); }

  /// Whether the wallet returns the user. Always written; reading sets it where the key holds
  /// anything but null, so a JSON false reads as true.
  [[nodiscard]] bool callbackEnabled() const { return callbackEnabled_.isSet; }
  void setCallbackEnabled(bool value) { callbackEnabled_.isSet = value; }

 private:
  template <class>
  friend struct ZLVFieldsOf;

  ZLVValue accountID_;
  ZLVValue paymentOptionToken_;
  ZLVValue callbackUrl_;
  ZLVFlag callbackEnabled_;
};

/// What is charged.
class ZLV_EXPORT ZLVTransactionDetails : public ZLVMappable {
 public:
  /// Reads a record; an absent dictionary reads as an empty one.
  static std::shared_ptr<ZLVTransactionDetails> initWithDictionary(const ZLVValue& dictionary);
  /// Stores its arguments as given.
  static std::shared_ptr<ZLVTransactionDetails> initWithGrossAmount(ZLVValue grossAmount,
                                                                    ZLVValue orderID,
                                                                    ZLVValue currency);
  [[nodiscard]] ZLVDictionary dictionaryValue() const override;

  /// The whole amount in the currency's main unit: number, such as 25.5. The charge's answer may
  /// have it as a text.
  [[nodiscard]] const ZLVValue& grossAmount() const& { return grossAmount_; }
  [[nodiscard]] ZLVValue grossAmount() const&& { return grossAmount_; }
  void setGrossAmount(ZLVValue value) { grossAmount_ = std::move(value); }

  /// The merchant's own number of the order, by which it can be asked for later: text.
  [[nodiscard]] const ZLVValue& orderID() const& { return orderID_; }
  [[nodiscard]] ZLVValue orderID() const&& { return orderID_; }
  void setOrderID(ZLVValue value) { orderID_ = std::move(value); }

  /// ISO 4217 code such as "EUR": text.
  [[nodiscard]] const ZLVValue& currency() const& { return currency_; }
  [[nodiscard]] ZLVValue currency() const&& { return currency_; }
  void setCurrency(ZLVValue value) { currency_ = std::move(value); }

 private:
  template <class>
  friend struct ZLVFieldsOf;

  ZLVValue grossAmount_;
  ZLVValue orderID_;
  ZLVValue currency_;
};

/// Who pays. Reading fills all four fields from "phone".
class ZLV_EXPORT ZLVCustomerDetails : public ZLVMappable {
 public:
  /// Reads a record; an absent dictionary reads as an empty one.
  static std::shared_ptr<ZLVCustomerDetails> initWithDictionary(const ZLVValue& dictionary);
  /// Stores its arguments as given.
  static std::shared_ptr<ZLVCustomerDetails> initWithPhoneNumber(ZLVValue phoneNumber,
                                                                 ZLVValue firstName,
                                                                 ZLVValue lastName, ZLVValue email);
  [[nodiscard]] ZLVDictionary dictionaryValue() const override;

  /// Phone number: text, in the form that the merchant's server takes.
  [[nodiscard]] const ZLVValue& phoneNumber() const& { return phoneNumber_; }
  [[nodiscard]] ZLVValue phoneNumber() const&& { return phoneNumber_; }
  void setPhoneNumber(ZLVValue value) { phoneNumber_ = std::move(value); }

  /// Given name: text.
  [[nodiscard]] const ZLVValue& firstName() const& { return firstName_; }
  [[nodiscard]] ZLVValue firstName() const&& { return firstName_; }
  void setFirstName(ZLVValue value) { firstName_ = std::move(value); }

  /// Family name: text.
  [[nodiscard]] const ZLVValue& lastName() const& { return lastName_; }
  [[nodiscard]] ZLVValue lastName() const&& { return lastName_; }
  void setLastName(ZLVValue value) { lastName_ = std::move(value); }

  /// E-mail address: text.
  [[nodiscard]] const ZLVValue& email() const& { return email_; }
  [[nodiscard]] ZLVValue email() const&& { return email_; }
  void setEmail(ZLVValue value) { email_ = std::move(value); }

 private:
  template <class>
  friend struct ZLVFieldsOf;

  ZLVValue phoneNumber_;
  ZLVValue firstName_;
  ZLVValue lastName_;
  ZLVValue email_;
};

/// One purchased item of a charge.
class ZLV_EXPORT ZLVItemDetails : public ZLVMappable {
 public:
  /// Reads a record; an absent dictionary reads as an empty one.
  static std::shared_ptr<ZLVItemDetails> initWithDictionary(const ZLVValue& dictionary);
  /// Stores its arguments as given. The spelling of the name is the established one.
  static std::shared_ptr<ZLVItemDetails> initWithIthItemID(ZLVValue itemID, ZLVValue name,
                                                           ZLVValue price, ZLVValue quantity,
                                                           ZLVValue category);
  [[nodiscard]] ZLVDictionary dictionaryValue() const override;

  /// The merchant's number of the item: text.
  [[nodiscard]] const ZLVValue& itemID() const& { return itemID_; }
  [[nodiscard]] ZLVValue itemID() const&& { return itemID_; }
  void setItemID(ZLVValue value) { itemID_ = std::move(value); }

  /// What it is called: text, as the user may see it.
  [[nodiscard]] const ZLVValue& name() const& { return name_; }
  [[nodiscard]] ZLVValue name() const&& { return name_; }
  void setName(ZLVValue value) { name_ = std::move(value); }

  /// Price of one, in the main unit of the order's currency: number.
  [[nodiscard]] const ZLVValue& price() const& { return price_; }
  [[nodiscard]] ZLVValue price() const&& { return price_; }
  void setPrice(ZLVValue value) { price_ = std::move(value); }

  /// How many of it: number.
  [[nodiscard]] const ZLVValue& quantity() const& { return quantity_; }
  [[nodiscard]] ZLVValue quantity() const&& { return quantity_; }
  void setQuantity(ZLVValue value) { quantity_ = std::move(value); }

  /// What kind of thing it is, in the merchant's own words: text.
  [[nodiscard]] const ZLVValue& category() const& { return category_; }
  [[nodiscard]] ZLVValue category() const&& { return category_; }
  void setCategory(ZLVValue value) { category_ = std::move(value); }

 private:
  template <class>
  friend struct ZLVFieldsOf;

  ZLVValue itemID_;
  ZLVValue name_;
  ZLVValue price_;
  ZLVValue quantity_;
  ZLVValue category_;
};

/// An item as a plain value for the host's own use. A charge takes `ZLVItemDetails`.
class ZLV_EXPORT ZLVItem {
 public:
  /// Stores its arguments as given.
  static std::shared_ptr<ZLVItem> initWithIthItemID(ZLVValue itemID, ZLVValue name, ZLVValue price,
                                                    ZLVValue quantity, ZLVValue category);

  /// The merchant's number of the item: text.
  [[nodiscard]] const ZLVValue& itemID() const& { return itemID_; }
  [[nodiscard]] ZLVValue itemID() const&& { return itemID_; }
  void setItemID(ZLVValue value) { itemID_ = std::move(value); }

  /// What it is called: text, as the user may see it.
  [[nodiscard]] const ZLVValue& name() const& { return name_; }
  [[nodiscard]] ZLVValue name() const&& { return name_; }
  void setName(ZLVValue value) { name_ = std::move(value); }

  /// Price of one, in the main unit of the order's currency: number.
  [[nodiscard]] const ZLVValue& price() const& { return price_; }
  [[nodiscard]] ZLVValue price() const&& { return price_; }
  void setPrice(ZLVValue value) { price_ = std::move(value); }

  /// How many of it: number.
  [[nodiscard]] const ZLVValue& quantity() const& { return quantity_; }
  [[nodiscard]] ZLVValue quantity() const&& { return quantity_; }
  void setQuantity(ZLVValue value) { quantity_ = std::move(value); }

  /// What kind of thing it is, in the merchant's own words: text.
  [[nodiscard]] const ZLVValue& category() const& { return category_; }
  [[nodiscard]] ZLVValue category() const&& { return category_; }
  void setCategory(ZLVValue value) { category_ = std::move(value); }

 private:
  ZLVValue itemID_;
  ZLVValue name_;
  ZLVValue price_;
  ZLVValue quantity_;
  ZLVValue category_;
};
