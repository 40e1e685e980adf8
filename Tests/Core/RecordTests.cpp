#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

#include "ZolvaCheckoutKit/Core/Helpers/parse.h"

namespace {

const ZLVDictionary header{
    {"status_code", 201},           {"payment_type", "zolva"},
    {"account_id", "acc-1"},        {"account_status", "PENDING"},
    {"channel_response_code", "0"}, {"channel_response_message", "Process completed"}};

ZLVDictionary with(ZLVDictionary dictionary, std::string_view key, ZLVValue value) {
  dictionary.set(key, std::move(value));
  return dictionary;
}

}  // namespace

TEST(Records, KeepWhatTheServerSent) {
  const auto whole =
      with(header, "actions", ZLVArray{ZLVDictionary{{"name", "a"}, {"url", 7}}, ZLVDictionary{}});
  const auto response = ZLVLinkAccountResponse::initWithDictionary(whole);
  EXPECT_EQ(response->statusCode(), ZLVValue(201));
  ASSERT_EQ(response->actions()->size(), 2U);
  EXPECT_EQ(response->actions()->front()->url(), ZLVValue(7));
  EXPECT_EQ(response->dictionaryValue(), whole);
  EXPECT_EQ(ZLVLinkAccountResult::initWithDictionary(whole)->dictionaryValue(), header);
  EXPECT_EQ(ZLVDisableAccountResult::initWithDictionary(whole)->dictionaryValue(), header);

  const ZLVDictionary charge{{"transaction_id", "t"}, {"order_id", "o"},
                             {"gross_amount", 10000}, {"status_code", "200"},
                             {"fraud_status", "ok"},  {"actions", ZLVArray{}}};
  const auto transaction = ZLVTransactionResponse::initWithDictionary(charge);
  EXPECT_EQ(transaction->orderId(), ZLVValue("o"));
  EXPECT_EQ(transaction->dictionaryValue(), charge);
}

TEST(Records, AbsentAndNullReadAsEmpty) {
  for (const auto& nothing :
       {ZLVValue(), ZLVValue(ZLVDictionary{}),
        ZLVValue(ZLVDictionary{{"status_code", nullptr}, {"actions", nullptr}})}) {
    const auto response = ZLVLinkAccountResponse::initWithDictionary(nothing);
    EXPECT_FALSE(response->actions());
    EXPECT_TRUE(response->dictionaryValue().empty());
  }
  const auto items = std::vector{std::make_shared<ZLVLinkAccountActions>()};
  EXPECT_EQ(ZLVLinkAccountResponse::initWithItems(items)->dictionaryValue(),
            (ZLVDictionary{{"actions", ZLVArray{ZLVDictionary{}}}}));
}

TEST(Records, NestedRecordsAreAlwaysMadeAndWrittenAsThemselves) {
  const auto info = ZLVAccountInfo::initWithDictionary(ZLVDictionary{});
  ASSERT_NE(info->metadata(), nullptr);
  EXPECT_FALSE(info->metadata()->paymentOptions());
  EXPECT_EQ(info->dictionaryValue()["metadata"].record(), info->metadata());

  const auto option = ZLVPaymentOptions::initWithDictionary(ZLVDictionary{{"metadata", "raw"}});
  ASSERT_NE(option->balance(), nullptr);
  EXPECT_EQ(option->metadata(), ZLVValue("raw"));
  const auto written = option->dictionaryValue();
  EXPECT_EQ(written["balance"].record(), option->balance());
  EXPECT_EQ(written["active"], ZLVValue(false));
  EXPECT_EQ(ZLVValue(info->dictionaryValue()).description(), R"({"metadata":{}})");
}

TEST(Records, BooleansAreTrueWhereAnythingStands) {
  for (const auto& [value, expected] : {std::pair{ZLVValue(false), true},
                                        {ZLVValue(0), true},
                                        {ZLVValue("false"), true},
                                        {ZLVValue(nullptr), false},
                                        {ZLVValue(), false}}) {
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
  EXPECT_EQ(ZLVCustomerDetails::initWithPhoneNumber("1", "2", "3", {})->dictionaryValue(),
            (ZLVDictionary{{"phone", "1"}, {"first_name", "2"}, {"last_name", "3"}}));
}

TEST(Records, RequestRecordsTakeTheCallbackUrlWhenMade) {
  const auto early = ZLVPartnerDetails::initWithPhoneNumber("81", "62");
  ZLVVendor::shared().setCallbackUrl("app://done");
  const ZLVDictionary inner{{"phone_number", "81"}, {"country_code", "62"}};
  EXPECT_EQ(early->dictionaryValue(), (ZLVDictionary{{"zolva_partner", inner}}));

  const auto partner = ZLVPartnerDetails::initWithPhoneNumber("81", "62");
  const auto written = partner->dictionaryValue();
  const auto whole = with(inner, "redirect_url", "app://done");
  EXPECT_EQ(written, (ZLVDictionary{{"zolva_partner", whole}}));
  const ZLVDictionary emptyPartner{{"zolva_partner", ZLVDictionary{}}};
  EXPECT_EQ(ZLVPartnerDetails::initWithDictionary(written)->dictionaryValue(), emptyPartner);
  EXPECT_EQ(ZLVPartnerDetails::initWithDictionary(whole)->dictionaryValue(), written);

  EXPECT_EQ(ZLVZolvaDetails::initWithAccountID("a", "t")->dictionaryValue(),
            (ZLVDictionary{{"account_id", "a"},
                           {"payment_option_token", "t"},
                           {"callback_url", "app://done"},
                           {"enable_callback", true}}));
  EXPECT_EQ(ZLVZolvaDetails().dictionaryValue(), (ZLVDictionary{{"enable_callback", false}}));
  EXPECT_EQ(
      ZLVItemDetails::initWithIthItemID("i", "Tea", 2.5, 3, "drinks")->dictionaryValue(),
      (ZLVDictionary{
          {"id", "i"}, {"name", "Tea"}, {"price", 2.5}, {"quantity", 3}, {"category", "drinks"}}));
  EXPECT_EQ(ZLVItem::initWithIthItemID("i", "Tea", 2.5, 3, "drinks")->category(),
            ZLVValue("drinks"));
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
       {ZLVValue("text"), ZLVValue(ZLVDictionary{}), ZLVValue(ZLVArray{nullptr}),
        ZLVValue(ZLVArray{ZLVDictionary{}, "x"})}) {
    const ZLVDictionary answer{{"actions", actions}, {"payment_options", actions}};
    EXPECT_THROW(ZLVTransactionResponse::initWithDictionary(answer), ZLVProgrammingFault);
    EXPECT_THROW(ZLVAccountMetadata::initWithDictionary(answer), ZLVProgrammingFault);
  }
  EXPECT_THROW(ZLVAccountInfo::initWithDictionary(ZLVDictionary{{"metadata", 1}}),
               ZLVProgrammingFault);
  EXPECT_THROW(ZLVPaymentOptions::initWithDictionary(ZLVDictionary{{"balance", ZLVArray{}}}),
               ZLVProgrammingFault);
}
