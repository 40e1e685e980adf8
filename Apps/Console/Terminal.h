#pragma once

#include <string>
#include <string_view>

/// Standard output as a person reads it: colour and a spinner on a terminal, plain text elsewhere.
class Terminal {
 public:
  Terminal();
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  enum class Style { Plain, Dim, Heading, Good, Bad };

  /// Prints a line.
  void print(std::string_view line, Style style = Style::Plain);
  /// Turns the spinner one step on; it goes away with the next line.
  void spin();

 private:
  void clearSpinner();

  bool isTerminal_;
  std::size_t step_ = 0;
  bool isSpinning_ = false;
};
