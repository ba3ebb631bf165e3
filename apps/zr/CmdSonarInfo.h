#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr sonar info`.
void AddSonarInfo(CLI::App& sonar, CliRun& run);
