#pragma once

#include <memory>
#include <utility>

#include <ZolvaCheckoutKit/ZLVExport.h>
#include <ZolvaCheckoutKit/ZLVMappable.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

// The merchant server's answer to a charge.

/// What a charge came to. A completion receives it as a `ZLVTransactionResponse`.
class ZLV_EXPORT ZLVTransactionResult : public ZLVMappable {
 public:
  /// Reads a record; an absent dictionary reads as an empty one.
  static std::shared_ptr<ZLVTransactionResult> initWithDictionary(const ZLVValue& dictionary);
  [[nodiscard]] ZLVDictionary dictionaryValue() const override;

  /// What came of the request, 201 where the user still has to act: number or decimal text, as the
  /// server sent it; `integerValue()` reads both.
  [[nodiscard]] const ZLVValue& statusCode() const& { return statusCode_; }
  [[nodiscard]] ZLVValue statusCode() const&& { return statusCode_; }
  void setStatusCode(ZLVValue value) { statusCode_ = std::move(value); }

  /// The same in words: text, for the log rather than for the user.
  [[nodiscard]] const ZLVValue& statusMessage() const& { return statusMessage_; }
  [[nodiscard]] ZLVValue statusMessage() const&& { return statusMessage_; }
  void setStatusMessage(ZLVValue value) { statusMessage_ = std::move(value); }

  /// The server's id of the charge: text.
  [[nodiscard]] const ZLVValue& transactionId() const& { return transactionId_; }
  [[nodiscard]] ZLVValue transactionId() const&& { return transactionId_; }
  void setTransactionId(ZLVValue value) { transactionId_ = std::move(value); }

  /// The merchant's number of the order, as `ZLVTransactionDetails::orderID` gave it: text.
  [[nodiscard]] const ZLVValue& orderId() const& { return orderId_; }
  [[nodiscard]] ZLVValue orderId() const&& { return orderId_; }
  void setOrderId(ZLVValue value) { orderId_ = std::move(value); }

  /// The amount in the currency's main unit: usually decimal text such as "25.00", or a number, as
  /// the server sent it.
  [[nodiscard]] const ZLVValue& grossAmount() const& { return grossAmount_; }
  [[nodiscard]] ZLVValue grossAmount() const&& { return grossAmount_; }
  void setGrossAmount(ZLVValue value) { grossAmount_ = std::move(value); }

  /// Its currency: ISO 4217 code such as "EUR", text.
  [[nodiscard]] const ZLVValue& currency() const& { return currency_; }
  [[nodiscard]] ZLVValue currency() const&& { return currency_; }
  void setCurrency(ZLVValue value) { currency_ = std::move(value); }

  /// Which kind of payment it is, such as "zolva": text.
  [[nodiscard]] const ZLVValue& paymentType() const& { return paymentType_; }
  [[nodiscard]] ZLVValue paymentType() const&& { return paymentType_; }
  void setPaymentType(ZLVValue value) { paymentType_ = std::move(value); }

  /// When the charge was made: text, in the form and time zone of the server.
  [[nodiscard]] const ZLVValue& transactionTime() const& { return transactionTime_; }
  [[nodiscard]] ZLVValue transactionTime() const&& { return transactionTime_; }
  void setTransactionTime(ZLVValue value) { transactionTime_ = std::move(value); }

  /// Where the charge stands, such as "settlement", "pending", "cancel" or "deny": text. The server
  /// may have other words.
  [[nodiscard]] const ZLVValue& transactionStatus() const& { return transactionStatus_; }
  [[nodiscard]] ZLVValue transactionStatus() const&& { return transactionStatus_; }
  void setTransactionStatus(ZLVValue value) { transactionStatus_ = std::move(value); }

  /// What the server's check for fraud found, such as "accept": text.
  [[nodiscard]] const ZLVValue& fraudStatus() const& { return fraudStatus_; }
  [[nodiscard]] ZLVValue fraudStatus() const&& { return fraudStatus_; }
  void setFraudStatus(ZLVValue value) { fraudStatus_ = std::move(value); }

  /// What the wallet itself answered the server, such as "0": text.
  [[nodiscard]] const ZLVValue& channelResponseCode() const& { return channelResponseCode_; }
  [[nodiscard]] ZLVValue channelResponseCode() const&& { return channelResponseCode_; }
  void setChannelResponseCode(ZLVValue value) { channelResponseCode_ = std::move(value); }

  /// The wallet's answer in words: text, for the log rather than for the user.
  [[nodiscard]] const ZLVValue& channelResponseMessage() const& { return channelResponseMessage_; }
  [[nodiscard]] ZLVValue channelResponseMessage() const&& { return channelResponseMessage_; }
  void setChannelResponseMessage(ZLVValue value) { channelResponseMessage_ = std::move(value); }

 private:
  template <class>
  friend struct ZLVFieldsOf;

  ZLVValue statusCode_;
  ZLVValue statusMessage_;
  ZLVValue transactionId_;
  ZLVValue orderId_;
  ZLVValue grossAmount_;
  ZLVValue currency_;
  ZLVValue paymentType_;
  ZLVValue transactionTime_;
  ZLVValue transactionStatus_;
  ZLVValue fraudStatus_;
  ZLVValue channelResponseCode_;
  ZLVValue channelResponseMessage_;
};

/// A step that the server asks the user to take before the charge is settled.
class ZLV_EXPORT ZLVCreateTransactionActions : public ZLVMappable {
 public:
  /// Reads a record; an absent dictionary reads as an empty one.
  static std::shared_ptr<ZLVCreateTransactionActions> initWithDictionary(
      const ZLVValue& dictionary);
  [[nodiscard]] ZLVDictionary dictionaryValue() const override;

  /// Which step it is: text. The library takes the last one named "user-verification".
  [[nodiscard]] const ZLVValue& name() const& { return name_; }
  [[nodiscard]] ZLVValue name() const&& { return name_; }
  void setName(ZLVValue value) { name_ = std::move(value); }

  /// HTTP method for the URL, such as "GET": text. The library opens the URL as a page whatever
  /// stands here.
  [[nodiscard]] const ZLVValue& method() const& { return method_; }
  [[nodiscard]] ZLVValue method() const&& { return method_; }
  void setMethod(ZLVValue value) { method_ = std::move(value); }

  /// Where the step is taken: text, an absolute URL.
  [[nodiscard]] const ZLVValue& url() const& { return url_; }
  [[nodiscard]] ZLVValue url() const&& { return url_; }
  void setUrl(ZLVValue value) { url_ = std::move(value); }

 private:
  template <class>
  friend struct ZLVFieldsOf;

  ZLVValue name_;
  ZLVValue method_;
  ZLVValue url_;
};

/// The whole answer to a charge.
class ZLV_EXPORT ZLVTransactionResponse : public ZLVTransactionResult {
 public:
  /// Reads a record; an absent dictionary reads as an empty one.
  static std::shared_ptr<ZLVTransactionResponse> initWithDictionary(const ZLVValue& dictionary);
  [[nodiscard]] ZLVDictionary dictionaryValue() const override;

  /// The steps to take, in the server's order; nothing when the answer names no list of them.
  [[nodiscard]] const ZLVRecords<ZLVCreateTransactionActions>& actions() const& { return actions_; }
  [[nodiscard]] ZLVRecords<ZLVCreateTransactionActions> actions() const&& { return actions_; }
  void setActions(ZLVRecords<ZLVCreateTransactionActions> value) { actions_ = std::move(value); }

 private:
  template <class>
  friend struct ZLVFieldsOf;

  ZLVRecords<ZLVCreateTransactionActions> actions_;
};
