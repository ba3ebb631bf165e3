#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr sonar mosaic`.
void AddSonarMosaic(CLI::App& sonar, CliRun& run);
