#include <array>
#include <future>
#include <thread>
#include <utility>

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

  // SIGCHLD is the host's, so the child is waited for here, by the thread that starts it: without a
  // thread there is no child.
  std::promise<int> promise;
  auto error = promise.get_future();
  std::error_code failure;
  try {
    std::thread([&program, &argument, &actions, promise = std::move(promise)]() mutable {
      const std::array<char*, 3> arguments{program.data(), argument.data(), nullptr};
      pid_t child = 0;
      const int result =
          posix_spawnp(&child, program.c_str(), &actions, nullptr, arguments.data(), environ);
      promise.set_value(result);  // and with it goes what the arguments point to
      if (result == 0) waitpid(child, nullptr, 0);
    }).detach();
    failure = {error.get(), std::generic_category()};
  } catch (const std::system_error& fault) {
    failure = fault.code();
  }
  posix_spawn_file_actions_destroy(&actions);
  return failure;
}
