#pragma once

#include <QString>

#include <string>

/// Numbers on the command line: finite, with a point whatever the locale says, neither "nan" nor hexadecimal.
namespace cli {

/// The value of an option that one of the checks has accepted; \p otherwise when it was not given.
double number(const std::string& text, double otherwise);

/// An empty text when \p text is a number within \p least ... \p most, else what is wrong with it. \p unit
/// ends the message: "metres".
std::string check_number(const std::string& text, double least, double most, const char* unit);

/// Checks of option values: an empty text when the value is good, else what is wrong with it.
std::string check_length(const std::string& text); ///< metres, 0 to 10,000
std::string check_spacing(const std::string& text); ///< metres, 0.01 to 1,000,000
std::string check_heading(const std::string& text); ///< degrees, −360 to 360

/// A number of bytes: "500" are megabytes, a million bytes each; a unit of thousands or of 1024s may follow,
/// as in "2GB" or "1.5 GiB". 0 to `MostBytes`.
double bytes(const std::string& text);
std::string check_bytes(const std::string& text);
constexpr double MostBytes = 1e15;

/// "1234.567 m"; "-" when not finite.
QString metres_text(double metres);

} // namespace cli
