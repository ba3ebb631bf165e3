#pragma once

#include <functional>

/// What the command line asks for: filled while it is parsed, carried out afterwards.
struct CliRun
{
    std::function<int()> action; ///< the chosen verb; returns the exit code
    bool verbose = false; ///< show the library's debug output on standard error
};
