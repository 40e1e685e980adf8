#pragma once

// The whole library in this process over the Linux backend, with a session that the test can
// change.

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxMainQueue.h>
#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>
#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

class Library {
 public:
  static constexpr const char* account = "acc-1";

  /// Installs and configures it; once in a process. Analytics go to `analyticsRoot`, the merchant's
  /// calls below `server`.
  Library(const std::string& analyticsRoot, const std::string& server);
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() = default;

  static ZLVLinuxOptions options();

  /// Goes on with a new session. Calls under way on the one before are cancelled.
  void renewSession(const ZLVLinuxOptions& options = Library::options());
  /// Goes on without a session.
  void endSession();
  /// Of all calls from now on, in seconds.
  void setTimeoutInterval(double seconds);

  /// What a completion got: an error, or a record as its dictionary.
  struct Outcome {
    std::optional<ZLVError> error;
    std::string record;
  };
  using Completion = std::function<void(Outcome)>;
  static void enquire(const Completion& completion);
  static void charge(const Completion& completion);

  /// Makes the call and runs the main queue until it is answered, which must be once.
  Outcome outcomeOf(void (*call)(const Completion&)) const;

  [[nodiscard]] ZLVLinuxMainQueue& queue() const { return *queue_; }

 private:
  struct Sessions;

  void replaceSession(std::shared_ptr<ZLVURLSession> session);

  std::shared_ptr<ZLVLinuxMainQueue> queue_ = ZLVLinuxMainQueue::mainQueue();
  std::shared_ptr<Sessions> sessions_;
};
