#pragma once

#include <csignal>
#include <future>
#include <iterator>
#include <string>
#include <vector>

#define BOOST_PROCESS_USE_STD_FS  // Boost.Filesystem is a library to link
#include <boost/process/args.hpp>
#include <boost/process/child.hpp>
#include <boost/process/io.hpp>
#include <boost/process/pipe.hpp>

/// A program under test, with its standard streams in the test's hands. Killed when it is let go.
class ChildProcess {
 public:
  explicit ChildProcess(const std::vector<std::string>& command)
      : child_(command.front(),
               boost::process::args(std::vector(command.begin() + 1, command.end())),
               boost::process::std_in<input_, boost::process::std_out> output_,
               boost::process::std_err > error_) {
    std::signal(SIGPIPE, SIG_IGN);
  }

  void write(const std::string& text) { input_ << text << std::flush; }
  void closeInput() { input_.pipe().close(); }
  void signal(int number) const { kill(child_.id(), number); }

  /// Reads on until a line that begins like this is complete and returns it; empty when the stream
  /// ends first.
  std::string waitForOutputLine(const std::string& prefix) { return waitForLine(output_, prefix); }
  std::string waitForErrorLine(const std::string& prefix) { return waitForLine(error_, prefix); }

  struct Result {
    int exitCode;  ///< The number of the signal when one ended it.
    std::string output, error;
  };
  /// Closes its input, reads the rest and waits for its end.
  Result finish() {
    closeInput();
    // Both streams at once, so that the child never waits for one while the other is read.
    auto error = std::async(std::launch::async, [this] { return rest(error_); });
    auto output = rest(output_);
    child_.wait();
    return {child_.exit_code(), std::move(output), error.get()};
  }

 private:
  static std::string rest(std::istream& stream) {
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  static std::string waitForLine(std::istream& stream, const std::string& prefix) {
    for (std::string line; std::getline(stream, line);) {
      if (line.starts_with(prefix)) return line;
    }
    return "";
  }

  boost::process::opstream input_;
  boost::process::ipstream output_, error_;
  boost::process::child child_;
};
