#include "ZrKit/files/ZrReplaceFile.h"

#include <QSaveFile>

namespace {

/// Writes all of \p bytes. A disk that is nearly full takes a part first and tells the reason the next time.
bool WriteAll(QSaveFile& file, const QByteArray& bytes)
{
    for (qint64 done = 0; done < bytes.size();) {
        const qint64 written = file.write(bytes.constData() + done, bytes.size() - done);
        if (written <= 0)
            return false;
        done += written;
    }
    return true;
}

} // namespace

bool zr::replace_file(const QString& path, const QByteArray& bytes, QString* error)
{
    QSaveFile file(path);
    // Unbuffered: committing would not notice bytes that find no room when a buffer is emptied.
    if (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && WriteAll(file, bytes) && file.commit())
        return true;
    if (error)
        *error = path + QLatin1String(": ") + file.errorString();
    return false;
}
