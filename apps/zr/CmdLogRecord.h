#pragma once

#include "CliRun.h"

namespace CLI {
class App;
}

/// Adds `zr log record`.
void AddLogRecord(CLI::App& log, CliRun& run);
