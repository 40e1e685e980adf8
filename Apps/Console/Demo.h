#pragma once

#include "Apps/Console/Arguments.h"

/// Tells the whole journey, from linking an account to unlinking it, against a sandbox in this
/// process. Returns the exit code: 0 when every step ended as it should.
int runDemo(ConsoleOptions options);
