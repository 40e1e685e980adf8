#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <Sandbox/Exchange.h>

/// A body sent `bytes` at a time, with a pause before each piece.
struct ZLVSandboxTrickle {
  std::size_t bytes = 1;
  std::chrono::milliseconds interval{100};
};

/// How the answer to one request goes wrong. Any fields can be combined; with none set the answer
/// is the proper one.
///
/// The request takes effect as usual, unless `body` is given: that answer stands in for the
/// sandbox's own, and nothing happens to accounts, charges and events.
struct ZLVMisbehaviour {
  /// Where in the answer it breaks off.
  enum class Point { BeforeHeader, InHeader, AfterHeader, InBody, AfterBody };
  /// What happens there: nothing more until the client gives up or the sandbox stops; an orderly
  /// close; a reset.
  enum class Break { Stall, Close, Reset };

  /// HTTP status, whatever the body says. 204 and 304 send no body.
  std::optional<unsigned> status{};
  std::optional<std::string> body{};
  /// In place of the answer's own headers of the same names; a wrong Content-Length goes in here.
  ZLVSandboxHeaders headers{};
  /// Cuts the body to this many bytes or fills it up with spaces, which leaves JSON valid. The
  /// Content-Length agrees, and a huge body is not held in memory.
  std::optional<std::uint64_t> bodySize{};
  /// Before the first byte of the answer.
  std::chrono::milliseconds delay{};
  std::optional<ZLVSandboxTrickle> trickle{};
  std::optional<std::pair<Break, Point>> interruption{};
};

/// Which requests go wrong: the next `times` whose method is this one and whose path begins like
/// this. Empty texts match everything.
struct ZLVSandboxMatch {
  std::string method{};
  std::string pathPrefix{};
  std::size_t times = 1;
};

/// Reads the JSON that `POST /sandbox/misbehave` takes, documented in `Sandbox/README.md`. Throws
/// `std::exception` with a text that says what is wrong with it.
std::pair<ZLVSandboxMatch, ZLVMisbehaviour> ZLVReadMisbehaviour(std::string_view JSON);
