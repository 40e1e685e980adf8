#include <cstdlib>
#include <limits>

#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

#include "ZolvaCheckoutKit/Core/Helpers/core_parse.h"
#include "ZolvaCheckoutKit/Core/Helpers/extract.h"
#include "ZolvaCheckoutKit/Core/Values/ZLVJSONSerialization.h"
#include "ZolvaCheckoutKit/Core/Values/ZLVText.h"

namespace JSON = ZLVJSONSerialization;
using namespace std::string_view_literals;

namespace {

ZLVValue parsed(std::string_view text) {
  return std::get<ZLVValue>(JSON::JSONObjectWithData(text));
}

/// Whether reading fails with such an error.
bool isRefused(std::string_view text, std::string_view error = "NSCocoaErrorDomain Code=3840",
               std::size_t budget = ZLVPlatform().maximumDecodedSize) {
  const auto result = JSON::JSONObjectWithData(text, budget);
  const auto* failure = std::get_if<ZLVError>(&result);
  return failure != nullptr && failure->debugDescription().find(error) != std::string::npos;
}

std::string repeated(const std::string& text, std::size_t size) {
  std::string all;
  while (all.size() < size) all += text;
  return all;
}

std::string nested(std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); }

// What would dangle must not compile.
constexpr auto textOf = []<class V>(V&& v) -> decltype(std::forward<V>(v).text()) { return {}; };
constexpr auto arrayOf = []<class V>(V&& v) -> decltype(std::forward<V>(v).array()) { return {}; };
constexpr auto fieldsOf = []<class V>(V&& v) -> decltype(std::forward<V>(v).dictionary()) {
  return {};
};
constexpr auto beginOf = []<class V>(V&& v) -> decltype(std::forward<V>(v).begin()) { return {}; };
constexpr auto endOf = []<class V>(V&& v) -> decltype(std::forward<V>(v).end()) { return {}; };

/// How many of the readings compile for a name (`const Value&`) or a temporary.
template <class Value, class... Readings>
constexpr int compiled(Readings... /*readings*/) {
  return (int{std::is_invocable_v<Readings, Value>} + ...);
}

static_assert(!std::constructible_from<ZLVValue, char>);
static_assert(compiled<const ZLVValue&>(textOf, arrayOf, fieldsOf) == 3);
static_assert(compiled<ZLVValue>(textOf, arrayOf, fieldsOf) == 0);
static_assert(compiled<const ZLVValue>(textOf, arrayOf, fieldsOf) == 0);
static_assert(compiled<const ZLVDictionary&>(beginOf, endOf) == 2);
static_assert(compiled<ZLVDictionary>(beginOf, endOf) == 0);
static_assert(compiled<const ZLVDictionary>(beginOf, endOf) == 0);

/// Whether each of the expressions has a type of its own, and so refers to nothing.
template <class... Handed>
constexpr bool areCopies = (!std::is_reference_v<Handed> && ...);

static_assert(areCopies<decltype(std::declval<const ZLVDictionary>()[""]),
                        decltype(std::declval<const ZLVError>().userInfo()),
                        decltype(std::declval<const ZLVURL>().absoluteString()),
                        decltype(std::declval<const ZLVURL>().scheme()),
                        decltype(std::declval<const ZLVURL>().host()),
                        decltype(std::declval<const ZLVItem>().name()),
                        decltype(std::declval<const ZLVTransactionResponse>().actions())>);

}  // namespace

TEST(Value, IntegerValue) {
  constexpr auto least = std::numeric_limits<std::int64_t>::min();
  constexpr auto most = std::numeric_limits<std::int64_t>::max();
  constexpr auto notANumber = std::numeric_limits<double>::quiet_NaN();
  const std::pair<std::int64_t, ZLVArray> cases[] = {
      {201, {"201", 201, 201.9, "201abc"}},
      {-17, {" \t\n-17x"}},
      {5, {"+5"}},
      {1, {true}},
      {0,
       {-0.5, "+-5", "abc", "", "0x10", notANumber, false, ZLVNull, ZLVArray{1},
        ZLVDictionary{{"a", 1}}, ZLVValue()}},
      {most, {"99999999999999999999", 1e300, std::numeric_limits<std::uint64_t>::max()}},
      {least, {"-99999999999999999999", -1e300}}};
  for (const auto& [expected, values] : cases) {
    for (const auto& value : values) {
      EXPECT_EQ(value.integerValue(), expected) << value.description();
    }
  }
}

TEST(Value, DictionaryKeepsTheLastAndNoAbsentValues) {
  ZLVDictionary dictionary{{"b", 1}, {"a", 2}, {"b", 3}, {"c", {}}};
  EXPECT_EQ(dictionary, (ZLVDictionary{{"a", 2}, {"b", 3}}));
  dictionary.set("a", {});
  dictionary.merge({{"b", ZLVNull}, {"z", "x"}});
  EXPECT_EQ(dictionary, (ZLVDictionary{{"b", ZLVNull}, {"z", "x"}}));
  EXPECT_TRUE(dictionary.contains("b"));
  EXPECT_TRUE(extract::objectOrNilForKey(dictionary, "b").isAbsent());
  EXPECT_EQ(extract::objectOrNilForKey({{"n", "null"}}, "n"), ZLVValue("null"));
  EXPECT_EQ(extract::objectOrNilForKey({{"n", false}}, "n"), ZLVValue(false));
}

