#pragma once

#include <cstdint>

/// Runs a sandbox until SIGINT or SIGTERM, printing its address and the requests it receives.
/// Returns the exit code.
int runSandbox(std::uint16_t port);
