#pragma once

// Where the faults are played: the library, a server that misbehaves in one call and others that
// never do.

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Tests/Faults/Library.h"
#include "Tests/Support/RawServer.h"
#include "Tests/Support/TLSIdentity.h"

class Stage;

/// One call that goes wrong, and how.
struct Fault {
  /// What the document says of the fault besides the outcome.
  enum class Telling { Outcome, TimesSent, SentElsewhere };

  std::string what;
  /// To the call, or to the first `times` requests of it.
  RawServer::Reply reply = {};
  int times = 1'000'000;
  /// Cuts the reply after every number of bytes, for a call each.
  bool isCutAnywhere = false;
  void (*call)(const Library::Completion&) = &Library::enquire;
  /// The answer to a call before, which leaves the session with a connection.
  std::optional<RawServer::Reply> earlierReply = {};
  std::shared_ptr<SSL_CTX> tls = nullptr;
  /// What else happens before the call.
  std::function<void(RawServer&)> arrange = {};
  /// Called in place of the server; ends in ":" where the server's port is to follow.
  std::string url = {};
  double timeoutInterval = 60;
  std::size_t maximumAnswerSize = std::size_t{8} * 1024 * 1024;
  Telling telling = Telling::Outcome;
  /// Whether the server of the fault can be called properly afterwards.
  bool isServerLost = false;
};

class Stage {
 public:
  Stage();
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;
  ~Stage();

  /// The lines of the document about the fault.
  std::string play(const Fault& fault);

  /// A server of the same library's that always answers properly.
  [[nodiscard]] const RawServer& bystander() const { return bystander_; }
  /// Refuses to connect to anything; the way to https servers with names ending in ".test".
  [[nodiscard]] RawServer& proxy() { return proxy_; }
  /// The library trusts it.
  [[nodiscard]] const TLSIdentity& authority() const { return authority_; }
  /// Revoked by a list that the library is given together with the authority.
  [[nodiscard]] const TLSIdentity& revoked() const { return revoked_; }

  static std::string goodAnswer();

 private:
  std::string outcome(const Fault& fault);
  [[nodiscard]] std::string sentElsewhere() const;
  void useSession(const Fault& fault);
  bool works(const std::string& server);

  const TLSIdentity authority_{{.isAuthority = true}}, revoked_{{}, &authority_};
  const std::filesystem::path authorityFile_;
  RawServer bystander_, collector_, proxy_;
  std::optional<Library> library_;
  std::size_t maximumAnswerSize_ = 0;
};
