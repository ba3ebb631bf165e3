#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr route split`.
void AddRouteSplit(CLI::App& route, CliRun& run);
