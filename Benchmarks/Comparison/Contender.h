#pragma once

// What is compared: ways for an application to make a call to its server.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <ZolvaCheckoutKit/Platform/ZLVPlatform.h>
#include <ZolvaCheckoutKit/ZLVEnquiryRecords.h>

using Record = std::shared_ptr<ZLVAccountInfo>;

/// Makes calls from the main thread and runs its loop.
class Contender {
 public:
  Contender() = default;
  Contender(const Contender&) = delete;
  Contender& operator=(const Contender&) = delete;
  virtual ~Contender() = default;

  /// Asks for the account at `server`. The call ends in `run`, which gives the record to `done`.
  virtual void start(const std::string& server) = 0;
  virtual void run() = 0;
  /// Called by `done`; `run` returns.
  virtual void stop() = 0;

  std::function<void(const Record&)> done;
};

/// The call's path, and the headers that the library sends with it.
inline constexpr const char* accountPath = "/v2/pay/account/acc-1";
inline constexpr const char* requestHeaders[][2] = {{"X-Source", "mobile-ios"},
                                                    {"X-Mobile-Platform", "ios"}};

/// The work that is the same for all of them: a server's answer decoded, and made a record.
ZLVValue decoded(std::string_view body);
inline Record recordOf(std::string_view body) {
  return ZLVAccountInfo::initWithDictionary(decoded(body));
}

using Make = std::unique_ptr<Contender> (*)();

/// The library's executor and record, as in an enquiry but without the usage event that goes with
/// it. Needs `installLibrary`, as does the next one.
std::unique_ptr<Contender> makeLibrary();
/// `ZLVClient::enquireAccountWithAccountID`; the event is a second call to a server.
std::unique_ptr<Contender> makeClient();
/// The client's call through the C interface; installs itself.
std::unique_ptr<Contender> makeBoundary();
/// libcurl's multi interface on a thread that decodes the answers and hands them over to the main
/// thread.
std::unique_ptr<Contender> makeCurl();
/// The same with easy handles that go from call to call, which libcurl before 8.2 cannot do safely.
std::unique_ptr<Contender> makeCurlWithUsedHandles();
/// libsoup 3 on a GLib main loop, with as many connections as there are calls.
std::unique_ptr<Contender> makeSoup();
/// Qt 6's network access manager.
std::unique_ptr<Contender> makeQt();
/// A blocking socket and nothing else; one call at a time.
std::unique_ptr<Contender> makeSocket();

ZLVPlatform libraryPlatform(const std::string& server, std::optional<std::string> CAFile = {});
/// Installs and configures the library; once in a process.
void installLibrary(ZLVPlatform platform, const std::string& server);
