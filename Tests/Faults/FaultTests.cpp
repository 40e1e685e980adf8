// Plays every fault and checks that it ends as Docs/faults.md says. With ZLV_WRITE_FAULTS=FILE in
// the environment the document is written instead.

#include <cstdlib>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "Tests/Faults/FaultTable.h"

namespace {

constexpr std::string_view sectionMark = "\n## ";
constexpr std::string_view introduction = R"(# Faults

What the completion of a call receives when something goes wrong on the way, and whether a call
after it, through the same session and, where that makes sense, to the same server, is answered
properly. Each line is the outcome of a call over a real connection: `FaultTests` fails when one
changes, and `ZLV_WRITE_FAULTS=Docs/faults.md FaultTests` writes this file. An answer may have 8 MiB
here where nothing else is said.
)";

/// There can be one library in a process.
Stage& stage() {
  static Stage stage;
  return stage;
}

std::string play(FaultSection (*makeSection)(Stage&)) {
  const auto section = makeSection(stage());
  std::string text = section.title;
  text += "\n\n| Fault | Domain | Code | Description | Works on |\n|---|---|---|---|---|\n";
  for (const auto& fault : section.faults) text += stage().play(fault);
  return text;
}

/// The document's introduction and sections.
std::vector<std::string> documentParts() {
  std::ifstream file(FAULTS);
  std::string rest(std::istreambuf_iterator<char>(file), {});
  std::vector<std::string> parts;
  for (std::size_t end = 0; end != std::string::npos;) {
    end = rest.find(sectionMark);
    parts.push_back(rest.substr(0, end));
    if (end != std::string::npos) rest.erase(0, end + sectionMark.size());
  }
  return parts;
}

class Faults : public testing::TestWithParam<std::size_t> {};

TEST_P(Faults, EndAsDocumented) {
  const auto document = documentParts();
  ASSERT_EQ(document.size(), faultSections.size() + 1);
  EXPECT_EQ(document.front(), introduction);
  EXPECT_EQ(document.at(GetParam() + 1), play(faultSections.at(GetParam())));
}

INSTANTIATE_TEST_SUITE_P(Sections, Faults, testing::Range<std::size_t>(0, faultSections.size()));

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  setenv("OPENSSL_CONF", OPENSSL_CONFIGURATION, 1);
  const char* path = std::getenv("ZLV_WRITE_FAULTS");
  if (path == nullptr) return RUN_ALL_TESTS();
  std::ofstream document(path);
  document << introduction;
  for (const auto& section : faultSections) document << sectionMark << play(section);
  return document.flush() ? EXIT_SUCCESS : EXIT_FAILURE;
}
