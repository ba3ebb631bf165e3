#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <string>
#include <vector>

/// Texts to work on: the arguments of the command line, or else the lines of standard input.
namespace cli {

/// What the work is done on.
struct TextInput
{
    QStringList texts; ///< one line, or as many arguments as belong together
    int number = 0; ///< of the line or of the first argument, from 1
};

/// Does the work on one input and returns what is wrong with it, empty when all is well.
using TextWork = std::function<QString(const TextInput&)>;

/// Works on \p arguments, \p together at a time, or when there are none on every line of standard input that
/// is not blank. What goes wrong is complained about, with the argument or the number of the line, and the
/// rest is worked on all the same.
///
/// Returns the exit code: `exUsage` for a wrong argument, `exBadInput` for a wrong line or an input that
/// cannot be read. Ends early after a signal and when the reader of the output is gone.
int for_each_text(const std::vector<std::string>& arguments, int together, const TextWork& work);

} // namespace cli
