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
  return {{"app version", applicationVersion(call)},
          {"sdk version", sdkVersion},
          {"device name", deviceName(call)},
          {"device model", ZLVDeviceHelper::deviceModel()},
          {"OS", "iOS"},
          {"OS version", osVersion(call)}};
}

ZLVDictionary profile(const ZLVValue& identity, ZLVDictionary profileData) {
  profileData.set("name", identity);
  return {{"type", "profile"}, {"identity", identity}, {"profileData", std::move(profileData)}};
}

void sendEvent(std::string_view eventName, ZLVDictionary eventData) {
  constexpr std::string_view call = "trackEventName";
  ZLVDictionary event{{"identity", merchantId(call)},
                      {"type", "event"},
                      {"evtName", eventName},
                      {"evtData", std::move(eventData)}};
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
