#pragma once

#include <array>
#include <string>
#include <vector>

#include "Tests/Faults/Stage.h"

/// Faults of a kind.
struct FaultSection {
  std::string title;
  std::vector<Fault> faults;
};

FaultSection brokenConnections(Stage& stage);
FaultSection brokenKeptConnections(Stage& stage);
FaultSection spoiltConnections(Stage& stage);
FaultSection brokenHTTP(Stage& stage);
FaultSection largeAnswers(Stage& stage);
FaultSection redirects(Stage& stage);
FaultSection brokenJSON(Stage& stage);
FaultSection brokenTLS(Stage& stage);
FaultSection brokenProxies(Stage& stage);

/// The whole table, section by section.
inline constexpr std::array faultSections{&brokenConnections, &brokenKeptConnections,
                                          &spoiltConnections, &brokenHTTP,
                                          &largeAnswers,      &redirects,
                                          &brokenJSON,        &brokenTLS,
                                          &brokenProxies};
