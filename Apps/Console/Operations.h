#pragma once

#include "Apps/Console/Arguments.h"
#include "Apps/Console/Host.h"

/// Runs one operation of the library and prints its result or its error as JSON on standard output.
/// Returns the exit code: 0 for a result, 1 for an error.
int runOperation(Host& host, const LinkCommand& command);
int runOperation(Host& host, const EnquireCommand& command);
int runOperation(Host& host, const UnlinkCommand& command);
int runOperation(Host& host, const ChargeCommand& command);
