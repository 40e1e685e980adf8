// Runs a fuzz target once with each file of a folder: what the fuzzer found, kept as a test.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "Tests/Fuzz/Fuzz.h"

int main(int argc, char** argv) {
  std::size_t count = 0;
  for (const auto& file : std::filesystem::directory_iterator(argc > 1 ? argv[1] : ".")) {
    std::cout << file.path().filename().string() << std::endl;  // before the target may end it all
    std::ifstream stream(file.path(), std::ios::binary);
    const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(stream), {}};
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    ++count;
  }
  std::cout << count << " inputs\n";
  return count == 0 ? 1 : 0;
}
