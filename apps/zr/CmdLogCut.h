#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr log cut`.
void AddLogCut(CLI::App& log, CliRun& run);
