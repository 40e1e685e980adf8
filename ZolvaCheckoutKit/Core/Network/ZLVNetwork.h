#pragma once

#include <memory>
#include <optional>

#include <ZolvaCheckoutKit/Core/Network/ZLVNetworkService.h>
#include <ZolvaCheckoutKit/Platform/ZLVURLSession.h>
#include <ZolvaCheckoutKit/ZLVValue.h>

/// Sends the library's HTTP calls and judges their answers.
///
/// The only place that logs, that leaves the session's thread for the main queue, and that turns a
/// server's failure into an error. Every call is sent once; nothing is retried, queued or cached.
class ZLVNetwork {
 public:
  /// Receives the decoded answer (a dictionary or an array) or an error, never both.
  using CompletionHandler = ZLVOnce<void(ZLVValue answer, std::optional<ZLVError> error)>;

  /// The shared executor, made on the first call and kept until the process ends.
  static ZLVNetwork& shared();

  /// An executor with a session of its own from the installed platform.
  ZLVNetwork();

  /// Sends the call and returns at once; any thread. `completion`, which may be null, runs once, on
  /// the main queue; where the session or the queue lets go of it, it is destroyed uncalled. Throws
  /// `ZLVProgrammingFault` when no request can be built.
  void request(const std::shared_ptr<const ZLVNetworkService>& service,
               CompletionHandler completion);

 private:
  std::unique_ptr<ZLVURLSession> session_;
};
