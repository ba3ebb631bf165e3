#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr log info`.
void AddLogInfo(CLI::App& log, CliRun& run);
