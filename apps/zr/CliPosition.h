#pragma once

#include "ZrUtil/ZrTypes.h"

#include <QString>

#include <optional>
#include <string>
#include <vector>

/// A place in a log on the command line: a byte position, "1234" or "0x4d2", or a share of the file, "33%".
///
/// A share stands for the first item that starts at or after it, so thirds cut by "33%" and "66%" fit
/// together; when there is none, for the end of the file.
struct CliPosition
{
    bool share = false;
    double percent = 0.0; ///< 0 to 100, with `share`
    u64 bytes = 0; ///< from the start of the file; with `share` once it is resolved

    static std::optional<CliPosition> Parse(const QString& text);

    /// Check of an option value: an empty text when it is a position, else what is wrong with it.
    static std::string Check(const std::string& text);

    /// The position of an option value that `Check` has accepted.
    static CliPosition FromOption(const std::string& text);

    /// Finds the items that shares stand for by walking \p log once; nothing is read when there are none
    /// but 0%. Returns the exit code, and complains unless it is 0.
    static int Resolve(const QString& log, const std::vector<CliPosition*>& positions);
};
