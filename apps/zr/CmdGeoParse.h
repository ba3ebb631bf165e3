#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr geo parse`.
void AddGeoParse(CLI::App& geo, CliRun& run);
