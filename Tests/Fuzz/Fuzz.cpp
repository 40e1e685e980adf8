#include "Tests/Fuzz/Fuzz.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>

void promise(bool isKept, std::string_view promise, std::string_view broken) {
  if (isKept) return;
  constexpr std::size_t enough = 2000;
  std::cerr << "Broken: " << promise << "\nWith: " << broken.substr(0, enough) << std::endl;
  std::abort();
}

std::string_view textOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};  // NOLINT(*-reinterpret-cast)
}

std::vector<std::string> linesOf(std::string_view text, std::size_t atLeast, char end) {
  std::vector<std::string> lines;
  for (std::size_t start = 0; start <= text.size(); start += lines.back().size() + 1) {
    lines.emplace_back(text.substr(start, text.find(end, start) - start));
  }
  lines.resize(std::max(lines.size(), atLeast));
  return lines;
}
