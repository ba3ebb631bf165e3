#pragma once

#include <QProcess>

/// What another program writes to its standard output; a null array when it could not be run or was not
/// content.
inline QByteArray OutputOf(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(30000) || process.exitStatus() != QProcess::NormalExit
        || process.exitCode() != 0) {
        qWarning("%s: %s", qPrintable(program), process.readAllStandardError().constData());
        return QByteArray();
    }
    return process.readAllStandardOutput();
}
