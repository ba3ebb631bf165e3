#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr log census`.
void AddLogCensus(CLI::App& log, CliRun& run);
