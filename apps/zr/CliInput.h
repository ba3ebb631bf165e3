#pragma once

#include <QString>

class ZrLogScan;

/// Checks of input files, and the words for what is wrong with them.
namespace cli {

/// Whether \p path is a readable ordinary file; a pipe or a device would block or never end.
/// Returns the exit code, and complains unless it is 0.
int check_input(const QString& path);

/// Why \p scan did not reach the end: "FILE: message (at position N)".
QString scan_reason(const QString& path, const ZrLogScan& scan);

/// Complains about a scan that did not reach the end; returns the exit code.
int fail_scan(const QString& path, const ZrLogScan& scan);

} // namespace cli
