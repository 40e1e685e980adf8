#include <utility>

#include <ZolvaCheckoutKit/Core/Analytics/ZLVAnalyticsTracker.h>
#include <ZolvaCheckoutKit/Core/Helpers/ZLVDeviceHelper.h>
#include <ZolvaCheckoutKit/Core/Network/ZLVNetwork.h>
#include <ZolvaCheckoutKit/Core/Values/ZLVText.h>
#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>
#include <ZolvaCheckoutKit/ZLVVendor.h>

namespace {

constexpr std::string_view defaultRootURL = "https://api.clevertap.com/";
constexpr std::string_view uploadPath = "1/upload";
/// What the service knows this library as, in every release.
constexpr std::string_view sdkVersion = "0.1.1";

/// `value`, which the call cannot do without.
ZLVValue required(ZLVValue value, std::string_view what, std::string_view call) {
  if (!value.isAbsent()) return value;
  throw ZLVProgrammingFault(
      ZLVStringWithFormat("%@: no %@, so no analytics record can be built", {call, what}));
}

ZLVValue merchantId(std::string_view call) {
  return required(ZLVVendor::shared().merchantId(),
                  "merchant id (give one to initWithMerchantServerURL)", call);
}

ZLVValue applicationVersion(std::string_view call) {
  return required(ZLVDeviceHelper::applicationVersion(),
                  "application version (give one to the platform)", call);
}

ZLVValue deviceName(std::string_view call) {
  return required(ZLVDeviceHelper::deviceName(), "device name", call);
}

ZLVValue osVersion(std::string_view call) {
  return required(ZLVDeviceHelper::osVersion(), "operating system version", call);
}

ZLVDictionary deviceFacts(std::string_view call) {
  // Asked in this order: the fault names the first that is missing.
  auto applicationVersion = ::applicationVersion(call);
  auto deviceName = ::deviceName(call);
  auto deviceModel = ZLVDeviceHelper::deviceModel();
  auto osVersion = ::osVersion(call);
  return {{"OS", "iOS"},  // and listed in the order of keys, which is then not looked for
          {"OS version", std::move(osVersion)},
          {"app version", std::move(applicationVersion)},
          {"device model", std::move(deviceModel)},
          {"device name", std::move(deviceName)},
          {"sdk version", sdkVersion}};
}

ZLVDictionary profile(const ZLVValue& identity, ZLVDictionary profileData) {
  profileData.set("name", identity);
  return {{"identity", identity}, {"profileData", std::move(profileData)}, {"type", "profile"}};
}

void sendEvent(std::string_view eventName, ZLVDictionary eventData) {
  constexpr std::string_view call = "trackEventName";
  ZLVDictionary event{{"evtData", std::move(eventData)},
                      {"evtName", eventName},
                      {"identity", merchantId(call)},
                      {"type", "event"}};
  ZLVAnalyticsTracker::shared().sendAnalyticRequest(
      {std::move(event), profile(merchantId(call), {})});
}

}  // namespace

ZLVAnalyticsTracker& ZLVAnalyticsTracker::shared() {
  static ZLVAnalyticsTracker tracker;
  return tracker;
}

void ZLVAnalyticsTracker::trackEventName(std::string_view eventName) {
  sendEvent(eventName, deviceFacts("trackEventName"));
}

void ZLVAnalyticsTracker::trackEventName(std::string_view eventName,
                                         ZLVValue additionalParameters) {
  auto eventData = deviceFacts("trackEventName");
  eventData.set("details", required(std::move(additionalParameters), "additional parameters",
                                    "trackEventName"));
  sendEvent(eventName, std::move(eventData));
}

void ZLVAnalyticsTracker::setIdentity(const ZLVValue& identity) {
  constexpr std::string_view call = "setIdentity";
  auto facts = deviceFacts(call);
  sendAnalyticRequest({profile(required(identity, "merchant id", call), std::move(facts))});
}

void ZLVAnalyticsTracker::sendAnalyticRequest(ZLVArray records) {
  const auto& rootURL = ZLVPlatform::installed().analyticsRootURL;
  ZLVNetwork::shared().request(
      ZLVNetworkService::initWithBaseURL(
          rootURL.value_or(std::string(defaultRootURL)), std::string(uploadPath), ZLVHTTPMethodPost,
          ZLVDictionary{{"d", std::move(records)}}, ZLVServiceTypeAnalytics),
      {});
}

void ZLVAnalyticsTracker::requireEvents(std::string_view call) const {
  merchantId(call);
  applicationVersion(call);
  deviceName(call);
  osVersion(call);
}
