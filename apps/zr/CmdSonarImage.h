#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr sonar image`.
void AddSonarImage(CLI::App& sonar, CliRun& run);
