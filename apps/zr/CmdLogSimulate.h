#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr log simulate`.
void AddLogSimulate(CLI::App& log, CliRun& run);
