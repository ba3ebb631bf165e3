#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr log import`.
void AddLogImport(CLI::App& log, CliRun& run);
