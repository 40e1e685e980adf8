#include "Apps/Console/SandboxServer.h"

#include <cstdio>

#include <Sandbox/Sandbox.h>
#include <signal.h>

#include <ZolvaCheckoutKit/ZolvaCheckoutKit.h>

int runSandbox(std::uint16_t port) {
  // Blocked before the sandbox makes its threads, so that only this one takes the signals.
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);

  const auto print = [](const ZLVSandboxRequest& request, unsigned status) {
    auto line = request.method + ' ' + request.target + " → " + std::to_string(status);
    if (!request.body.empty()) line += "  " + request.body;
    // Whoever sends the request must not get to command the terminal.
    std::replace_if(
        line.begin(), line.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; }, ' ');
    std::puts(line.c_str());
    std::fflush(stdout);
  };
  ZLVSandbox sandbox({.port = port, .merchantName = "Corner Coffee", .observer = print});
  std::printf("Sandbox at %s (analytics at %s/). Press Ctrl-C to stop.\n",
              sandbox.baseURL().c_str(), sandbox.baseURL().c_str());
  std::fflush(stdout);

  int received = 0;
  sigwait(&signals, &received);
  return 0;
}
