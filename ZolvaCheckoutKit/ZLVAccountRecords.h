#pragma once

#include <memory>
#include <utility>

#include <ZolvaCheckoutKit/ZLVExport.h>
#include <ZolvaCheckoutKit/ZLVMappable.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

// The merchant server's answers to linking and unlinking an account.

/// What linking an account came to. A completion receives it as a `ZLVLinkAccountResponse`.
class ZLV_EXPORT ZLVLinkAccountResult : public ZLVMappable {
 public:
  /// Reads a record; an absent dictionary reads as an empty one.
  static std::shared_ptr<ZLVLinkAccountResult> initWithDictionary(const ZLVValue& dictionary);
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

 private:
  template <class>
  friend struct ZLVFieldsOf;

  ZLVValue statusCode_;
  ZLVValue paymentType_;
  ZLVValue accountID_;
  ZLVValue accountStatus_;
  ZLVValue channelResponseCode_;
  ZLVValue channelResponseMessage_;
};

/// What unlinking an account came to.
class ZLV_EXPORT ZLVDisableAccountResult : public ZLVMappable {
 public:
  /// Reads a record; an absent dictionary reads as an empty one.
  static std::shared_ptr<ZLVDisableAccountResult> initWithDictionary(const ZLVValue& dictionary);
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

 private:
  template <class>
  friend struct ZLVFieldsOf;

  ZLVValue statusCode_;
  ZLVValue paymentType_;
  ZLVValue accountID_;
  ZLVValue accountStatus_;
  ZLVValue channelResponseCode_;
  ZLVValue channelResponseMessage_;
};

/// A step that the server asks the user to take before the link is active.
class ZLV_EXPORT ZLVLinkAccountActions : public ZLVMappable {
 public:
  /// Reads a record; an absent dictionary reads as an empty one.
  static std::shared_ptr<ZLVLinkAccountActions> initWithDictionary(const ZLVValue& dictionary);
  [[nodiscard]] ZLVDictionary dictionaryValue() const override;

  /// Which step it is: text. The library takes the last one named "activation-deeplink".
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

/// The whole answer to linking an account.
class ZLV_EXPORT ZLVLinkAccountResponse : public ZLVLinkAccountResult {
 public:
  /// Reads a record; an absent dictionary reads as an empty one.
  static std::shared_ptr<ZLVLinkAccountResponse> initWithDictionary(const ZLVValue& dictionary);
  /// A response that holds only these actions.
  static std::shared_ptr<ZLVLinkAccountResponse> initWithItems(
      ZLVRecords<ZLVLinkAccountActions> items);
  [[nodiscard]] ZLVDictionary dictionaryValue() const override;

  /// The steps to take, in the server's order; nothing when the answer names no list of them.
  [[nodiscard]] const ZLVRecords<ZLVLinkAccountActions>& actions() const& { return actions_; }
  [[nodiscard]] ZLVRecords<ZLVLinkAccountActions> actions() const&& { return actions_; }
  void setActions(ZLVRecords<ZLVLinkAccountActions> value) { actions_ = std::move(value); }

 private:
  template <class>
  friend struct ZLVFieldsOf;

  ZLVRecords<ZLVLinkAccountActions> actions_;
};
