#pragma once

#include "CliRun.h"

#include <CLI/CLI.hpp>

#include <string>

/// Building blocks of the command line, so that all verbs look and behave alike.
namespace cli {

/// Gives \p app the layout of the help texts; sub-commands take it over.
void set_help_layout(CLI::App& app);

/// Adds a verb with `--help` and `--verbose`. \p footer holds units and examples.
CLI::App* add_verb(CLI::App& parent, CliRun& run, const std::string& name, const std::string& description,
    const std::string& footer);

/// Adds a positional argument that must be given.
CLI::Option* add_argument(
    CLI::App& verb, const std::string& name, std::string& value, const std::string& description);

/// Adds an option with one value, shown as \p placeholder and checked by \p check (may be null).
CLI::Option* add_value(CLI::App& verb, const std::string& name, std::string& value,
    const std::string& placeholder, std::string (*check)(const std::string&), const std::string& description);

/// Adds an option that may be given several times, each time with one value or several with commas between.
CLI::Option* add_list(CLI::App& verb, const std::string& name, std::vector<std::string>& values,
    const std::string& placeholder, std::string (*check)(const std::string&), const std::string& description);

} // namespace cli
