#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr geo range`.
void AddGeoRange(CLI::App& geo, CliRun& run);
