#include "Apps/Shop/Checkout/Problem.h"

#include <algorithm>
#include <string_view>

namespace {

struct Explanation {
  std::string_view domain;
  std::int64_t from, to;
  const char* title;
  /// Empty where the error's own words say it better.
  const char* advice;
};

// The first that fits.
constexpr Explanation explanations[] = {
    {NSURLErrorDomain, -1022, -1022, "The connection is not secure",
     "The shop's address must begin with https."},
    {NSURLErrorDomain, -1299, -1200, "The connection is not secure",
     "Nothing was sent. Check the date on this device, or try another network."},
    {NSURLErrorDomain, -1009, -1009, "You are offline", "Connect to the internet and try again."},
    {NSURLErrorDomain, -1005, -1005, "The connection was lost",
     "It ended before the shop had answered."},
    {NSURLErrorDomain, -1004, -1003, "The shop cannot be reached",
     "Check your connection and try again."},
    {NSURLErrorDomain, -1001, -1001, "The shop does not answer", "Try again in a moment."},
    {NSURLErrorDomain, INT64_MIN, INT64_MAX, "The connection failed", ""},
    {NSCocoaErrorDomain, INT64_MIN, INT64_MAX, "The shop's answer makes no sense",
     "Try again later. If it stays that way, tell us at the counter."},
    {ZLVCheckoutErrorDomain, INT64_MIN, INT64_MAX, "The wallet's page cannot be opened",
     "The shop did not say where it is. Try again, or pay at the counter."},
    {ZLVErrorDomain, 400, 400, "Please check what you entered", ""},
    {ZLVErrorDomain, 403, 404, "Your wallet is not linked any more",
     "Link it again to pay with it."},
    {ZLVErrorDomain, 500, 599, "The shop has a problem of its own", "Try again in a few minutes."},
    {"", INT64_MIN, INT64_MAX, "That did not work", ""},
};

}  // namespace

Problem problemFromError(const ZLVError& error) {
  const auto domain = error.domain();
  const auto* explanation = std::ranges::find_if(explanations, [&](const Explanation& candidate) {
    return (candidate.domain.empty() || candidate.domain == domain) &&
           candidate.from <= error.code() && error.code() <= candidate.to;
  });
  std::string advice = explanation->advice;
  if (advice.empty()) {
    advice = error.localizedDescription();
    const auto reason = error.localizedFailureReason();
    if (!reason.empty() && reason != advice) advice += "\n" + reason;
  }
  return {explanation->title, std::move(advice)};
}

bool isRefusal(const ZLVError& error, Refusal refusal) {
  return error.domain() == ZLVErrorDomain && error.code() == static_cast<std::int64_t>(refusal);
}

bool isAccountGone(const ZLVError& error) {
  return isRefusal(error, Refusal::NotLinked) || isRefusal(error, Refusal::NotFound);
}
