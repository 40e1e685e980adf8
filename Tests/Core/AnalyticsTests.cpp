#include <gtest/gtest.h>

#include "Tests/Support/FakePlatform.h"
#include "ZolvaCheckoutKit/Core/Analytics/ZLVAnalyticsTracker.h"
#include "ZolvaCheckoutKit/Core/Helpers/ZLVDeviceHelper.h"

namespace {

const ZLVDictionary facts{{"app version", "2.5"},
                          {"sdk version", "0.1.1"},
                          {"device name", "Ad\uFFFD's phone"},
                          {"device model", "model9,9"},
                          {"OS", "iOS"},
                          {"OS version", "17.0"}};

ZLVDictionary with(ZLVDictionary dictionary, std::string_view key, ZLVValue value) {
  dictionary.set(key, std::move(value));
  return dictionary;
}

class Analytics : public testing::Test {
 protected:
  FakePlatform platform;
};

}  // namespace

TEST_F(Analytics, EventsAndProfiles) {
  FakePlatform::configure();
  auto& tracker = ZLVAnalyticsTracker::shared();
  ASSERT_EQ(platform.session.analytics.size(), 1U);
  const auto& request = platform.session.analytics.front().request;
  EXPECT_EQ(request.HTTPMethod, "POST");
  EXPECT_EQ(request.URL->absoluteString(), "https://analytics.test/1/upload");
  EXPECT_EQ(
      platform.lastUpload(),
      (ZLVArray{ZLVDictionary{
          {"type", "profile"}, {"identity", "M1"}, {"profileData", with(facts, "name", "M1")}}}));

  tracker.setIdentity("M2");
  tracker.trackEventName("Enquire Account Success");
  const ZLVDictionary profile{
      {"type", "profile"}, {"identity", "M1"}, {"profileData", ZLVDictionary{{"name", "M1"}}}};
  ZLVDictionary event{{"type", "event"},
                      {"identity", "M1"},
                      {"evtName", "Enquire Account Success"},
                      {"evtData", facts}};
  EXPECT_EQ(platform.lastUpload(), (ZLVArray{event, profile}));

  tracker.trackEventName("Enquire Account Success", ZLVDictionary{{"any", "value"}});
  event.set("evtData", with(facts, "details", ZLVDictionary{{"any", "value"}}));
  EXPECT_EQ(platform.lastUpload(), (ZLVArray{event, profile}));

  // How the upload ends changes nothing.
  for (auto& task : platform.session.analytics) task.answer(500, "no");
  EXPECT_EQ(platform.queue->size(), 0U);
}

TEST(AnalyticsService, HasADefaultAddress) {
  const FakePlatform platform(std::nullopt);
  FakePlatform::configure();
  ASSERT_EQ(platform.session.analytics.size(), 1U);
  EXPECT_EQ(platform.session.analytics.front().request.URL->absoluteString(),
            "https://api.clevertap.com/1/upload");
}

TEST_F(Analytics, AreUnderWayAsTheCallsAreUntilTheyEnd) {
  // Nothing is answered, then everything.
  const auto isIdle = [this](bool isAnswered) {
    return ZLVActivity::runUntilIdle({}, [this, isAnswered](std::chrono::milliseconds) {
      platform.queue->drain();
      for (auto& task : std::exchange(platform.session.analytics, {})) {
        if (isAnswered)
          task.answer(500, "no");
        else
          platform.session.analytics.push_back(std::move(task));
      }
      platform.queue->drain();
    });
  };
  EXPECT_TRUE(isIdle(false));
  FakePlatform::configure();
  EXPECT_FALSE(isIdle(false));
  EXPECT_TRUE(isIdle(true));

  // A call, what its completion starts, and a completion that waits for the rest itself.
  const auto answer = [this] {
    platform.session.merchant.back().answer(200, R"({"status_code":"200"})");
  };
  int completed = 0;
  ZLVClient::enquireAccountWithAccountID("a", [&](const auto&, const auto&) {
    ++completed;
    ZLVClient::disableAccountWithAccountID("a", [&](const auto&, const auto&) {
      ++completed;
      EXPECT_TRUE(isIdle(true));
    });
  });
  EXPECT_FALSE(isIdle(true));
  answer();
  EXPECT_FALSE(isIdle(true));
  answer();
  EXPECT_TRUE(isIdle(true));
  EXPECT_EQ(completed, 2);

  // A call that its session loses is answered, and is under way until then.
  ZLVClient::enquireAccountWithAccountID("a", [&](const auto&, const auto&) { ++completed; });
  platform.session.merchant.clear();
  EXPECT_TRUE(isIdle(true));
  EXPECT_EQ(completed, 3);
}