TEST(Value, KindsAreToldApart) {
  char* const noText = nullptr;
  for (const auto& nothing :
       {ZLVValue(), ZLVValue(nullptr), ZLVValue(noText), ZLVValue(std::as_const(noText)),
        ZLVValue(std::nullopt), ZLVValue(std::optional<std::string>()),
        ZLVValue(std::optional<double>()), ZLVValue(std::optional<const char*>(noText)),
        ZLVValue(ZLVRecord<ZLVAccountMetadata>())}) {
    EXPECT_TRUE(nothing.isAbsent()) << nothing.description();
  }
  EXPECT_EQ(ZLVValue(std::optional(2.5)), ZLVValue(2.5));
  EXPECT_TRUE(ZLVValue(ZLVNull).isNull());
  EXPECT_NE(ZLVValue(1), ZLVValue(true));
  EXPECT_NE(ZLVValue(1), ZLVValue(1.0));
  EXPECT_EQ(ZLVValue(7U), ZLVValue(7));
  EXPECT_NE(ZLVValue(), ZLVValue(ZLVNull));
  EXPECT_FALSE(ZLVValue(true).number());
}

TEST(JSON, ReadsWhatIsValid) {
  EXPECT_EQ(parsed("\xEF\xBB\xBF {\"a\":1,\"a\":[true,null,\"\\u00e9\\ud83d\\ude00\"]} "),
            ZLVValue(ZLVDictionary{{"a", ZLVArray{true, ZLVNull, "\u00e9\U0001F600"}}}));
  EXPECT_EQ(parsed("9223372036854775807"), ZLVValue(std::numeric_limits<std::int64_t>::max()));
  EXPECT_EQ(parsed("18446744073709551615"), ZLVValue(std::numeric_limits<std::uint64_t>::max()));
  EXPECT_EQ(parsed("18446744073709551616"), ZLVValue(18446744073709551616.0));
  EXPECT_EQ(parsed("-9223372036854775809"), ZLVValue(-9223372036854775809.0));
  EXPECT_EQ(parsed(R"("a\u0000b")"), ZLVValue(std::string("a\0b", 3)));
  EXPECT_EQ(parsed(R"([{"k":[1,{"x":2}],"l":{}},3])").description(),
            R"([{"k":[1,{"x":2}],"l":{}},3])");
  parsed(nested(512));
}

TEST(JSON, RefusesWhatIsNot) {
  for (const auto text :
       {""sv, "\xEF\xBB\xBF"sv, " "sv, "{\"a\":1"sv, "{} x"sv, "[1,]"sv, "nul"sv, "\"\\ud800\""sv,
        "\"\\udc00\\ud800\""sv, "\"a\0b\""sv, "\xEF\xBB\xBF\xEF\xBB\xBF{}"sv, "\xFF\xFE{\0}\0"sv,
        "1e400"sv, "01"sv, "NaN"sv, "<html>"sv, "/**/1"sv, "1//"sv, "{}\0"sv}) {
    EXPECT_TRUE(isRefused(text)) << text;
  }
  for (const auto& text : {std::string(100'000, '9'), nested(513), std::string(100'000, '[')}) {
    EXPECT_TRUE(isRefused(text)) << text.substr(0, 20);
  }
  EXPECT_TRUE(isRefused("[1,]", "at byte 3"));
}

