// Plays the faults to a client in another process, in whatever language, which keeps to this
// conversation of lines with tabs in them:
//
//     server: section, what, method, URL, time-out in seconds     client: any line, after its call
//     server: "", how often the request was sent, "GET", URL of the next call, 60
//
// A call that is to leave the session with a connection comes first, its section and "what" empty.
// Faults that the server could not time from outside the client are left out, and those that the
// arguments name; "--only" before the names plays these and no others.

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <set>

#include "Tests/Faults/FaultTable.h"

namespace {

void tell(const std::string& section, const std::string& what, bool isCharge,
          const std::string& url, double timeout) {
  std::cout << section << '\t' << what << '\t' << (isCharge ? "POST" : "GET") << '\t' << url << '\t'
            << timeout << std::endl;
  if (std::string line; !std::getline(std::cin, line)) std::exit(EXIT_FAILURE);
}

void play(const std::string& section, const Fault& fault) {
  std::atomic<int> faultsLeft = 0;
  std::atomic<bool> isEarlier = fault.earlierReply.has_value();
  RawServer server(
      [&](auto&) {
        if (faultsLeft > 0) return --faultsLeft, fault.reply;
        return isEarlier ? *fault.earlierReply : RawServer::Reply{Stage::goodAnswer()};
      },
      fault.tls);
  if (isEarlier) tell("", "", false, server.url(), 60);
  isEarlier = false;
  if (fault.arrange) fault.arrange(server);
  const auto before = server.requests().size();
  faultsLeft = fault.times;
  auto url = fault.url.empty() ? server.url() : fault.url;
  if (url.ends_with(':')) url += std::to_string(server.port());
  tell(section, fault.what, fault.call == &Library::charge, url, fault.timeoutInterval);
  const auto sent = server.requests().size() - before;
  faultsLeft = 0;
  tell("", std::to_string(sent), false, url, 60);
}

}  // namespace

int main(int argc, char** argv) {
  std::set<std::string> named(argv + 1, argv + argc);
  const bool isOnly = named.erase("--only") > 0;
  Stage stage;
  for (const auto makeSection : faultSections()) {
    const auto section = makeSection(stage);
    for (const auto& fault : section.faults) {
      const bool isTimed = fault.earlierReply && fault.earlierReply->gate;
      const bool isProxied = fault.url.find("shop.test") != std::string::npos;
      if (named.contains(fault.what) == isOnly && !isTimed && !isProxied) {
        play(section.title, fault);
      }
    }
  }
}
