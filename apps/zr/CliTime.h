#pragma once

#include <QString>

#include <optional>
#include <string>

/// Times on the command line.
namespace cli {

/// Seconds since 1970-01-01 UTC of \p text, which is that number or ISO 8601 ("2021-03-03T14:05:09.500Z");
/// UTC unless it names an offset. Nothing when it is neither, or not finite.
std::optional<double> parse_time(const QString& text);

/// Check of an option value: an empty text when it is a time, else what is wrong with it.
std::string check_time(const std::string& text);

} // namespace cli