TEST(JSON, StaysWithinItsBudget) {
  constexpr std::size_t budget = 1'000'000;
  const std::string tooLarge[] = {repeated("[],", 800'000),
                                  repeated("{},", 800'000),
                                  repeated("0,", 800'000),
                                  repeated("\"\",", 800'000),
                                  '"' + std::string(budget, 'x'),
                                  "{\"" + std::string(budget, 'x'),
                                  '"' + repeated("\\n", 2 * budget) + repeated("x", 10),
                                  repeated('"' + std::string(1000, 'x') + "\",", budget)};
  for (const auto& text : tooLarge) {
    // What stands behind is not even looked at.
    EXPECT_TRUE(isRefused("[" + text + "!", "NSURLErrorDomain Code=-1103", budget))
        << text.substr(0, 10);
  }
  const std::string option =
      R"({"name":"PAY_LATER","active":true,"balance":{"value":"350000.00","currency":"EUR"},)"
      R"("metadata":{"min_limit":"10000","tier":1},)"
      R"("token":"eyJ0eXBlIjogIlpPTFZBX1dBTExFVCIsICJpZCI6ICIifQ=="},)";
  parsed(R"({"metadata":{"payment_options":[)" + repeated(option, 10'000 * option.size()) +
         "{}]}}");
}

TEST(JSON, WritesCompactTextOrNothing) {
  const ZLVDictionary dictionary{
      {"count", 3}, {"items", ZLVArray{}}, {"one", ZLVArray{"\"", "\\", "\n", "\x01", "/\u00e9"}}};
  EXPECT_EQ(JSON::dataWithJSONObject(dictionary),
            R"({"count":3,"items":[],"one":["\"","\\","\n","\u0001","/é"]})");
  for (const auto& unwritable : {ZLVValue(std::numeric_limits<double>::infinity()),
                                 ZLVValue(std::make_shared<ZLVAccountMetadata>()), ZLVValue()}) {
    EXPECT_FALSE(JSON::dataWithJSONObject(ZLVArray{unwritable})) << unwritable.description();
  }
}

TEST(JSON, DoublesAreReadExactlyAndWrittenAsInECMAScript) {
  // What is written reads back as the same double, also where it looks like an integer.
  for (const auto& [text, written] : std::initializer_list<std::pair<const char*, const char*>>{
           {"300000.00", "300000"},
           {"1e5", "100000"},
           {"-10000.50", "-10000.5"},
           {"-0.0", "0"},
           {"0.30000000000000004", "0.30000000000000004"},
           {"0.000001", "0.000001"},
           {"0.0000001", "1e-7"},
           {"-0.000000125", "-1.25e-7"},
           {"123456789012345678901", "123456789012345680000"},
           {"1e21", "1e+21"},
           {"1.7976931348623157e308", "1.7976931348623157e+308"},
           {"5e-324", "5e-324"},
           {"2.4e-324", "0"},
           {"2.2250738585072011e-308", "2.225073858507201e-308"},
           {"6.1845e26", "6.1845e+26"},
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
  const char* const valid[][3] = {
      {"https://u:p@Shop.example:8443/a/b;c?q=a[]=1#f", "https", "Shop.example"},
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
      {{{"note", ZLVNull}}, "note="},
      {{{"none", ZLVArray{}}, {"x", 1.5}}, "x=1.5"},
      {{{"yes", true}, {"no", false}}, "no=0&yes=1"},
      {{{"ids", ZLVArray{1, ZLVArray{2, "%33"}}}}, "ids[]=1&ids[]=2&ids[]=3"},
  };
  for (const auto& [dictionary, expected] : cases) {
    EXPECT_EQ(core_parse::queryStringValue(dictionary), expected);
  }
  for (const auto& dictionary :
       {ZLVDictionary{{"d", ZLVDictionary{}}}, ZLVDictionary{{"a", ZLVArray{ZLVNull}}},
        ZLVDictionary{{"a", ZLVArray{ZLVDictionary{}}}}}) {
    EXPECT_THROW(core_parse::queryStringValue(dictionary), ZLVProgrammingFault);
  }
}

TEST(Text, BytesBecomeUTF8) {
  const std::string_view whole =
      "a\0 \u007f \u0080 \u07ff \u0800 \xED\x9F\xBF \xEE\x80\x80 \U00010000 \U0010ffff"sv;
  EXPECT_TRUE(ZLVIsUTF8(whole));
  EXPECT_EQ(ZLVValue(whole).description(), whole);

  // "?" stands for U+FFFD.
  const auto expectReplaced = [](const char* bytes, std::string text) {
    for (std::size_t at = 0; (at = text.find('?', at)) != std::string::npos;) {
      text.replace(at, 1, "\uFFFD");
    }
    EXPECT_FALSE(ZLVIsUTF8(bytes));
    EXPECT_TRUE(isRefused('"' + std::string(bytes) + '"')) << text;
    for (const auto& value : {ZLVValue(bytes), ZLVValue(std::string(bytes)),
                              ZLVValue(std::string_view(bytes)), ZLVValue(std::optional(bytes))}) {
      EXPECT_EQ(value.description(), text);
    }
    ZLVDictionary dictionary{{bytes, 1}};
    EXPECT_EQ(dictionary, (ZLVDictionary{{text, 1}}));
    dictionary.set(bytes, 2);
    EXPECT_EQ(dictionary, (ZLVDictionary{{text, 2}}));
    EXPECT_EQ(dictionary[bytes], ZLVValue(2));
  };
  for (const auto* bytes : {"\x80\xBF\xFF", "\xC0\xAF", "\xC1\xBF\xC2", "\xE0\x9F\xBF",
                            "\xED\xA0\x80", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80"}) {
    expectReplaced(bytes, std::string(std::string_view(bytes).size(), '?'));
  }
  expectReplaced("Andr\xE9 Ch\xE2telet, 12 rue", "Andr? Ch?telet, 12 rue");
  expectReplaced("\xF0\x9F\x98 \xE2\x82\"", "? ?\"");
  expectReplaced("\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41 \xF0\x9F\x98", "????A ?");
}

TEST(Text, OneLineEscapesControlCharacters) {
  EXPECT_EQ(ZLVOneLine("a\n\r\t\x1b[0m\x7f\u00e9"), "a\\n\\r\\t\\u001b[0m\\u007f\u00e9");
}
