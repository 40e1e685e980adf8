#include <fstream>
#include <map>
#include <regex>
#include <set>

#include <gtest/gtest.h>

#include <ZolvaCheckoutKit/Core/Values/ZLVJSONSerialization.h>
#include <ZolvaCheckoutKit/Testing/ZLVFakePlatform.h>
#include <ZolvaCheckoutKit/ZLVError.h>

TEST(Error, SaysWhetherTheRequestMayHaveTakenEffect) {
  const std::tuple<std::string_view, bool, std::vector<std::int64_t>> cases[] = {
      {ZLVErrorDomain, false, {400, 499}},
      {ZLVErrorDomain, true, {500, 302, 0}},
      {ZLVCheckoutErrorDomain, true, {-1}},
      {NSCocoaErrorDomain, true, {NSPropertyListReadCorruptError}},
      {"a session's own", true, {404}},
      {NSURLErrorDomain,
       true,
       {NSURLErrorCancelled, NSURLErrorTimedOut, NSURLErrorNetworkConnectionLost,
        NSURLErrorSecureConnectionFailed, NSURLErrorDataLengthExceedsMaximum}},
      {NSURLErrorDomain,
       false,
       {NSURLErrorBadURL, NSURLErrorUnsupportedURL, NSURLErrorCannotFindHost,
        NSURLErrorCannotConnectToHost, NSURLErrorNotConnectedToInternet,
        NSURLErrorAppTransportSecurityRequiresSecureConnection,
        NSURLErrorServerCertificateHasBadDate, NSURLErrorServerCertificateUntrusted,
        NSURLErrorServerCertificateHasUnknownRoot, NSURLErrorServerCertificateNotYetValid}}};
  for (const auto& [domain, mayHave, codes] : cases) {
    for (const auto code : codes) {
      const auto error = ZLVError::errorWithDomain(domain, code, {});
      EXPECT_EQ(error.requestMayHaveTakenEffect(), mayHave) << error.debugDescription();
      // On a later hop of a redirect.
      const auto later =
          ZLVError::errorWithDomain(domain, code, {{std::string(ZLVErrorRequestWasSentKey), true}});
      EXPECT_EQ(later.requestMayHaveTakenEffect(), mayHave || domain == NSURLErrorDomain);
    }
  }
}

TEST(Error, TheGuideHasEveryCodeAndSaysWhetherItMayHaveHappened) {
  std::ifstream guide(ZLV_SOURCES "/Docs/guides/errors.md");
  std::ifstream header(ZLV_SOURCES "/ZolvaCheckoutKit/ZLVError.h");
  const std::map<std::string, std::string_view> domains{
      {"ZLVErrorDomain", ZLVErrorDomain},
      {"ZLVCheckoutErrorDomain", ZLVCheckoutErrorDomain},
      {"NSURLErrorDomain", NSURLErrorDomain},
      {"NSCocoaErrorDomain", NSCocoaErrorDomain}};
  const std::map<std::string, std::vector<std::int64_t>> ranges{
      {"400 to 499", {400, 499}}, {"any other", {0, 200, 302, 399, 500, 599}}};
  const std::regex row("\\| `(\\w+)` \\| ([^|]+) \\| [^|]+ \\| (yes|no) \\| [^|]+ \\|");
  std::set<std::string> told;
  std::smatch cells;
  for (std::string line; std::getline(guide, line);) {
    if (!std::regex_match(line, cells, row)) continue;
    if (cells[1] == "NSURLErrorDomain") told.insert(cells[2]);
    const auto range = ranges.find(cells[2]);
    const auto codes =
        range == ranges.end() ? std::vector<std::int64_t>{std::stoll(cells[2])} : range->second;
    for (const auto code : codes) {
      const auto error = ZLVError::errorWithDomain(domains.at(cells[1]), code, {});
      EXPECT_EQ(error.requestMayHaveTakenEffect(), cells[3] == "yes") << line;
    }
  }
  std::set<std::string> known;
  for (std::string line; std::getline(header, line);) {
    if (std::regex_match(line, cells, std::regex("  NSURLError\\w+ = (-\\d+),")))
      known.insert(cells[1]);
  }
  EXPECT_FALSE(known.empty());
  EXPECT_EQ(told, known);
}

TEST(Error, Descriptions) {
  const auto checkout =
      ZLVError::errorWithDomain(ZLVCheckoutErrorDomain, -1, {{"Error message", "url is null"}});
  EXPECT_NE(checkout.localizedDescription().find("com.zolva.checkoutkit.checkout error -1"),
            std::string::npos);
  const auto server =
      ZLVError::errorWithDomain(ZLVErrorDomain, 406,
                                {{std::string(NSLocalizedDescriptionKey), "too\nlong,\r caf\xE9"},
                                 {std::string(NSLocalizedFailureReasonErrorKey), ZLVNull}});
  EXPECT_EQ(server.localizedFailureReason(), "<null>");
  EXPECT_EQ(server.debugDescription(),
            "Error Domain=com.zolva.checkoutkit Code=406 \"too\\nlong,\\r caf\uFFFD\" UserInfo="
            R"({"NSLocalizedDescription":"too\nlong,\r caf)"
            "\uFFFD\",\"NSLocalizedFailureReason\":null}");
}

