#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr log filter`.
void AddLogFilter(CLI::App& log, CliRun& run);
