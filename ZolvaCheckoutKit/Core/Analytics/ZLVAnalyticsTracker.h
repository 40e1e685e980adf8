#pragma once

#include <string>
#include <string_view>

#include <ZolvaCheckoutKit/ZLVValue.h>

/// The names of the events.
namespace ZLVEvent {
inline constexpr std::string_view linkAccountSuccess = "Link Account Success";
inline constexpr std::string_view linkAccountError = "Link Account Error";
inline constexpr std::string_view linkAccountWebviewOpened = "Link Account Webview is Opened";
inline constexpr std::string_view createTransactionSuccess = "Create Transaction Success";
inline constexpr std::string_view createTransactionError = "Create Transaction Error";
inline constexpr std::string_view createTransactionWebviewOpened =
    "Create Transaction Webview is Opened";
inline constexpr std::string_view enquireAccountSuccess = "Enquire Account Success";
inline constexpr std::string_view enquireAccountError = "Enquire Account Error";
inline constexpr std::string_view unlinkAccountSuccess = "Unlink Account Success";
inline constexpr std::string_view unlinkAccountError = "Unlink Account Error";
}  // namespace ZLVEvent

/// Reports to the analytics service what happens in the library and who the merchant is.
///
/// Fire and forget: a call builds its records from the configuration and the device as they are,
/// hands them to the network and returns; how the upload ends is never looked at. Every value of a
/// record is required: a missing one throws `ZLVProgrammingFault` and nothing is sent. Any thread.
class ZLVAnalyticsTracker {
 public:
  /// The one instance.
  static ZLVAnalyticsTracker& shared();

  /// Uploads an event and a short profile.
  void trackEventName(std::string_view eventName);
  /// The same with a value that is placed under "details".
  void trackEventName(std::string_view eventName, ZLVValue additionalParameters);
  /// Uploads the merchant's whole profile. Later events still take their identity from the
  /// configuration.
  void setIdentity(const ZLVValue& identity);
  /// Uploads a list of records.
  void sendAnalyticRequest(ZLVArray records);

  /// Throws `ZLVProgrammingFault`, naming `call`, when no event could be built now.
  void requireEvents(std::string_view call) const;

 private:
  ZLVAnalyticsTracker() = default;
};