TEST_F(Analytics, AMissingFactIsAFaultAndSendsNothing) {
  auto& tracker = ZLVAnalyticsTracker::shared();
  EXPECT_THROW(tracker.trackEventName("before configuration"), ZLVProgrammingFault);
  EXPECT_THROW(ZLVClient::initWithMerchantServerURL("https://shop.test", {}, {}, false),
               ZLVProgrammingFault);
  EXPECT_EQ(ZLVVendor::shared().merchantSeverURL(), "https://shop.test");
  EXPECT_THROW(ZLVClient::enquireAccountWithAccountID("a", {}), ZLVProgrammingFault);
  ZLVVendor::shared().setMerchantId("M1");
  EXPECT_THROW(ZLVClient::initWithMerchantServerURL("https://shop.test", {}, {}, false),
               ZLVProgrammingFault);
  EXPECT_FALSE(ZLVVendor::shared().merchantId());
  ZLVVendor::shared().setMerchantId("M1");
  for (auto fact : {&FakeDevice::version, &FakeDevice::deviceName, &FakeDevice::system}) {
    const auto kept = std::exchange((*platform.device).*fact, std::nullopt);
    EXPECT_THROW(tracker.trackEventName("x"), ZLVProgrammingFault);
    EXPECT_THROW(tracker.setIdentity("x"), ZLVProgrammingFault);
    EXPECT_THROW(ZLVClient::enquireAccountWithAccountID("a", {}), ZLVProgrammingFault);
    (*platform.device).*fact = kept;
  }
  EXPECT_THROW(tracker.trackEventName("x", {}), ZLVProgrammingFault);
  EXPECT_TRUE(platform.session.analytics.empty());
  EXPECT_TRUE(platform.session.merchant.empty());
}

TEST_F(Analytics, DeviceFacts) {
  auto& device = *platform.device;
  EXPECT_EQ(ZLVDeviceHelper::screenSize(), (ZLVSize{390, 844}));
  device.screen.reset();
  EXPECT_EQ(ZLVDeviceHelper::screenSize(), ZLVSize{});

  for (const auto& [model, expected] :
       {std::pair{std::optional(std::string(99, 'm')), std::string(99, 'm')},
        {std::optional(std::string(100, 'm')), std::string()},
        {std::nullopt, std::string()}}) {
    device.model = model;
    EXPECT_EQ(ZLVDeviceHelper::deviceModel(), expected);
  }

  EXPECT_FALSE(ZLVDeviceHelper::deviceCurrentLanguage());
  for (const auto& [preferred, expected] :
       {std::pair{"en_US", "en"}, {"en-US", "en"}, {"zh-Hant_TW", "zh"}, {"gsw", "gsw"}}) {
    device.languages = {preferred, "fr"};
    EXPECT_EQ(ZLVDeviceHelper::deviceCurrentLanguage(), expected);
  }

  EXPECT_EQ(std::get<std::string>(ZLVDeviceHelper::deviceLanguage()), "ID");
  device.localizations = {"fr", "en"};
  EXPECT_EQ(std::get<std::vector<std::string>>(ZLVDeviceHelper::deviceLanguage()),
            device.localizations);
}

TEST_F(Analytics, CPUUsageIsSummedOverBusyThreads) {
  using Usage = ZLVThreadUsage;
  const std::pair<std::optional<ZLVDevice::Threads>, float> cases[] = {
      {std::nullopt, -1.0F},
      {ZLVDevice::Threads{}, 0.0F},
      {ZLVDevice::Threads{Usage{1000, false}, Usage{1000, false}, Usage{500, true}}, 200.0F},
      {ZLVDevice::Threads{Usage{123, false}}, 12.3F},
      {ZLVDevice::Threads{Usage{1000, false}, std::nullopt}, -1.0F}};
  for (const auto& [threads, expected] : cases) {
    platform.device->usage = threads;
    EXPECT_FLOAT_EQ(ZLVDeviceHelper::currentCPUUsage(), expected);
  }
}
