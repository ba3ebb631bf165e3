#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr log check`.
void AddLogCheck(CLI::App& log, CliRun& run);
