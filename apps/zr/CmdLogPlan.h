#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr log plan`.
void AddLogPlan(CLI::App& log, CliRun& run);
