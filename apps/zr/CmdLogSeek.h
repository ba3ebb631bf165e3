#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr log seek`.
void AddLogSeek(CLI::App& log, CliRun& run);
