#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr log index`.
void AddLogIndex(CLI::App& log, CliRun& run);
