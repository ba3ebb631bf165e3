#pragma once

#include <QString>
#include <QStringList>

/// Messages to the person at the terminal, and the debug output of Qt and of the library.
namespace cli {

/// Takes over Qt's debug output: it is kept for `take_debug_output`, and shown only with \p verbose.
void install_message_handler(bool verbose);

/// The debug lines since the last call, oldest first; of many the latest ones.
///
/// The library reports the reason of a failure there and nowhere else.
QStringList take_debug_output();

/// Writes "zr: " and \p text as a line on standard error.
void complain(const QString& text);

/// Complains and returns \p code, so that a verb ends with `return cli::fail(exBadInput, …)`.
int fail(int code, const QString& text);

} // namespace cli
