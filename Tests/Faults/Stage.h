#pragma once

// Where the faults are played: the library, a server that misbehaves in one call and others that
// never do.

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "Tests/Faults/Library.h"
#include "Tests/Support/RawServer.h"
#include "Tests/Support/TLSIdentity.h"

/// One call that goes wrong, and how.
struct Fault {
  std::string what;
  /// To the call, or to the first `times` requests of it.
  RawServer::Reply reply = {};
  double timeoutInterval = 60;
  std::size_t maximumAnswerSize = std::size_t{8} * 1024 * 1024;
  int times = 1'000'000;
  /// Ends as well, and in the same way, when the reply is cut anywhere.
  bool isCutAnywhere = false;
  void (*call)(const Library::Completion&) = &Library::enquire;
  /// The answer to a call before, which leaves the session with a connection.
  std::optional<RawServer::Reply> earlierReply = {};
  std::shared_ptr<SSL_CTX> tls = nullptr;
  /// What else happens before the call.
  std::function<void(RawServer&)> arrange = {};
  /// Called in place of the server; ends in ":" where the server's port is to follow.
  std::string url = {};
  /// Whether the document says how often the request was sent.
  bool tellsTimesSent = false;
};

class Stage {
 public:
  Stage();
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;
  ~Stage();

  /// The line of the document about the fault.
  std::string play(const Fault& fault);

  /// A server of the same library's that always answers properly.
  [[nodiscard]] const RawServer& bystander() const { return bystander_; }
  /// Refuses to connect to anything; the way to https servers with names ending in ".test".
  [[nodiscard]] RawServer& proxy() { return proxy_; }
  /// The library trusts it.
  [[nodiscard]] const TLSIdentity& authority() const { return authority_; }

  static std::string goodAnswer();

 private:
  std::string outcome(const Fault& fault);
  bool works(const std::string& server);

  const TLSIdentity authority_{{.isAuthority = true}};
  const std::filesystem::path authorityFile_;
  RawServer bystander_, proxy_;
  std::optional<Library> library_;
};
