#pragma once

#include "ZrUtil/ZrTypes.h"

#include <QString>
#include <QTemporaryFile>

/// A file that holds the fuzzer's bytes; one per process, rewritten for every input.
inline QString FuzzFile(const u8* data, std::size_t size)
{
    static QTemporaryFile file;
    if (!file.isOpen() && !file.open())
        return QString();
    file.resize(0);
    file.seek(0);
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    file.flush();
    return file.fileName();
}

/// Debug output of the library would drown the fuzzer's.
inline void SilenceDebugOutput()
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
}
