#include <ZolvaCheckoutKit/Core/Models/ZLVRecordMapping.h>
#include <ZolvaCheckoutKit/ZLVTransactionRecords.h>

template <>
struct ZLVFieldsOf<ZLVTransactionResult> {
  using Record = ZLVTransactionResult;
  static constexpr ZLVField fields[] = {
      {"status_code", &Record::statusCode_},
      {"status_message", &Record::statusMessage_},
      {"transaction_id", &Record::transactionId_},
      {"order_id", &Record::orderId_},
      {"gross_amount", &Record::grossAmount_},
      {"currency", &Record::currency_},
      {"payment_type", &Record::paymentType_},
      {"transaction_time", &Record::transactionTime_},
      {"transaction_status", &Record::transactionStatus_},
      {"fraud_status", &Record::fraudStatus_},
      {"channel_response_code", &Record::channelResponseCode_},
      {"channel_response_message", &Record::channelResponseMessage_}};
  static constexpr ZLVRecordTable table{"ZLVTransactionResult", fields};
};
ZLV_MAP_BY_TABLE(ZLVTransactionResult)

template <>
struct ZLVFieldsOf<ZLVCreateTransactionActions> {
  using Record = ZLVCreateTransactionActions;
  static constexpr ZLVField fields[] = {
      {"name", &Record::name_}, {"method", &Record::method_}, {"url", &Record::url_}};
  static constexpr ZLVRecordTable table{"ZLVCreateTransactionActions", fields};
};
ZLV_MAP_BY_TABLE(ZLVCreateTransactionActions)

template <>
struct ZLVFieldsOf<ZLVTransactionResponse> {
  using Record = ZLVTransactionResponse;
  static constexpr ZLVField fields[] = {{"actions", ZLVNesting<&Record::actions_>::rule}};
  static constexpr ZLVRecordTable table{"ZLVTransactionResponse", fields,
                                        &ZLVFieldsOf<ZLVTransactionResult>::table};
};
ZLV_MAP_BY_TABLE(ZLVTransactionResponse)

#undef ZLV_MAP_BY_TABLE
