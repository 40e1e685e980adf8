#pragma once

#include <string>
#include <system_error>

/// Other programs.
namespace ZLVProcess {

/// Starts `program`, found in PATH, with one argument and without a shell, and does not wait for
/// it. It reads nothing and writes where this process reports errors, so that it cannot take the
/// host's input nor add to its output. Any thread.
std::error_code start(std::string program, std::string argument);

}  // namespace ZLVProcess
