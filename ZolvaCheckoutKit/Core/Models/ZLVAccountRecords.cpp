#include <utility>

#include <ZolvaCheckoutKit/Core/Models/ZLVRecordMapping.h>
#include <ZolvaCheckoutKit/ZLVAccountRecords.h>

#define ZLV_WHOLE_LINK_ACCOUNT_RESPONSE(FIELD) \
  ZLV_ACCOUNT_HEADER_FIELDS(FIELD)             \
  ZLV_LINK_ACCOUNT_RESPONSE_FIELDS(FIELD)

ZLV_DEFINE_RECORD(ZLVLinkAccountResult, ZLV_ACCOUNT_HEADER_FIELDS)
ZLV_DEFINE_RECORD(ZLVDisableAccountResult, ZLV_ACCOUNT_HEADER_FIELDS)
ZLV_DEFINE_RECORD(ZLVLinkAccountActions, ZLV_ACTION_FIELDS)
ZLV_DEFINE_RECORD(ZLVLinkAccountResponse, ZLV_WHOLE_LINK_ACCOUNT_RESPONSE)
ZLV_DEFINE_RECORD(ZLVPaymentOptionsBalance, ZLV_BALANCE_FIELDS)
ZLV_DEFINE_RECORD(ZLVPaymentOptions, ZLV_PAYMENT_OPTIONS_FIELDS)
ZLV_DEFINE_RECORD(ZLVAccountMetadata, ZLV_ACCOUNT_METADATA_FIELDS)
ZLV_DEFINE_RECORD(ZLVAccountInfo, ZLV_ACCOUNT_INFO_FIELDS)

std::shared_ptr<ZLVLinkAccountResponse> ZLVLinkAccountResponse::initWithItems(
    ZLVRecords<ZLVLinkAccountActions> items) {
  auto response = std::make_shared<ZLVLinkAccountResponse>();
  response->setActions(std::move(items));
  return response;
}
