#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr log dump`.
void AddLogDump(CLI::App& log, CliRun& run);
