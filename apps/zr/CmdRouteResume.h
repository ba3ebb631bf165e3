#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr route resume`.
void AddRouteResume(CLI::App& route, CliRun& run);
