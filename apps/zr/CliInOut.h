#pragma once

#include <QString>

#include <string>

class CliTarget;

namespace CLI {
class App;
}

/// The command line of a verb that makes one file of one log: LOG OUT [--force] [--json].
struct CliInOut
{
    std::string log;
    std::string out;
    bool force = false;
    bool json = false;

    QString In() const { return QString::fromStdString(log); }

    QString Out() const { return QString::fromStdString(out); }

    /// Adds LOG and OUT; \p outText describes OUT.
    void AddArguments(CLI::App& verb, const std::string& outText);

    /// Adds `--force` and `--json`, which stand behind the options of the verb itself.
    void AddFlags(CLI::App& verb);

    /// Checks the log and prepares \p target for OUT, before anything is touched. Returns the exit code, and
    /// complains unless it is 0.
    int Prepare(CliTarget& target) const;
};
