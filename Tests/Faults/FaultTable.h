#pragma once

#include <string>
#include <vector>

#include "Tests/Faults/Stage.h"

/// Faults of a kind.
struct FaultSection {
  std::string title;
  std::vector<Fault> faults;
};

/// What makes the whole table, section by section.
std::vector<FaultSection (*)(Stage&)> faultSections();
