#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr route convert`.
void AddRouteConvert(CLI::App& route, CliRun& run);
