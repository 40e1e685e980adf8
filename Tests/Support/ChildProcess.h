#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

/// A program under test, with its standard streams in the test's hands. Killed when it is let go.
class ChildProcess {
 public:
  explicit ChildProcess(std::vector<std::string> command);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  void write(const std::string& text) const;
  void closeInput();
  void signal(int number) const;

  /// Reads on until a line that begins like this is complete and returns it; empty when the stream
  /// ends first.
  std::string waitForOutputLine(const std::string& prefix) { return waitForLine(output_, prefix); }
  std::string waitForErrorLine(const std::string& prefix) { return waitForLine(error_, prefix); }

  struct Result {
    int exitCode;  ///< -1 when it did not exit by itself.
    std::string output, error;
  };
  /// Closes its input, reads the rest and waits for its end.
  Result finish();

 private:
  struct Stream {
    int descriptor = -1;
    std::string text;
  };

  static bool readSome(Stream& stream);
  static std::string waitForLine(Stream& stream, const std::string& prefix);

  pid_t pid_ = -1;
  int input_ = -1;
  Stream output_, error_;
};
