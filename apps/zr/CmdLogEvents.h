#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr log events`.
void AddLogEvents(CLI::App& log, CliRun& run);
