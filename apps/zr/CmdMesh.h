#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr mesh` with its verbs.
void AddMesh(CLI::App& app, CliRun& run);
