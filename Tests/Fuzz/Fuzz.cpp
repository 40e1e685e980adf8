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

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  for (std::size_t start = 0; start <= text.size();) {
    const auto end = std::min(text.find('\n', start), text.size());
    lines.emplace_back(text.substr(start, end - start));
    start = end + 1;
  }
  return lines;
}
