#include <gtest/gtest.h>

#include "Tests/Support/FakePlatform.h"
#include "ZolvaCheckoutKit/Core/Analytics/ZLVAnalyticsTracker.h"
#include "ZolvaCheckoutKit/Core/Helpers/ZLVDeviceHelper.h"

class Analytics : public testing::Test {
 protected:
  FakePlatform platform;
};

TEST_F(Analytics, EventsAndProfiles) {
  FakePlatform::configure();
  const auto& request = platform.session.analytics.at(0).request;
  EXPECT_EQ(request.HTTPMethod, "POST");
  EXPECT_EQ(request.URL->absoluteString(), "https://analytics.test/1/upload");
  const ZLVDictionary facts{{"app version", "2.5"},
                            {"sdk version", "0.1.1"},
                            {"device name", "Ad\uFFFD's phone"},
                            {"device model", "model9,9"},
                            {"OS", "iOS"},
                            {"OS version", "17.0"}};
  auto named = facts;
  named.set("name", "M1");
  ZLVDictionary profile{{"type", "profile"}, {"identity", "M1"}, {"profileData", named}};
  EXPECT_EQ(platform.lastUpload(), (ZLVArray{profile}));

  auto& tracker = ZLVAnalyticsTracker::shared();
  tracker.setIdentity("M2");
  tracker.trackEventName("Enquire Account Success");
  profile.set("profileData", ZLVDictionary{{"name", "M1"}});
  const ZLVDictionary event{{"type", "event"},
                            {"identity", "M1"},
                            {"evtName", "Enquire Account Success"},
                            {"evtData", facts}};
  EXPECT_EQ(platform.lastUpload(), (ZLVArray{event, profile}));
}

TEST(AnalyticsService, HasADefaultAddress) {
  const FakePlatform platform(std::nullopt);
  FakePlatform::configure();
  EXPECT_EQ(platform.session.analytics.at(0).request.URL->absoluteString(),
            "https://api.clevertap.com/1/upload");
}

TEST_F(Analytics, AreUnderWayAsTheCallsAreUntilTheyEnd) {
  // Nothing is answered, then everything.
  const auto isIdle = [this](bool isAnswered) {
    return ZLVActivity::runUntilIdle({}, [this, isAnswered](std::chrono::milliseconds) {
      platform.queue->drain();
      if (!isAnswered) return;
      for (auto& task : std::exchange(platform.session.analytics, {})) task.answer(500, "no");
      platform.queue->drain();
    });
  };
  EXPECT_TRUE(isIdle(false));
  FakePlatform::configure();
  EXPECT_FALSE(isIdle(false));
  EXPECT_TRUE(isIdle(true));

  // A call, what its completion starts, and a completion that waits for the rest itself.
  int completed = 0;
  ZLVClient::enquireAccountWithAccountID("a", [&](const auto&, const auto&) {
    ++completed;
    ZLVClient::disableAccountWithAccountID("a", [&](const auto&, const auto&) {
      ++completed;
      EXPECT_TRUE(isIdle(true));
    });
  });
  for (int answered = 0; answered < 2; ++answered) {
    EXPECT_FALSE(isIdle(true));
    EXPECT_EQ(completed, answered);
    platform.session.merchant.back().answer(200, R"({"status_code":"200"})");
  }
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
  ZLVVendor::shared().setMerchantSeverURL("https://shop.test");
  ZLVVendor::shared().setMerchantId("M1");
  for (auto fact : {&FakeDevice::version, &FakeDevice::deviceName, &FakeDevice::system}) {
    const auto kept = std::exchange((*platform.device).*fact, std::nullopt);
    EXPECT_THROW(tracker.trackEventName("x"), ZLVProgrammingFault);
    EXPECT_THROW(tracker.setIdentity("x"), ZLVProgrammingFault);
    EXPECT_THROW(ZLVClient::enquireAccountWithAccountID("a", {}), ZLVProgrammingFault);
    (*platform.device).*fact = kept;
  }
  EXPECT_THROW(tracker.trackEventName("x", {}), ZLVProgrammingFault);
  EXPECT_TRUE(platform.session.analytics.empty() && platform.session.merchant.empty());
}

TEST_F(Analytics, DeviceFacts) {
  auto& device = *platform.device;
  EXPECT_EQ(ZLVDeviceHelper::screenSize(), (ZLVSize{390, 844}));
  device.screen.reset();
  EXPECT_EQ(ZLVDeviceHelper::screenSize(), ZLVSize{});

  const std::string longest(99, 'm');
  const std::pair<std::optional<std::string>, std::string> models[] = {
      {longest, longest}, {longest + "m", ""}, {std::nullopt, ""}};
  for (const auto& [model, expected] : models) {
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
  EXPECT_EQ(std::get<0>(ZLVDeviceHelper::deviceLanguage()), device.localizations);

  using Threads = ZLVDevice::Threads;
  using Usage = ZLVThreadUsage;
  const std::pair<std::optional<Threads>, float> usages[] = {
      {std::nullopt, -1.0F},
      {Threads{}, 0.0F},
      {Threads{Usage{1000, false}, Usage{1000, false}, Usage{500, true}}, 200.0F},
      {Threads{Usage{123, false}}, 12.3F},
      {Threads{Usage{1000, false}, std::nullopt}, -1.0F}};
  for (const auto& [threads, expected] : usages) {
    device.usage = threads;
    EXPECT_FLOAT_EQ(ZLVDeviceHelper::currentCPUUsage(), expected);
  }
}
