#include "Tests/Support/ChildProcess.h"

#include <array>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::array<int, 2> makePipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("pipe2");
  return ends;
}

}  // namespace

ChildProcess::ChildProcess(std::vector<std::string> command) {
  ::signal(SIGPIPE, SIG_IGN);
  const auto input = makePipe();
  const auto output = makePipe();
  const auto error = makePipe();
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, error[1], STDERR_FILENO);

  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (auto& argument : command) arguments.push_back(argument.data());
  arguments.push_back(nullptr);
  const int failure =
      posix_spawn(&pid_, command.front().c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  for (const int end : {input[0], output[1], error[1]}) close(end);
  if (failure != 0) throw std::runtime_error("cannot start " + command.front());
  input_ = input[1];
  output_.descriptor = output[0];
  error_.descriptor = error[0];
}

ChildProcess::~ChildProcess() {
  if (pid_ > 0) {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  closeInput();
  close(output_.descriptor);
  close(error_.descriptor);
}

void ChildProcess::write(const std::string& text) const {
  if (::write(input_, text.data(), text.size()) < 0) throw std::runtime_error("write");
}

void ChildProcess::closeInput() {
  if (input_ >= 0) close(input_);
  input_ = -1;
}

void ChildProcess::signal(int number) const { kill(pid_, number); }

ChildProcess::Result ChildProcess::finish() {
  closeInput();
  // Both streams at once, so that the child never waits for one while the other is read.
  bool isOutputOpen = true;
  bool isErrorOpen = true;
  while (isOutputOpen || isErrorOpen) {
    std::array<pollfd, 2> streams{{{isOutputOpen ? output_.descriptor : -1, POLLIN, 0},
                                   {isErrorOpen ? error_.descriptor : -1, POLLIN, 0}}};
    poll(streams.data(), streams.size(), -1);
    if (streams[0].revents != 0) isOutputOpen = readSome(output_);
    if (streams[1].revents != 0) isErrorOpen = readSome(error_);
  }
  int status = 0;
  waitpid(pid_, &status, 0);
  pid_ = -1;
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output_.text, error_.text};
}

bool ChildProcess::readSome(Stream& stream) {
  std::array<char, 4096> buffer{};
  const auto count = read(stream.descriptor, buffer.data(), buffer.size());
  if (count > 0) stream.text.append(buffer.data(), static_cast<std::size_t>(count));
  return count > 0;
}

std::string ChildProcess::waitForLine(Stream& stream, const std::string& prefix) {
  for (std::size_t start = 0;;) {
    const auto end = stream.text.find('\n', start);
    if (end == std::string::npos) {
      if (!readSome(stream)) return "";
      continue;
    }
    if (stream.text.compare(start, prefix.size(), prefix) == 0) {
      return stream.text.substr(start, end - start);
    }
    start = end + 1;
  }
}
