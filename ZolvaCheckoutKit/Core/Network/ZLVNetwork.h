#pragma once

#include <memory>

#include <ZolvaCheckoutKit/Core/Network/ZLVCompletion.h>
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
  using Completion = ZLVCompletion<ZLVValue>;

  /// The shared executor, made on the first call and kept until the process ends.
  static ZLVNetwork& shared();

  /// An executor with a session of its own from the installed platform.
  ZLVNetwork();

  /// Sends the call and returns at once; any thread. `completion` runs once, on the main queue. The
  /// request is built before the completion is taken: a programming fault leaves it uncalled.
  void request(std::shared_ptr<const ZLVNetworkService> service, Completion::Handler completion);

 private:
  std::unique_ptr<ZLVURLSession> session_;
};
