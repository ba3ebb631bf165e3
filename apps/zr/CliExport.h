#pragma once

#include "ZrUtil/ZrTypes.h"

#include <QJsonObject>
#include <QString>

#include <functional>

class CliTarget;
class IZrProgress;

/// What the verbs that copy parts of a log have in common.
namespace cli {

/// One export of the player on its way into a target.
struct Export
{
    QString in;
    QString out; ///< as on the command line
    u64 from = 0; ///< first byte that is copied, to find the damage when it fails
    u64 to = 0; ///< end of what is copied
    bool isLog = true; ///< the output is a log, and can be checked as such
    bool json = false;
    QJsonObject details; ///< further keys of the JSON result

    /// Calls the player with the path to write to.
    std::function<bool(const QString& out, IZrProgress* progress)> run;
};

/// Exports into the temporary file of \p target (prepared already), checks the result, puts it in its place
/// and prints how much was written. Returns the exit code, and complains unless it is 0.
int run_export(const Export& job, CliTarget& target);

/// Prints "OUT: 12 items, 3.4 KiB (3456 bytes)" or the object with `out`, `items`, `bytes` and \p details.
void print_written(const QString& out, u64 items, u64 bytes, const QJsonObject& details, bool json);

} // namespace cli
