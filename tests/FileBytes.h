#pragma once

// The bytes of files, as tests put and compare them.

#include <QByteArray>
#include <QFile>
#include <QString>

/// Of a file; empty for none.
inline QByteArray Content(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Over what was in the file, which stays the same one.
inline bool Write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}
