#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr log items`.
void AddLogItems(CLI::App& log, CliRun& run);
