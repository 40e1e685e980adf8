#include <cstdio>
#include <exception>
#include <string>
#include <type_traits>
#include <vector>

#include "Apps/Console/Arguments.h"
#include "Apps/Console/Demo.h"
#include "Apps/Console/Doctor.h"
#include "Apps/Console/Host.h"
#include "Apps/Console/Operations.h"
#include "Apps/Console/SandboxServer.h"

namespace {

enum ExitCode { Success = 0, WrongUsage = 2, Fault = 3 };

int run(const Invocation& invocation) {
  return std::visit(
      [&](const auto& command) {
        using Kind = std::remove_cvref_t<decltype(command)>;
        if constexpr (std::is_same_v<Kind, SandboxCommand>) {
          return runSandbox(command.port);
        } else if constexpr (std::is_same_v<Kind, DemoCommand>) {
          return runDemo(invocation.options);
        } else if constexpr (std::is_same_v<Kind, DoctorCommand>) {
          return runDoctor(invocation.options, command);
        } else {
          Host host(invocation.options);
          const int code = runOperation(host, command);
          host.finishUploads(std::chrono::seconds(2));
          return code;
        }
      },
      invocation.command);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const auto parsed = parseArguments(std::vector<std::string>(argv + 1, argv + argc));
    if (const auto* usage = std::get_if<Usage>(&parsed)) {
      std::fprintf(usage->isError ? stderr : stdout, "%s\n", usage->message.c_str());
      return usage->isError ? WrongUsage : Success;
    }
    return run(std::get<Invocation>(parsed));
  } catch (const std::exception& fault) {
    std::fprintf(stderr, "zolva: %s\n", fault.what());
    return Fault;
  }
}
