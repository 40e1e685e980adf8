#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

#include "ZolvaCheckoutKit/Core/Helpers/parse.h"
#include "ZolvaCheckoutKit/Core/Values/ZLVJSONSerialization.h"

namespace {

ZLVValue parsed(const std::string& text) {
  return std::get<ZLVValue>(ZLVJSONSerialization::JSONObjectWithData(text));
}

/// The record that the JSON text reads as, which writes the same again.
template <class Record>
std::shared_ptr<Record> read(const std::string& text) {
  auto record = Record::initWithDictionary(parsed(text));
  EXPECT_EQ(parsed(ZLVValue(record->dictionaryValue()).description()), parsed(text));
  return record;
}

const std::string twoActions = R"(,"actions":[{"name":"n","method":"GET","url":7},{}])";

template <class Record>
std::shared_ptr<Record> readHeader(const std::string& rest = "") {
  auto record = read<Record>(R"({"status_code":201,"payment_type":"zolva","account_id":"acc-1",)"
                             R"("account_status":"PENDING","channel_response_code":"0",)"
                             R"("channel_response_message":"Processed")" +
                             rest + "}");
  EXPECT_EQ((ZLVArray{record->statusCode(), record->paymentType(), record->accountID(),
                      record->accountStatus(), record->channelResponseCode(),
                      record->channelResponseMessage()}),
            (ZLVArray{201, "zolva", "acc-1", "PENDING", "0", "Processed"}));
  return record;
}

template <class Record>
std::shared_ptr<Record> readCharge(const std::string& rest = "") {
  auto record = read<Record>(
      R"({"status_code":"200","status_message":"Done","transaction_id":"t","order_id":"o",)"
      R"("gross_amount":10000,"currency":"EUR","payment_type":"zolva","transaction_time":"noon",)"
      R"("transaction_status":"settlement","fraud_status":"accept","channel_response_code":"0",)"
      R"("channel_response_message":"Processed")" +
      rest + "}");
  EXPECT_EQ(
      (ZLVArray{record->statusCode(), record->statusMessage(), record->transactionId(),
                record->orderId(), record->grossAmount(), record->currency(), record->paymentType(),
                record->transactionTime(), record->transactionStatus(), record->fraudStatus(),
                record->channelResponseCode(), record->channelResponseMessage()}),
      (ZLVArray{"200", "Done", "t", "o", 10000, "EUR", "zolva", "noon", "settlement", "accept", "0",
                "Processed"}));
  EXPECT_TRUE(record->dictionaryValue()["order_id"] == "o");  // of a temporary dictionary
  return record;
}

template <class Record>
void expectActions(const Record& record) {
  ASSERT_EQ(record.actions()->size(), 2U);
  const auto& action = *record.actions()->front();
  EXPECT_EQ((ZLVArray{action.name(), action.method(), action.url()}), (ZLVArray{"n", "GET", 7}));
}

}  // namespace

TEST(Records, KeepWhatTheServerSent) {
  readHeader<ZLVLinkAccountResult>();
  readHeader<ZLVDisableAccountResult>();
  expectActions(*readHeader<ZLVLinkAccountResponse>(twoActions));
  readCharge<ZLVTransactionResult>();
  expectActions(*readCharge<ZLVTransactionResponse>(twoActions));

  const auto info = readHeader<ZLVAccountInfo>(
      R"(,"metadata":{"payment_options":[{"name":"PAY","active":true,"metadata":{"tier":[1]},)"
      R"("balance":{"value":"1.50","currency":"EUR"},"token":"tok"}]})");
  const auto& option = *info->metadata()->paymentOptions()->front();
  EXPECT_EQ((ZLVArray{option.name(), option.metadata(), option.token(), option.balance()->value(),
                      option.balance()->currency()}),
            (ZLVArray{"PAY", ZLVDictionary{{"tier", ZLVArray{1}}}, "tok", "1.50", "EUR"}));
}

TEST(Records, AbsentAndNullReadAsEmpty) {
  for (const auto& nothing :
       {ZLVValue(), ZLVValue(ZLVDictionary{}),
        ZLVValue(ZLVDictionary{{"status_code", ZLVNull}, {"actions", ZLVNull}})}) {
    const auto response = ZLVLinkAccountResponse::initWithDictionary(nothing);
    EXPECT_FALSE(response->actions());
    EXPECT_TRUE(response->dictionaryValue().empty());
  }
  const auto made =
      ZLVLinkAccountResponse::initWithItems(std::vector{std::make_shared<ZLVLinkAccountActions>()});
  EXPECT_EQ(ZLVValue(made->dictionaryValue()).description(), R"({"actions":[{}]})");
}

