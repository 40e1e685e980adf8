// Plays every fault and checks that it ends as Docs/faults.md says. With ZLV_WRITE_FAULTS=FILE in
// the environment the document is written instead.

#include <cstdlib>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "Tests/Faults/FaultTable.h"

namespace {

std::string documented() {
  std::ifstream file(FAULTS);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The document's introduction, and the outcomes of all faults played now. There can be one library
/// in a process.
std::string played() {
  Stage stage;
  auto text = documented();
  text.resize(text.find("\n## "));
  for (const auto makeSection : faultSections()) {
    const auto section = makeSection(stage);
    text += "\n## " + section.title;
    text += "\n\n| Fault | Domain | Code | Description | Works on |\n|---|---|---|---|---|\n";
    for (const auto& fault : section.faults) text += stage.play(fault);
  }
  return text;
}

TEST(Faults, EndAsDocumented) { EXPECT_EQ(documented(), played()); }

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  setenv("OPENSSL_CONF", OPENSSL_CONFIGURATION, 1);
  const char* path = std::getenv("ZLV_WRITE_FAULTS");
  if (path == nullptr) return RUN_ALL_TESTS();
  const auto text = played();  // before the document is opened for writing
  return std::ofstream(path) << text << std::flush ? EXIT_SUCCESS : EXIT_FAILURE;
}
