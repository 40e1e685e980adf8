#include <array>
#include <cstdlib>
#include <limits>
#include <thread>

#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

#include "ZolvaCheckoutKit/Core/Helpers/ZLVJSONSerialization.h"
#include "ZolvaCheckoutKit/Core/Helpers/ZLVText.h"
#include "ZolvaCheckoutKit/Core/Helpers/core_parse.h"
#include "ZolvaCheckoutKit/Core/Helpers/extract.h"

using JSON = ZLVJSONSerialization;

namespace {

ZLVValue parsed(std::string_view text) {
  auto result = JSON::JSONObjectWithData(text);
  if (const auto* error = std::get_if<ZLVError>(&result)) {
    ADD_FAILURE() << text << ": " << error->debugDescription();
    return {};
  }
  return std::get<ZLVValue>(result);
}

std::string readingFailure(std::string_view text) {
  const auto result = JSON::JSONObjectWithData(text);
  const auto* error = std::get_if<ZLVError>(&result);
  if (error == nullptr) return "";
  EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(error->code(), 3840);
  return error->localizedDescription();
}

std::string nested(std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); }

}  // namespace

TEST(Value, IntegerValue) {
  constexpr auto least = std::numeric_limits<std::int64_t>::min();
  constexpr auto most = std::numeric_limits<std::int64_t>::max();
  const std::pair<ZLVValue, std::int64_t> cases[] = {
      {"201", 201},
      {201, 201},
      {201.9, 201},
      {-0.5, 0},
      {" \t\n-17x", -17},
      {"+5", 5},
      {"+-5", 0},
      {"201abc", 201},
      {"abc", 0},
      {"", 0},
      {"0x10", 0},
      {"99999999999999999999", most},
      {"-99999999999999999999", least},
      {1e300, most},
      {-1e300, least},
      {std::numeric_limits<double>::quiet_NaN(), 0},
      {std::numeric_limits<std::uint64_t>::max(), most},
      {true, 1},
      {false, 0},
      {nullptr, 0},
      {ZLVArray{1}, 0},
      {ZLVDictionary{{"a", 1}}, 0},
      {{}, 0},
  };
  for (const auto& [value, expected] : cases) {
    EXPECT_EQ(value.integerValue(), expected) << value.description();
  }
}

TEST(Value, DictionaryKeepsTheLastAndNoAbsentValues) {
  ZLVDictionary dictionary{{"b", 1}, {"a", 2}, {"b", 3}, {"c", {}}};
  EXPECT_EQ(dictionary, (ZLVDictionary{{"a", 2}, {"b", 3}}));
  dictionary.set("a", {});
  dictionary.merge({{"b", nullptr}, {"z", "x"}});
  EXPECT_EQ(dictionary, (ZLVDictionary{{"b", nullptr}, {"z", "x"}}));
  EXPECT_TRUE(dictionary.contains("b"));
  EXPECT_TRUE(extract::objectOrNilForKey(dictionary, "b").isAbsent());
  EXPECT_EQ(extract::objectOrNilForKey({{"n", "null"}}, "n"), ZLVValue("null"));
  EXPECT_EQ(extract::objectOrNilForKey({{"n", false}}, "n"), ZLVValue(false));
}

TEST(Value, KindsAreToldApart) {
  const std::optional<std::string> none;
  EXPECT_TRUE(ZLVValue(none).isAbsent());
  EXPECT_TRUE(ZLVValue(static_cast<const char*>(nullptr)).isAbsent());
  EXPECT_NE(ZLVValue(1), ZLVValue(true));
  EXPECT_NE(ZLVValue(1), ZLVValue(1.0));
  EXPECT_EQ(ZLVValue(7U), ZLVValue(7));
  EXPECT_NE(ZLVValue(), ZLVValue(nullptr));
  EXPECT_FALSE(ZLVValue(true).number());
}

