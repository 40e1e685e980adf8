#include <array>
#include <csignal>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVProcess.h>

std::error_code ZLVProcess::start(std::string program, std::string argument) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, STDERR_FILENO, STDOUT_FILENO);
  posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);

  const std::array<char*, 3> arguments{program.data(), argument.data(), nullptr};
  pid_t child = 0;
  const int error =
      posix_spawnp(&child, program.c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) return {error, std::generic_category()};

  // SIGCHLD is the host's, so the child is waited for here.
  const auto wait = [child] { waitpid(child, nullptr, 0); };
  try {
    std::thread(wait).detach();
  } catch (const std::system_error& fault) {
    kill(child, SIGKILL);
    wait();
    return fault.code();
  }
  return {};
}
