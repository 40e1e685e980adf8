#pragma once

#include <memory>

#include <ZolvaCheckoutKit/ZLVExport.h>
#include <ZolvaCheckoutKit/ZLVMappable.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

// The merchant server's answers to the account operations. The meaning of the status and channel
// codes is the server's.

#define ZLV_ACCOUNT_HEADER_FIELDS(FIELD)                                                \
  FIELD(ZLVValue, statusCode, setStatusCode, "status_code")                             \
  FIELD(ZLVValue, paymentType, setPaymentType, "payment_type")                          \
  FIELD(ZLVValue, accountID, setAccountID, "account_id")                                \
  FIELD(ZLVValue, accountStatus, setAccountStatus, "account_status")                    \
  FIELD(ZLVValue, channelResponseCode, setChannelResponseCode, "channel_response_code") \
  FIELD(ZLVValue, channelResponseMessage, setChannelResponseMessage, "channel_response_message")

#define ZLV_ACTION_FIELDS(FIELD)               \
  FIELD(ZLVValue, name, setName, "name")       \
  FIELD(ZLVValue, method, setMethod, "method") \
  FIELD(ZLVValue, url, setUrl, "url")

/// What linking an account came to.
class ZLV_EXPORT ZLVLinkAccountResult : public ZLVMappable {
  ZLV_DECLARE_RECORD(ZLVLinkAccountResult, ZLV_ACCOUNT_HEADER_FIELDS)
};

/// What unlinking an account came to.
class ZLV_EXPORT ZLVDisableAccountResult : public ZLVMappable {
  ZLV_DECLARE_RECORD(ZLVDisableAccountResult, ZLV_ACCOUNT_HEADER_FIELDS)
};

/// A step that the server asks the user to take.
class ZLV_EXPORT ZLVLinkAccountActions : public ZLVMappable {
  ZLV_DECLARE_RECORD(ZLVLinkAccountActions, ZLV_ACTION_FIELDS)
};

#define ZLV_LINK_ACCOUNT_RESPONSE_FIELDS(FIELD) \
  FIELD(ZLVRecords<ZLVLinkAccountActions>, actions, setActions, "actions")

/// The whole answer to linking an account.
class ZLV_EXPORT ZLVLinkAccountResponse : public ZLVLinkAccountResult {
  ZLV_DECLARE_RECORD(ZLVLinkAccountResponse, ZLV_LINK_ACCOUNT_RESPONSE_FIELDS)

 public:
  /// A response that holds only these actions.
  static std::shared_ptr<ZLVLinkAccountResponse> initWithItems(
      ZLVRecords<ZLVLinkAccountActions> items);
};

#define ZLV_BALANCE_FIELDS(FIELD)           \
  FIELD(ZLVValue, value, setValue, "value") \
  FIELD(ZLVValue, currency, setCurrency, "currency")

/// How much a payment option holds.
class ZLV_EXPORT ZLVPaymentOptionsBalance : public ZLVMappable {
  ZLV_DECLARE_RECORD(ZLVPaymentOptionsBalance, ZLV_BALANCE_FIELDS)
};

/// Names the kind of `ZLVPaymentOptions::metadata`, which keeps the server's value as it came.
class ZLV_EXPORT ZLVPaymentOptionsMetadata {};

#define ZLV_PAYMENT_OPTIONS_FIELDS(FIELD)                                    \
  FIELD(ZLVValue, name, setName, "name")                                     \
  FIELD(bool, active, setActive, "active")                                   \
  FIELD(ZLVRecord<ZLVPaymentOptionsBalance>, balance, setBalance, "balance") \
  FIELD(ZLVValue, metadata, setMetadata, "metadata")                         \
  FIELD(ZLVValue, token, setToken, "token")

/// One way of paying from an account. `active` is true when the server said anything but null
/// about it, false included.
class ZLV_EXPORT ZLVPaymentOptions : public ZLVMappable {
  ZLV_DECLARE_RECORD(ZLVPaymentOptions, ZLV_PAYMENT_OPTIONS_FIELDS)
};

#define ZLV_ACCOUNT_METADATA_FIELDS(FIELD) \
  FIELD(ZLVRecords<ZLVPaymentOptions>, paymentOptions, setPaymentOptions, "payment_options")

/// What an account can pay with.
class ZLV_EXPORT ZLVAccountMetadata : public ZLVMappable {
  ZLV_DECLARE_RECORD(ZLVAccountMetadata, ZLV_ACCOUNT_METADATA_FIELDS)
};

#define ZLV_ACCOUNT_INFO_FIELDS(FIELD) \
  ZLV_ACCOUNT_HEADER_FIELDS(FIELD)     \
  FIELD(ZLVRecord<ZLVAccountMetadata>, metadata, setMetadata, "metadata")

/// A linked account with its payment options. After an enquiry `metadata` is always present.
class ZLV_EXPORT ZLVAccountInfo : public ZLVMappable {
  ZLV_DECLARE_RECORD(ZLVAccountInfo, ZLV_ACCOUNT_INFO_FIELDS)
};
