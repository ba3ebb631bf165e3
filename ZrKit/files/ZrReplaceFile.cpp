#include "ZrKit/files/ZrReplaceFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace {

/// Writes all of \p bytes. A disk that is nearly full takes a part first and tells the reason the next time.
bool WriteAll(QFileDevice& file, const QByteArray& bytes)
{
    for (qint64 done = 0; done < bytes.size();) {
        const qint64 written = file.write(bytes.constData() + done, bytes.size() - done);
        if (written <= 0)
            return false;
        done += written;
    }
    return true;
}

/// Whether a rename would put a file in the place of a device or a pipe, which the superuser is able to do.
bool IsDevice(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() && !info.isFile() && !info.isDir();
}

bool WriteDevice(const QString& path, const QByteArray& bytes, QString& error)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && WriteAll(file, bytes))
        return true;
    error = file.errorString();
    return false;
}

bool ReplaceFile(const QString& path, const QByteArray& bytes, QString& error)
{
    QSaveFile file(path);
    // Unbuffered: committing would not notice bytes that find no room when a buffer is emptied.
    if (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && WriteAll(file, bytes) && file.commit())
        return true;
    error = file.errorString();
    return false;
}

} // namespace

bool zr::replace_file(const QString& path, const QByteArray& bytes, QString* error)
{
    QString reason;
    if (IsDevice(path) ? WriteDevice(path, bytes, reason) : ReplaceFile(path, bytes, reason))
        return true;
    if (error)
        *error = path + QLatin1String(": ") + reason;
    return false;
}
