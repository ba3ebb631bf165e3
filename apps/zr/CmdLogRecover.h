#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr log recover`.
void AddLogRecover(CLI::App& log, CliRun& run);
