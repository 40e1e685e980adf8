#pragma once

#include "Apps/Console/Arguments.h"

/// Holds a merchant's server to `Docs/merchant-api.yaml` and prints a line a check, or one JSON
/// document. What changes something there waits for the person's word. Returns the exit code: 0
/// when nothing failed, 1 otherwise.
int runDoctor(const ConsoleOptions& options, const DoctorCommand& command);
