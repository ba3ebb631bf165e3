#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr geo from-grid`.
void AddGeoFromGrid(CLI::App& geo, CliRun& run);