TEST(Error, OnlyWhatTheLibrarySaysIsTranslatedAndOnlyWhereItIsShown) {
  const auto text = [](ZLVErrorText words) {
    return ZLVError::errorWithDomain(NSURLErrorDomain, NSURLErrorTimedOut, words);
  };
  const auto serverError = [](const ZLVValue& message) {
    return ZLVError::errorWithDomain(ZLVErrorDomain, 406,
                                     {{std::string(NSLocalizedDescriptionKey), message}});
  };
  const struct {
    ZLVError error;
    std::string english;
    std::string shown;
  } cases[] = {
      {text(ZLVErrorText("%s is late.", "caf\xE9 %s")), "caf\uFFFD %s is late.",
       "late: caf\uFFFD %s"},
      {text(ZLVErrorText("No one.")), "No one.", "nobody "},  // nothing to stand there
      {text(ZLVErrorText("Lost %s.", "it")), "Lost it.", "gone"},
      {text(ZLVErrorText("Unknown %s.", "x")), "Unknown x.", "Unknown x."},
      {std::get<ZLVError>(ZLVJSONSerialization::JSONObjectWithData("")), "The answer is empty.",
       "empty!"},
      {serverError("%s is late."), "%s is late.", "%s is late."},
      {serverError("Request failed."), "Request failed.", "Request failed."},
      {ZLVError::errorWithDomain(ZLVCheckoutErrorDomain, -1, {{"Error message", "url is null"}}),
       "The operation couldn\u2019t be completed. (com.zolva.checkoutkit.checkout error -1.)",
       "undone: com.zolva.checkoutkit.checkout error -1"}};
  for (const auto& row : cases) EXPECT_EQ(row.error.localizedDescription(), row.english);

  ZLVPlatform::install({.makeURLSession = [] { return nullptr; },
                        .mainQueue = std::make_shared<ZLVFakeMainQueue>(),
                        .systemLog = std::make_shared<ZLVFakeLog>(),
                        .device = std::make_shared<ZLVFakeDevice>(),
                        .userInterface = std::make_shared<ZLVFakeUserInterface>(),
                        .analyticsRootURL = std::nullopt,
                        .localizedText = [](const char* english) -> std::string {
                          static const std::map<std::string, std::string, std::less<>> translations{
                              {"%s is late.", "late: %s"},
                              {"No one.", "nobody %s"},
                              {"Lost %s.", "gone"},
                              {"The answer is empty.", "empty!"},
                              {"Request failed.", "failed!"},
                              {"The operation couldn\u2019t be completed. (%s.)", "undone: %s"}};
                          const auto found = translations.find(english);
                          return found == translations.end() ? english : found->second;
                        }});
  for (const auto& row : cases) {
    EXPECT_EQ(row.error.localizedDescription(), row.shown);
    // What is logged, uploaded and compared knows nothing of languages.
    EXPECT_NE(row.error.debugDescription().find(" \"" + row.english), std::string::npos);
    EXPECT_EQ(row.error, ZLVError::errorWithDomain(row.error.domain(), row.error.code(),
                                                   row.error.userInfo()));
  }
}

TEST(Error, DiagnosisIsShortAndKeepsSecrets) {
  const auto diagnosis = [](std::string_view key, const ZLVValue& value) {
    const auto error = ZLVError::errorWithDomain(ZLVErrorDomain, 1, {{std::string(key), value}});
    EXPECT_EQ(error.userInfo()[key], value);
    return error.debugDescription();
  };
  // Cut at each of the three bytes of a character.
  for (std::string message : {"", "1", "12"}) {
    const auto start = message + "\u20ac";
    while (message.size() < 1'000'000) message += "\u20ac";
    for (const auto key : {NSLocalizedDescriptionKey, NSLocalizedFailureReasonErrorKey}) {
      const auto text = diagnosis(key, message);
      EXPECT_TRUE(text.size() > 4090 && text.size() <= 4096) << text.size();
      ASSERT_TRUE(text.ends_with("\u20ac\u2026 (cut)"));
      const auto shown = text.substr(text.find(start));
      EXPECT_TRUE(message.starts_with(shown.substr(0, shown.find("\u2026"))));
    }
  }
  const auto longest = std::string(4096 - diagnosis("k", "").size(), 'x');
  EXPECT_TRUE(diagnosis("k", longest).ends_with("xx\"}"));
  EXPECT_TRUE(diagnosis("k", longest + "x").ends_with("xx\u2026 (cut)"));

  const std::pair<const char*, const char*> urls[] = {
      {"https://me:p@ss@shop.test:1/a@b?token=/c#d", "\"https://shop.test:1/a@b\""},
      {"https://me@shop.test?token", "\"https://shop.test\""},
      {"https://shop.test#token", "\"https://shop.test\""},
      {"app://done?token", "\"app://done\""},
      {"mailto:a@b.c?body", "\"mailto:a@b.c\""}};
  for (const auto& [url, shown] : urls) {
    const auto text = diagnosis(NSURLErrorFailingURLStringErrorKey, url);
    EXPECT_NE(text.find(shown), std::string::npos) << text;
  }
}
