#pragma once

#include <memory>
#include <utility>

#include <ZolvaCheckoutKit/ZLVExport.h>
#include <ZolvaCheckoutKit/ZLVMappable.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

// The merchant server's answer to the enquiry of an account.

/// How much a payment option holds.
class ZLV_EXPORT ZLVPaymentOptionsBalance : public ZLVMappable {
 public:
  /// Reads a record; an absent dictionary reads as an empty one.
  static std::shared_ptr<ZLVPaymentOptionsBalance> initWithDictionary(const ZLVValue& dictionary);
  [[nodiscard]] ZLVDictionary dictionaryValue() const override;

  /// The amount in the currency's main unit: decimal text such as "150.00", or a number, as the
  /// server sent it.
  [[nodiscard]] const ZLVValue& value() const& { return value_; }
  [[nodiscard]] ZLVValue value() const&& { return value_; }
  void setValue(ZLVValue value) { value_ = std::move(value); }

  /// Its currency: ISO 4217 code such as "EUR", text.
  [[nodiscard]] const ZLVValue& currency() const& { return currency_; }
  [[nodiscard]] ZLVValue currency() const&& { return currency_; }
  void setCurrency(ZLVValue value) { currency_ = std::move(value); }

 private:
  template <class>
  friend struct ZLVFieldsOf;

  ZLVValue value_;
  ZLVValue currency_;
};

/// Names the kind of `ZLVPaymentOptions::metadata`, which keeps the server's value as it came. The
/// library makes none.
class ZLV_EXPORT ZLVPaymentOptionsMetadata {};

/// One way of paying from an account.
class ZLV_EXPORT ZLVPaymentOptions : public ZLVMappable {
 public:
  /// Reads a record; an absent dictionary reads as an empty one.
  static std::shared_ptr<ZLVPaymentOptions> initWithDictionary(const ZLVValue& dictionary);
  [[nodiscard]] ZLVDictionary dictionaryValue() const override;

  /// Which way it is, such as "PAY": text.
  [[nodiscard]] const ZLVValue& name() const& { return name_; }
  [[nodiscard]] ZLVValue name() const&& { return name_; }
  void setName(ZLVValue value) { name_ = std::move(value); }

  /// Whether the server said anything but null under "active": a JSON false reads as true.
  [[nodiscard]] bool active() const { return active_.isSet; }
  void setActive(bool value) { active_.isSet = value; }

  /// How much there is. Always present in a record that was read, also where the server sent none;
  /// null in a new one.
  [[nodiscard]] const ZLVRecord<ZLVPaymentOptionsBalance>& balance() const& { return balance_; }
  [[nodiscard]] ZLVRecord<ZLVPaymentOptionsBalance> balance() const&& { return balance_; }
  void setBalance(ZLVRecord<ZLVPaymentOptionsBalance> value) { balance_ = std::move(value); }

  /// What else the server says about it, usually a dictionary: as the server sent it, never a
  /// `ZLVPaymentOptionsMetadata`.
  [[nodiscard]] const ZLVValue& metadata() const& { return metadata_; }
  [[nodiscard]] ZLVValue metadata() const&& { return metadata_; }
  void setMetadata(ZLVValue value) { metadata_ = std::move(value); }

  /// What a charge names this option by, see `ZLVZolvaDetails::paymentOptionToken`: text. Keep it
  /// as secret as a password.
  [[nodiscard]] const ZLVValue& token() const& { return token_; }
  [[nodiscard]] ZLVValue token() const&& { return token_; }
  void setToken(ZLVValue value) { token_ = std::move(value); }

 private:
  template <class>
  friend struct ZLVFieldsOf;

  ZLVValue name_;
  ZLVFlag active_;
  ZLVRecord<ZLVPaymentOptionsBalance> balance_;
  ZLVValue metadata_;
  ZLVValue token_;
};

/// What an account can pay with.
class ZLV_EXPORT ZLVAccountMetadata : public ZLVMappable {
 public:
  /// Reads a record; an absent dictionary reads as an empty one.
  static std::shared_ptr<ZLVAccountMetadata> initWithDictionary(const ZLVValue& dictionary);
  [[nodiscard]] ZLVDictionary dictionaryValue() const override;

