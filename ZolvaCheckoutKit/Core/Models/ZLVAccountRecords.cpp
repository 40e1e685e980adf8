#include <utility>

#include <ZolvaCheckoutKit/Core/Models/ZLVRecordMapping.h>
#include <ZolvaCheckoutKit/ZLVAccountRecords.h>
#include <ZolvaCheckoutKit/ZLVEnquiryRecords.h>

namespace {

/// Stands for what three records begin with that are no relatives.
template <class Record>
struct AccountHeader;

}  // namespace

template <class Record>
struct ZLVFieldsOf<AccountHeader<Record>> {
  static constexpr ZLVField fields[] = {
      {"status_code", &Record::statusCode_},
      {"payment_type", &Record::paymentType_},
      {"account_id", &Record::accountID_},
      {"account_status", &Record::accountStatus_},
      {"channel_response_code", &Record::channelResponseCode_},
      {"channel_response_message", &Record::channelResponseMessage_}};
  static constexpr ZLVRecordTable table{{}, fields};
};

template <>
struct ZLVFieldsOf<ZLVLinkAccountResult> {
  static constexpr ZLVRecordTable table{"ZLVLinkAccountResult",
                                        ZLVFieldsOf<AccountHeader<ZLVLinkAccountResult>>::fields};
};
ZLV_MAP_BY_TABLE(ZLVLinkAccountResult)

template <>
struct ZLVFieldsOf<ZLVDisableAccountResult> {
  static constexpr ZLVRecordTable table{
      "ZLVDisableAccountResult", ZLVFieldsOf<AccountHeader<ZLVDisableAccountResult>>::fields};
};
ZLV_MAP_BY_TABLE(ZLVDisableAccountResult)

template <>
struct ZLVFieldsOf<ZLVLinkAccountActions> {
  using Record = ZLVLinkAccountActions;
  static constexpr ZLVField fields[] = {
      {"name", &Record::name_}, {"method", &Record::method_}, {"url", &Record::url_}};
  static constexpr ZLVRecordTable table{"ZLVLinkAccountActions", fields};
};
ZLV_MAP_BY_TABLE(ZLVLinkAccountActions)

template <>
struct ZLVFieldsOf<ZLVLinkAccountResponse> {
  using Record = ZLVLinkAccountResponse;
  static constexpr ZLVField fields[] = {{"actions", ZLVNesting<&Record::actions_>::rule}};
  static constexpr ZLVRecordTable table{"ZLVLinkAccountResponse", fields,
                                        &ZLVFieldsOf<ZLVLinkAccountResult>::table};
};
ZLV_MAP_BY_TABLE(ZLVLinkAccountResponse)

template <>
struct ZLVFieldsOf<ZLVPaymentOptionsBalance> {
  using Record = ZLVPaymentOptionsBalance;
  static constexpr ZLVField fields[] = {{"value", &Record::value_},
                                        {"currency", &Record::currency_}};
  static constexpr ZLVRecordTable table{"ZLVPaymentOptionsBalance", fields};
};
ZLV_MAP_BY_TABLE(ZLVPaymentOptionsBalance)

template <>
struct ZLVFieldsOf<ZLVPaymentOptions> {
  using Record = ZLVPaymentOptions;
  static constexpr ZLVField fields[] = {{"name", &Record::name_},
                                        {"active", &Record::active_},
                                        {"balance", ZLVNesting<&Record::balance_>::rule},
                                        {"metadata", &Record::metadata_},
                                        {"token", &Record::token_}};
  static constexpr ZLVRecordTable table{"ZLVPaymentOptions", fields};
};
ZLV_MAP_BY_TABLE(ZLVPaymentOptions)

template <>
struct ZLVFieldsOf<ZLVAccountMetadata> {
  using Record = ZLVAccountMetadata;
  static constexpr ZLVField fields[] = {
      {"payment_options", ZLVNesting<&Record::paymentOptions_>::rule}};
  static constexpr ZLVRecordTable table{"ZLVAccountMetadata", fields};
};
ZLV_MAP_BY_TABLE(ZLVAccountMetadata)

template <>
struct ZLVFieldsOf<ZLVAccountInfo> {
  using Record = ZLVAccountInfo;
  static constexpr ZLVField fields[] = {{"metadata", ZLVNesting<&Record::metadata_>::rule}};
  static constexpr ZLVRecordTable table{"ZLVAccountInfo", fields,
                                        &ZLVFieldsOf<AccountHeader<Record>>::table};
};
ZLV_MAP_BY_TABLE(ZLVAccountInfo)

#undef ZLV_MAP_BY_TABLE

std::shared_ptr<ZLVLinkAccountResponse> ZLVLinkAccountResponse::initWithItems(
    ZLVRecords<ZLVLinkAccountActions> items) {
  auto response = std::make_shared<ZLVLinkAccountResponse>();
  response->setActions(std::move(items));
  return response;
}
