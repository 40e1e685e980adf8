// A raw HTTP answer through the real session. The first byte of the input tells the method and the
// size of the pieces that the rest is written in; form feeds part the answers that the hops of a
// redirected call get.

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <future>
#include <memory>

#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>

#include "Tests/Fuzz/AnswerServer.h"
#include "Tests/Fuzz/Fuzz.h"

namespace {

constexpr std::size_t maximumAnswerSize = std::size_t{64} * 1024;

std::unique_ptr<ZLVURLSession> makeSession() {
  // What is not for this machine goes to the server as well, as to a proxy.
  const auto proxy = "http://127.0.0.1:" + std::to_string(AnswerServer::shared().port());
  setenv("https_proxy", proxy.c_str(), 1);
  unsetenv("no_proxy");
  unsetenv("NO_PROXY");
  return ZLVLinuxPlatform::platformWithOptions(
             {.applicationVersion = "1", .maximumAnswerSize = maximumAnswerSize})
      .makeURLSession();
}

/// One session for all inputs, as long as the process, but for those that leave something in it:
/// what an input does must not depend on the ones before.
std::unique_ptr<ZLVURLSession>& session() {
  static auto& made = *new auto(makeSession());
  return made;
}

bool leavesCookies(std::string_view text) {
  constexpr std::string_view name = "set-cookie";
  return std::search(text.begin(), text.end(), name.begin(), name.end(),
                     [](unsigned char c, char wanted) { return std::tolower(c) == wanted; }) !=
         text.end();
}

std::vector<std::string> partedAtFormFeeds(std::string_view text) {
  std::vector<std::string> parts;
  for (std::size_t start = 0; start <= text.size();) {
    const auto end = std::min(text.find('\f', start), text.size());
    parts.emplace_back(text.substr(start, end - start));
    start = end + 1;
  }
  return parts;
}

void check(const ZLVURLAnswer& answer) {
  promise(answer.data.size() <= maximumAnswerSize, "An answer is not too large.",
          std::to_string(answer.data.size()));
  if (!answer.error) {
    promise(answer.statusCode >= 100 && answer.statusCode <= 999, "An answer has a status.",
            std::to_string(answer.statusCode));
    return;
  }
  const auto& error = *answer.error;
  promise(answer.data.empty() && answer.statusCode == 0, "With an error there is no answer.",
          error.debugDescription());
  promise(error.domain() == NSURLErrorDomain && error.code() < 0 &&
              error.userInfo().contains(NSLocalizedDescriptionKey) &&
              error.userInfo().contains(NSURLErrorFailingURLStringErrorKey),
          "An error says what failed.", error.debugDescription());
  promise(error.code() != NSURLErrorTimedOut && error.code() != NSURLErrorCancelled,
          "A call ends when its connection does.", error.debugDescription());
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  constexpr std::size_t methodBit = 0x80;
  const auto text = textOf(data + 1, size - 1);
  auto pieceSize = *data & ~methodBit;
  if (pieceSize != 0) pieceSize = std::max(pieceSize, text.size() / 64);  // not too many
  auto& server = AnswerServer::shared();
  server.prepare(partedAtFormFeeds(text), pieceSize);

  ZLVURLRequest request;
  request.URL =
      ZLVURL::URLWithString("http://127.0.0.1:" + std::to_string(server.port()) + "/v2/charge");
  request.timeoutInterval = 20;
  request.HTTPMethod = (*data & methodBit) != 0 ? "POST" : "GET";
  std::promise<ZLVURLAnswer> answered;
  auto answer = answered.get_future();
  // A second answer, or none, ends the process by an exception.
  session()->dataTask(std::move(request),
                      [answered = std::move(answered)](ZLVURLAnswer value) mutable {
                        answered.set_value(std::move(value));
                      });
  check(answer.get());
  server.finish();
  if (leavesCookies(text)) session() = makeSession();
  return 0;
}
