#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <Sandbox/Exchange.h>
#include <Sandbox/Misbehaviour.h>

/// The currency of every account and charge.
inline constexpr std::string_view ZLVSandboxCurrency = "EUR";
/// What a newly activated account holds in its wallet, and what it can still pay later.
inline constexpr double ZLVSandboxWalletBalance = 500.00;
inline constexpr double ZLVSandboxPayLaterBalance = 1000.00;
/// A charge above this must be verified by the user.
inline constexpr double ZLVSandboxVerificationLimit = 100.00;

/// One record of an analytics upload.
struct ZLVSandboxEvent {
  /// "event" or "profile".
  std::string type;
  std::string identity;
  /// The event's name; empty for a profile.
  std::string name;
  /// The whole record, as JSON.
  std::string record;
  /// The headers of the upload that brought it.
  ZLVSandboxHeaders headers;
};

struct ZLVSandboxOptions {
  /// 0 lets the system choose.
  std::uint16_t port = 0;
  /// The shop's name on the wallet's pages.
  std::string merchantName = "Sandbox Shop";
  /// Called for each request with the status it is answered with, before the answer is sent; on the
  /// connection's thread, so on several at once. Must not call `stop`.
  std::function<void(const ZLVSandboxRequest& request, unsigned status)> observer{};
};

/// A merchant's server, the wallet's pages and the analytics collector, served over real HTTP on
/// 127.0.0.1 from inside this process.
///
/// ```cpp
/// ZLVSandbox sandbox;
/// sandbox.misbehave({.pathPrefix = "/v2/charge"}, {.status = 503});
/// ZLVClient::initWithMerchantServerURL(sandbox.baseURL(), "M-1", "shop://done", false);
/// ```
///
/// Accounts, charges, requests and events live in memory and go with it. Every operation may be
/// called on any thread.
class ZLVSandbox {
 public:
  /// Decides how each request is misbehaved to; called as the observer is, also for requests that
  /// get a proper answer.
  using Faults = std::function<ZLVMisbehaviour(const ZLVSandboxRequest& request)>;

  /// Serves when it returns. Throws `std::runtime_error` when the port is not to be had.
  explicit ZLVSandbox(ZLVSandboxOptions options = {});
  ~ZLVSandbox();

  [[nodiscard]] std::uint16_t port() const;
  /// "http://127.0.0.1:PORT", the merchant server's URL; the analytics root URL is this and "/".
  [[nodiscard]] std::string baseURL() const;

  /// Answers as the server does, without a connection; what would become of that is told beside it.
  [[nodiscard]] std::pair<ZLVSandboxAnswer, ZLVMisbehaviour> exchange(
      const ZLVSandboxRequest& request);

  /// Closes every connection, stalled ones too, and returns when nothing runs any more. What was
  /// received can still be read.
  void stop();

  /// Plans a misbehaviour. Of several that match, the one planned first is used up first.
  void misbehave(ZLVSandboxMatch match, ZLVMisbehaviour misbehaviour);
  /// Leaves requests for which nothing is planned to `faults`; an empty one ends that.
  void misbehave(Faults faults);

  /// Every request so far, in the order of arrival, those to `/sandbox/` aside.
  [[nodiscard]] std::vector<ZLVSandboxRequest> requests() const;
  /// Every analytics record so far, in the order of arrival.
  [[nodiscard]] std::vector<ZLVSandboxEvent> events() const;
  /// Waits until there are that many; false when `timeout` passes first.
  [[nodiscard]] bool waitForRequests(std::size_t count, std::chrono::milliseconds timeout) const;
  [[nodiscard]] bool waitForEvents(std::size_t count, std::chrono::milliseconds timeout) const;

 private:
  struct Implementation;
  std::unique_ptr<Implementation> implementation_;
};
