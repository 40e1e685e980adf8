#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

/// What a call looked like on its way, which the library does not tell.
struct Exchange {
  /// 0 when there is no answer.
  int status = 0;
  /// Absent when the library's own session made the call.
  std::optional<std::string> contentType{};
  std::string body{};
  /// Why there is no answer; empty when there is one, or when nothing was sent.
  std::string fault{};
  /// The server closed the connection of the call before, although it did not say it would.
  bool wasDropped = false;
};

/// What the doctor and its session know of each other; the session writes before it answers.
struct DoctorView {
  std::string server;
  std::optional<std::string> CAFile;
  std::chrono::milliseconds limit{};
  /// Whether the next call goes out as it does in every application.
  bool isThroughLibrary = false;
  Exchange exchange{};
  /// Makes the call; the session, which the library keeps until the process ends, joins nothing.
  std::jthread call{};
};

/// A session that shows what comes back as it came: no redirect is followed, and nothing is sent
/// twice. Usage events are dropped: a check is no use.
class DoctorSession final : public ZLVURLSession {
 public:
  /// `library` is the session that applications use.
  DoctorSession(std::unique_ptr<ZLVURLSession> library, std::shared_ptr<DoctorView> view);

  void dataTask(ZLVURLRequest request, CompletionHandler handler) override;

 private:
  ZLVURLAnswer perform(const ZLVURLRequest& request);

  std::unique_ptr<ZLVURLSession> library_;
  std::shared_ptr<DoctorView> view_;
  std::unique_ptr<void, void (*)(void*)> handle_;
  bool staysOpen_ = false;  // as far as the last answer says
};
