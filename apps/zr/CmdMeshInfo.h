#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr mesh info`.
void AddMeshInfo(CLI::App& mesh, CliRun& run);
