#pragma once

#include <memory>

#include <ZolvaCheckoutKit/ZLVAccountRecords.h>
#include <ZolvaCheckoutKit/ZLVExport.h>
#include <ZolvaCheckoutKit/ZLVMappable.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

// The merchant server's answer to a charge.

#define ZLV_TRANSACTION_RESULT_FIELDS(FIELD)                                            \
  FIELD(ZLVValue, statusCode, setStatusCode, "status_code")                             \
  FIELD(ZLVValue, statusMessage, setStatusMessage, "status_message")                    \
  FIELD(ZLVValue, transactionId, setTransactionId, "transaction_id")                    \
  FIELD(ZLVValue, orderId, setOrderId, "order_id")                                      \
  FIELD(ZLVValue, grossAmount, setGrossAmount, "gross_amount")                          \
  FIELD(ZLVValue, currency, setCurrency, "currency")                                    \
  FIELD(ZLVValue, paymentType, setPaymentType, "payment_type")                          \
  FIELD(ZLVValue, transactionTime, setTransactionTime, "transaction_time")              \
  FIELD(ZLVValue, transactionStatus, setTransactionStatus, "transaction_status")        \
  FIELD(ZLVValue, fraudStatus, setFraudStatus, "fraud_status")                          \
  FIELD(ZLVValue, channelResponseCode, setChannelResponseCode, "channel_response_code") \
  FIELD(ZLVValue, channelResponseMessage, setChannelResponseMessage, "channel_response_message")

/// What a charge came to. The amount is as the server wrote it, usually a text.
class ZLV_EXPORT ZLVTransactionResult : public ZLVMappable {
  ZLV_DECLARE_RECORD(ZLVTransactionResult, ZLV_TRANSACTION_RESULT_FIELDS)
};

/// A step that the server asks the user to take.
class ZLV_EXPORT ZLVCreateTransactionActions : public ZLVMappable {
  ZLV_DECLARE_RECORD(ZLVCreateTransactionActions, ZLV_ACTION_FIELDS)
};

#define ZLV_TRANSACTION_RESPONSE_FIELDS(FIELD) \
  FIELD(ZLVRecords<ZLVCreateTransactionActions>, actions, setActions, "actions")

/// The whole answer to a charge.
class ZLV_EXPORT ZLVTransactionResponse : public ZLVTransactionResult {
  ZLV_DECLARE_RECORD(ZLVTransactionResponse, ZLV_TRANSACTION_RESPONSE_FIELDS)
};