  /// The ways of paying, in the server's order; nothing when the answer names no list of them.
  [[nodiscard]] const ZLVRecords<ZLVPaymentOptions>& paymentOptions() const& {
    return paymentOptions_;
  }
  [[nodiscard]] ZLVRecords<ZLVPaymentOptions> paymentOptions() const&& { return paymentOptions_; }
  void setPaymentOptions(ZLVRecords<ZLVPaymentOptions> value) {
    paymentOptions_ = std::move(value);
  }

 private:
  template <class>
  friend struct ZLVFieldsOf;

  ZLVRecords<ZLVPaymentOptions> paymentOptions_;
};

/// A linked account with its payment options.
class ZLV_EXPORT ZLVAccountInfo : public ZLVMappable {
 public:
  /// Reads a record; an absent dictionary reads as an empty one.
  static std::shared_ptr<ZLVAccountInfo> initWithDictionary(const ZLVValue& dictionary);
  [[nodiscard]] ZLVDictionary dictionaryValue() const override;

  /// What came of the request, 201 where the user still has to act: number or decimal text, as the
  /// server sent it; `integerValue()` reads both.
  [[nodiscard]] const ZLVValue& statusCode() const& { return statusCode_; }
  [[nodiscard]] ZLVValue statusCode() const&& { return statusCode_; }
  void setStatusCode(ZLVValue value) { statusCode_ = std::move(value); }

  /// Which kind of payment the account is for, such as "zolva": text.
  [[nodiscard]] const ZLVValue& paymentType() const& { return paymentType_; }
  [[nodiscard]] ZLVValue paymentType() const&& { return paymentType_; }
  void setPaymentType(ZLVValue value) { paymentType_ = std::move(value); }

  /// The server's id of the account, for later calls: text.
  [[nodiscard]] const ZLVValue& accountID() const& { return accountID_; }
  [[nodiscard]] ZLVValue accountID() const&& { return accountID_; }
  void setAccountID(ZLVValue value) { accountID_ = std::move(value); }

  /// Where the link stands, such as "PENDING", "ENABLED" or "DISABLED": text. The server may have
  /// other words.
  [[nodiscard]] const ZLVValue& accountStatus() const& { return accountStatus_; }
  [[nodiscard]] ZLVValue accountStatus() const&& { return accountStatus_; }
  void setAccountStatus(ZLVValue value) { accountStatus_ = std::move(value); }

  /// What the wallet itself answered the server, such as "0": text.
  [[nodiscard]] const ZLVValue& channelResponseCode() const& { return channelResponseCode_; }
  [[nodiscard]] ZLVValue channelResponseCode() const&& { return channelResponseCode_; }
  void setChannelResponseCode(ZLVValue value) { channelResponseCode_ = std::move(value); }

  /// The wallet's answer in words: text, for the log rather than for the user.
  [[nodiscard]] const ZLVValue& channelResponseMessage() const& { return channelResponseMessage_; }
  [[nodiscard]] ZLVValue channelResponseMessage() const&& { return channelResponseMessage_; }
  void setChannelResponseMessage(ZLVValue value) { channelResponseMessage_ = std::move(value); }

  /// What the account can pay with. Always present in a record that was read, also where the server
  /// sent nothing; null in a new one.
  [[nodiscard]] const ZLVRecord<ZLVAccountMetadata>& metadata() const& { return metadata_; }
  [[nodiscard]] ZLVRecord<ZLVAccountMetadata> metadata() const&& { return metadata_; }
  void setMetadata(ZLVRecord<ZLVAccountMetadata> value) { metadata_ = std::move(value); }

 private:
  template <class>
  friend struct ZLVFieldsOf;

  ZLVValue statusCode_;
  ZLVValue paymentType_;
  ZLVValue accountID_;
  ZLVValue accountStatus_;
  ZLVValue channelResponseCode_;
  ZLVValue channelResponseMessage_;
  ZLVRecord<ZLVAccountMetadata> metadata_;
};
