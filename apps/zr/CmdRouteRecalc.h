#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr route recalc`.
void AddRouteRecalc(CLI::App& route, CliRun& run);
