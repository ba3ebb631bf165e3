#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr route check`.
void AddRouteCheck(CLI::App& route, CliRun& run);
