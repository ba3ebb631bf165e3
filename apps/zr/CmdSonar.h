#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr sonar` with its verbs.
void AddSonar(CLI::App& app, CliRun& run);
