#include "Apps/Console/Terminal.h"

#include <array>
#include <cstdio>
#include <cstdlib>

#include <unistd.h>

namespace {

constexpr std::string_view clearLine = "\r\x1b[2K";
constexpr std::string_view reset = "\x1b[0m";

std::string_view colour(Terminal::Style style) {
  switch (style) {
    case Terminal::Style::Dim:
      return "\x1b[2m";
    case Terminal::Style::Heading:
      return "\x1b[1;36m";
    case Terminal::Style::Good:
      return "\x1b[32m";
    case Terminal::Style::Bad:
      return "\x1b[33m";
    case Terminal::Style::Plain:
      break;
  }
  return "";
}

void put(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stdout); }

}  // namespace

Terminal::Terminal()
    : isTerminal_(isatty(STDOUT_FILENO) == 1 && std::getenv("NO_COLOR") == nullptr) {}

Terminal::~Terminal() { clearSpinner(); }

void Terminal::print(std::string_view line, Style style) {
  clearSpinner();
  if (isTerminal_) put(colour(style));
  put(line);
  if (isTerminal_) put(reset);
  put("\n");
  std::fflush(stdout);
}

void Terminal::spin() {
  if (!isTerminal_) return;
  constexpr std::array<std::string_view, 10> frames{"⠋", "⠙", "⠹", "⠸", "⠼",
                                                    "⠴", "⠦", "⠧", "⠇", "⠏"};
  put(clearLine);
  put(frames[step_++ % frames.size()]);
  std::fflush(stdout);
  isSpinning_ = true;
}

void Terminal::clearSpinner() {
  if (!isSpinning_) return;
  put(clearLine);
  isSpinning_ = false;
}
