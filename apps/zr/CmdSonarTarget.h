#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr sonar target`.
void AddSonarTarget(CLI::App& sonar, CliRun& run);
