#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr geo` with its verbs.
void AddGeo(CLI::App& app, CliRun& run);
