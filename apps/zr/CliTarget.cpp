#include "CliTarget.h"

#include "CliExit.h"
#include "CliMessages.h"
#include "ZrUtil/ZrSameFile.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QString SystemError(int number)
{
    return QString::fromLocal8Bit(std::strerror(number));
}

/// Moves \p from to \p to. Unless \p replace, a file that has appeared at \p to meanwhile is left alone.
/// Returns 0 or the system's error number.
int Rename(const QByteArray& from, const QByteArray& to, bool replace)
{
    if (!replace) {
#ifdef RENAME_NOREPLACE
        if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0)
            return 0;
        if (errno != EINVAL && errno != ENOSYS)
            return errno;
#endif
        struct stat there = {};
        if (::lstat(to, &there) == 0)
            return EEXIST;
    }
    return ::rename(from, to) == 0 ? 0 : errno;
}

} // namespace

CliTarget::~CliTarget()
{
    if (!m_temporary.isEmpty())
        QFile::remove(m_temporary);
}

int CliTarget::Refuse(const QString& reason) const
{
    return cli::fail(exBadOutput, m_given + QStringLiteral(": ") + reason);
}

int CliTarget::Prepare(const QString& path, bool force, const QStringList& inputs)
{
    m_given = path;
    m_path = path;
    m_force = force;
    for (const QString& input : inputs) {
        if (zr::is_same_file(input, path)) {
            return cli::fail(
                exUsage, QStringLiteral("%1: The output is the same file as the input %2").arg(path, input));
        }
    }
    const QFileInfo info(path);
    if (path.isEmpty() || info.fileName().isEmpty())
        return Refuse(QStringLiteral("This names no file"));
    if (info.isSymLink()) {
        if (!info.exists())
            return Refuse(QStringLiteral("This is a link to a file that does not exist"));
        m_path = info.canonicalFilePath();
    }
    return CheckPlace();
}

int CliTarget::CheckPlace() const
{
    const QFileInfo info(m_path);
    if (info.isDir())
        return Refuse(QStringLiteral("This is a folder, not a file"));
    if (info.exists() && !info.isFile())
        return Refuse(QStringLiteral("Not an ordinary file"));
    if (info.exists() && !m_force)
        return Refuse(QStringLiteral("The file exists already; --force replaces it"));
    const QFileInfo folder(info.path());
    if (!folder.exists())
        return Refuse(QStringLiteral("There is no folder %1").arg(info.path()));
    if (!folder.isDir())
        return Refuse(QStringLiteral("%1 is not a folder").arg(info.path()));
    if (!folder.isWritable())
        return Refuse(QStringLiteral("The folder %1 cannot be written").arg(info.path()));
    return exDone;
}

int CliTarget::CreateTemporary()
{
    const QString folder = QFileInfo(m_path).path();
    for (int attempt = 0; attempt < 100; ++attempt) {
        // Short, so that it fits where the target's own name only just does.
        const QString name = QStringLiteral("%1/.zr-%2.tmp")
                                 .arg(folder)
                                 .arg(QRandomGenerator::global()->generate64(), 16, 16, QLatin1Char('0'));
        m_guard = std::make_unique<cli::RemoveOnInterrupt>(name);
        const int file = ::open(QFile::encodeName(name), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (file >= 0) {
            ::close(file);
            m_temporary = name;
            return exDone;
        }
        const int reason = errno;
        m_guard.reset();
        if (reason != EEXIST)
            return Refuse(SystemError(reason));
    }
    return Refuse(QStringLiteral("No temporary file can be made beside it"));
}

/// What the system says when more is appended to the temporary file; empty when it takes it. The exports say
/// no more than that they failed, so the reason of a full disk is found by trying.
QString CliTarget::GrowthError() const
{
    QFile file(m_temporary);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        return file.errorString();
    const QByteArray block(64 * 1024, '\0');
    // A disk that is nearly full takes a part first and tells the reason the next time.
    for (qint64 left = 16 * block.size(); left > 0;) {
        const qint64 written = file.write(block.constData(), std::min<qint64>(left, block.size()));
        if (written <= 0)
            return file.errorString();
        left -= written;
    }
    return QString();
}

bool CliTarget::CannotGrow() const
{
    return !GrowthError().isEmpty();
}

int CliTarget::FailWriting() const
{
    const QString reason = GrowthError();
    return Refuse(reason.isEmpty() ? QStringLiteral("The file could not be written") : reason);
}

int CliTarget::Commit()
{
    const QByteArray from = QFile::encodeName(m_temporary);
    const QByteArray to = QFile::encodeName(m_path);
    // Some file systems find out only now that the disk is full.
    const int file = ::open(from, O_WRONLY | O_CLOEXEC);
    if (file < 0)
        return Refuse(SystemError(errno));
    int failed = ::fsync(file) == 0 ? 0 : errno;
    struct stat replaced = {};
    if (m_force && ::stat(to, &replaced) == 0)
        ::fchmod(file, replaced.st_mode & 07777);
    if (::close(file) != 0 && failed == 0)
        failed = errno;
    if (failed == 0)
        failed = Rename(from, to, m_force);
    if (failed == EEXIST)
        return Refuse(QStringLiteral("The file exists already; --force replaces it"));
    if (failed != 0)
        return Refuse(SystemError(failed));
    m_temporary.clear();
    m_guard.reset();
    return exDone;
}