TEST(JSON, ReadsWhatIsValid) {
  EXPECT_EQ(parsed("\xEF\xBB\xBF {\"a\":1,\"a\":[true,null,\"\\u00e9\\ud83d\\ude00\"]} "),
            ZLVValue(ZLVDictionary{{"a", ZLVArray{true, nullptr, "\u00e9\U0001F600"}}}));
  EXPECT_EQ(parsed("9223372036854775807"), ZLVValue(std::numeric_limits<std::int64_t>::max()));
  EXPECT_EQ(parsed("18446744073709551615"), ZLVValue(std::numeric_limits<std::uint64_t>::max()));
  EXPECT_EQ(parsed("18446744073709551616"), ZLVValue(18446744073709551616.0));
  EXPECT_EQ(parsed("-9223372036854775809"), ZLVValue(-9223372036854775809.0));
  EXPECT_EQ(parsed(R"("a\u0000b")").text()->size(), 3U);
  EXPECT_EQ(parsed(R"([{"k":[1,{"x":2}],"l":{}},3])").description(),
            R"([{"k":[1,{"x":2}],"l":{}},3])");
  parsed(nested(512));
}

TEST(JSON, RefusesWhatIsNot) {
  const std::string invalid[] = {"",
                                 "\xEF\xBB\xBF",
                                 " ",
                                 "{\"a\":1",
                                 "{} x",
                                 "[1,]",
                                 "nul",
                                 "\"\xff\"",
                                 "\"\xed\xa0\x80\"",
                                 "\"\\ud800\"",
                                 "1e400",
                                 "01",
                                 "NaN",
                                 "<html>",
                                 std::string("{}\0", 3),
                                 nested(513),
                                 std::string(100'000, '[')};
  for (const auto& text : invalid) EXPECT_NE(readingFailure(text), "") << text.substr(0, 20);
  EXPECT_NE(readingFailure("[1,]").find("at byte 3"), std::string::npos) << readingFailure("[1,]");
}

TEST(JSON, WritesCompactTextOrNothing) {
  const ZLVDictionary dictionary{
      {"amount", 10000.5}, {"count", 3}, {"items", ZLVArray{}}, {"quote", "\"\\/\n\x01\u00e9"}};
  EXPECT_EQ(JSON::dataWithJSONObject(dictionary),
            R"({"amount":10000.5,"count":3,"items":[],"quote":"\"\\/\n\u0001é"})");
  for (const auto& unwritable :
       {ZLVValue("\xff"), ZLVValue(std::numeric_limits<double>::infinity()),
        ZLVValue(std::make_shared<ZLVAccountMetadata>()), ZLVValue()}) {
    EXPECT_FALSE(JSON::dataWithJSONObject(ZLVArray{unwritable})) << unwritable.description();
  }
}

TEST(JSON, DoublesAreReadExactlyAndWrittenAsInECMAScript) {
  // What is written reads back as the same double, also where it looks like an integer.
  for (const auto& [text, written] : std::initializer_list<std::pair<const char*, const char*>>{
           {"100000.0", "100000"},
           {"300000.00", "300000"},
           {"1e5", "100000"},
           {"-10000.50", "-10000.5"},
           {"12345678.9", "12345678.9"},
           {"-0.0", "0"},
           {"0.30000000000000004", "0.30000000000000004"},
           {"0.000001", "0.000001"},
           {"0.00000123", "0.00000123"},
           {"0.0000001", "1e-7"},
           {"-0.000000125", "-1.25e-7"},
           {"100000000000000000000.0", "100000000000000000000"},
           {"123456789012345678901", "123456789012345680000"},
           {"1e21", "1e+21"},
           {"1234567890123456789012", "1.2345678901234568e+21"},
           {"1.7976931348623157e308", "1.7976931348623157e+308"},
           {"5e-324", "5e-324"},
           {"9007199254740993.5", "9007199254740994"},
           {"-9.223372036854777e-278", "-9.223372036854777e-278"}}) {
    const auto value = parsed(text);
    EXPECT_EQ(JSON::dataWithJSONObject(value), written);
    EXPECT_EQ(value.description(), written);
    EXPECT_EQ(core_parse::queryStringValue({{"x", value}}), std::string("x=") + written);
    EXPECT_EQ(value.number(), std::strtod(text, nullptr)) << text;
    EXPECT_EQ(value.number(), parsed(written).number()) << text;
  }
}

TEST(URL, ParsesByTheRules) {
  struct Case {
    const char *text, *scheme, *host;
  };
  const Case valid[] = {{"https://u:p@Shop.example:8443/a/b;c?q=a[]=1#f", "https", "Shop.example"},
                        {"HTTP://[::1]:80/", "http", "::1"},
                        {"app://done", "app", "done"},
                        {"mailto:a@b.c", "mailto", ""},
                        {"/relative?x", "", ""},
                        {"a/b:c", "", ""},
                        {"http://h/%20", "http", "h"},
                        {"", "", ""}};
  for (const auto& [text, scheme, host] : valid) {
    const auto url = ZLVURL::URLWithString(text);
    ASSERT_TRUE(url) << text;
    EXPECT_EQ(url->scheme(), scheme) << text;
    EXPECT_EQ(url->host(), host) << text;
    EXPECT_EQ(url->absoluteString(), text);
  }
  for (const auto* text : {"http://h/a b", "http://h/%2", "http://h/%zz", "http://h/a[1]",
                           "http://[::1", "http://h:8a/", "1http://h", "http://h/\xc3\xa9",
                           "http://h/<", "http://a@b@c/", "http://h/#a#b", "ht tp://h",
                           "http://h/\n", "http://[zz]/", "http://[::1]x/", ":", "http://h/^"}) {
    EXPECT_FALSE(ZLVURL::URLWithString(text)) << text;
  }
}

TEST(QueryString, DecodesAndFlattens) {
  const std::pair<ZLVDictionary, const char*> cases[] = {
      {{}, ""},
      {{{"page", 2}}, "page=2"},
      {{{"q", "a%20b&c"}}, "q=a b&c"},
      {{{"bad", "100%"}}, "bad=(null)"},
      {{{"bad", "%ff"}}, "bad=(null)"},
      {{{"note", nullptr}}, "note="},
      {{{"none", ZLVArray{}}, {"x", 1.5}}, "x=1.5"},
      {{{"yes", true}, {"no", false}}, "no=0&yes=1"},
      {{{"ids", ZLVArray{1, ZLVArray{2, "%33"}}}}, "ids[]=1&ids[]=2&ids[]=3"},
  };
  for (const auto& [dictionary, expected] : cases) {
    EXPECT_EQ(core_parse::queryStringValue(dictionary), expected);
  }
  for (const auto& dictionary :
       {ZLVDictionary{{"d", ZLVDictionary{}}}, ZLVDictionary{{"a", ZLVArray{nullptr}}},
        ZLVDictionary{{"a", ZLVArray{ZLVDictionary{}}}}}) {
    EXPECT_THROW(core_parse::queryStringValue(dictionary), ZLVProgrammingFault);
  }
}

TEST(Error, Descriptions) {
  const auto checkout =
      ZLVError::errorWithDomain(ZLVCheckoutErrorDomain, -1, {{"Error message", "url is null"}});
  EXPECT_NE(checkout.localizedDescription().find("com.zolva.checkoutkit.checkout error -1"),
            std::string::npos);
  const auto server =
      ZLVError::errorWithDomain(ZLVErrorDomain, 406,
                                {{std::string(NSLocalizedDescriptionKey), ZLVArray{"too\nlong", 1}},
                                 {std::string(NSLocalizedFailureReasonErrorKey), nullptr}});
  EXPECT_EQ(server.localizedDescription(), R"(["too\nlong",1])");
  EXPECT_EQ(server.localizedFailureReason(), "<null>");
  const auto text = server.debugDescription();
  for (const auto* piece : {"com.zolva.checkoutkit", "406", "too"}) {
    EXPECT_NE(text.find(piece), std::string::npos) << text;
  }
  EXPECT_EQ(text.find('\n'), std::string::npos);
}

TEST(Text, OneLineEscapesControlCharacters) {
  EXPECT_EQ(ZLVOneLine("a\n\r\t\x1b[0m\x7f\u00e9"), "a\\n\\r\\t\\u001b[0m\\u007f\u00e9");
}

TEST(Vendor, SharedFromManyThreadsIsOne) {
  std::array<ZLVVendor*, 8> seen{};
  {
    std::array<std::jthread, 8> threads;
    for (std::size_t i = 0; i < threads.size(); ++i) {
      threads[i] = std::jthread([&seen, i] { seen[i] = &ZLVVendor::shared(); });
    }
  }
  for (const auto* vendor : seen) EXPECT_EQ(vendor, &ZLVVendor::shared());
}
