#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr geo format`.
void AddGeoFormat(CLI::App& geo, CliRun& run);
