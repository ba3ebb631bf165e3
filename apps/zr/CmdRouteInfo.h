#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr route info`.
void AddRouteInfo(CLI::App& route, CliRun& run);
