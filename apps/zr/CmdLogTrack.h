#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr log track`.
void AddLogTrack(CLI::App& log, CliRun& run);
