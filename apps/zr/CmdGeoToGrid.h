#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr geo to-grid`.
void AddGeoToGrid(CLI::App& geo, CliRun& run);
