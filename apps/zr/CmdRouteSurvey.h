#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr route survey`.
void AddRouteSurvey(CLI::App& route, CliRun& run);