TEST(Records, NestedRecordsAreAlwaysMadeAndWrittenAsThemselves) {
  const auto info = ZLVAccountInfo::initWithDictionary(ZLVDictionary{});
  EXPECT_EQ(info->dictionaryValue()["metadata"].record(), info->metadata());
  EXPECT_EQ(ZLVValue(info->dictionaryValue()).description(), R"({"metadata":{}})");
  const auto option = ZLVPaymentOptions::initWithDictionary(ZLVDictionary{{"metadata", "raw"}});
  EXPECT_EQ(option->dictionaryValue()["balance"].record(), option->balance());
  EXPECT_EQ(ZLVValue(option->dictionaryValue()).description(),
            R"({"active":false,"balance":{},"metadata":"raw"})");
}

TEST(Records, BooleansAreTrueWhereAnythingStands) {
  for (const auto& value :
       {ZLVValue(false), ZLVValue(0), ZLVValue("false"), ZLVValue(ZLVNull), {}}) {
    const bool expected = !value.isNull() && !value.isAbsent();
    const ZLVDictionary dictionary{{"active", value}, {"enable_callback", value}};
    EXPECT_EQ(ZLVPaymentOptions::initWithDictionary(dictionary)->active(), expected);
    EXPECT_EQ(ZLVZolvaDetails::initWithDictionary(dictionary)->callbackEnabled(), expected);
  }
}

TEST(Records, CustomerIsReadFromPhoneFourTimes) {
  const auto customer = ZLVCustomerDetails::initWithDictionary(
      ZLVDictionary{{"phone", "1"}, {"first_name", "2"}, {"last_name", "3"}, {"email", "4"}});
  EXPECT_EQ(
      customer->dictionaryValue(),
      (ZLVDictionary{{"phone", "1"}, {"first_name", "1"}, {"last_name", "1"}, {"email", "1"}}));
  const char* const none = nullptr;
  EXPECT_EQ(ZLVCustomerDetails::initWithPhoneNumber("1", nullptr, none, {})->dictionaryValue(),
            (ZLVDictionary{{"phone", "1"}}));
}

TEST(Records, RequestRecordsTakeTheCallbackUrlWhenMade) {
  const auto early = ZLVPartnerDetails::initWithPhoneNumber("5550100", "1");
  ZLVVendor::shared().setCallbackUrl("app://done");
  ZLVDictionary partner{{"phone_number", "5550100"}, {"country_code", "1"}};
  EXPECT_EQ(early->dictionaryValue(), (ZLVDictionary{{"zolva_partner", partner}}));
  partner.set("redirect_url", "app://done");
  const ZLVDictionary written{{"zolva_partner", partner}};
  EXPECT_EQ(ZLVPartnerDetails::initWithDictionary(partner)->dictionaryValue(), written);
  EXPECT_EQ(ZLVPartnerDetails::initWithDictionary(written)->dictionaryValue(),
            (ZLVDictionary{{"zolva_partner", ZLVDictionary{}}}));

  EXPECT_EQ(ZLVZolvaDetails().dictionaryValue(), (ZLVDictionary{{"enable_callback", false}}));
  read<ZLVTransactionDetails>(R"({"gross_amount":10000.5,"order_id":"o","currency":"EUR"})");
  const auto tea =
      read<ZLVItemDetails>(R"({"id":"i","name":"Tea","price":2.5,"quantity":3,"category":"c"})");
  EXPECT_EQ(ZLVItemDetails::initWithIthItemID("i", "Tea", 2.5, 3, "c")->dictionaryValue(),
            tea->dictionaryValue());
  EXPECT_EQ(ZLVItem::initWithIthItemID("i", "Tea", 2.5, 3, "c")->category(), ZLVValue("c"));
}

TEST(Records, ListsMapInOrderAndSkipForeignElements) {
  EXPECT_FALSE(parse::mapToArray<ZLVLinkAccountActions>({}));
  EXPECT_TRUE(parse::mapToArray<ZLVLinkAccountActions>(ZLVArray{})->empty());
  EXPECT_TRUE(parse::dictionaryValues({}).isAbsent());
  const auto record = ZLVLinkAccountActions::initWithDictionary(ZLVDictionary{{"name", "a"}});
  EXPECT_EQ(parse::dictionaryValues(ZLVArray{record, "text", record}),
            ZLVValue(ZLVArray{ZLVDictionary{{"name", "a"}}, ZLVDictionary{{"name", "a"}}}));
}

TEST(Records, StructuralMismatchesAreFaults) {
  for (const auto& actions :
       {ZLVValue("text"), ZLVValue(ZLVDictionary{}), ZLVValue(ZLVArray{ZLVNull}),
        ZLVValue(ZLVArray{ZLVDictionary{}, "x"})}) {
    const ZLVDictionary answer{{"actions", actions}, {"payment_options", actions}};
    EXPECT_THROW(ZLVTransactionResponse::initWithDictionary(answer), ZLVProgrammingFault);
    EXPECT_THROW(ZLVAccountMetadata::initWithDictionary(answer), ZLVProgrammingFault);
  }
  EXPECT_THROW(ZLVPaymentOptions::initWithDictionary(ZLVDictionary{{"balance", ZLVArray{}}}),
               ZLVProgrammingFault);
}
