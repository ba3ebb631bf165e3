#include "ZrKit/settings/ZrSettingsFile.h"

#include "ZrKit/files/ZrReplaceFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

namespace {

struct Content
{
    ZrSettingsFile::eState state = ZrSettingsFile::Missing;
    QString reason; ///< why it is not whole
    QByteArray bytes;
    QJsonObject root;
};

QString At(const QString& path, const QString& reason)
{
    return path + QLatin1String(": ") + reason;
}

/// Decides whether `bytes` are good.
void Parse(Content& content)
{
    content.state = ZrSettingsFile::Damaged;
    if (content.bytes.isEmpty()) {
        content.reason = QCoreApplication::translate("ZrSettingsFile", "The file is empty");
        return;
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(content.bytes, &error);
    if (error.error != QJsonParseError::NoError) {
        content.reason = QCoreApplication::translate("ZrSettingsFile", "Line %1 is damaged (%2)")
                             .arg(content.bytes.left(error.offset).count('\n') + 1)
                             .arg(error.errorString());
        return;
    }
    if (!document.isObject()) {
        content.reason = QCoreApplication::translate("ZrSettingsFile", "The file holds no settings");
        return;
    }
    content.root = document.object();
    content.state = ZrSettingsFile::Whole;
}

Content ReadFile(const QString& path)
{
    Content content;
    const QFileInfo info(path);
    if (!info.exists()) {
        content.reason = QCoreApplication::translate("ZrSettingsFile", "There is no such file");
        return content;
    }
    content.state = ZrSettingsFile::Unreadable;
    // Opening a pipe would wait for whoever writes into it.
    if (!info.isFile()) {
        content.reason = QCoreApplication::translate("ZrSettingsFile", "This is no ordinary file");
        return content;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        content.reason = file.errorString();
        return content;
    }
    content.bytes = file.read(ZrSettingsFile::MaxSize + 1);
    if (file.error() != QFileDevice::NoError) {
        content.reason = file.errorString();
        return content;
    }
    if (content.bytes.size() > ZrSettingsFile::MaxSize) {
        content.bytes.clear();
        content.reason = QCoreApplication::translate("ZrSettingsFile", "The file is too large for settings");
        return content;
    }
    Parse(content);
    return content;
}

/// Puts \p bytes beside \p original, for the same eyes.
bool WriteBeside(const QString& path, const QByteArray& bytes, const QString& original, QString& error)
{
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) {
        error = At(path, QCoreApplication::translate("ZrSettingsFile", "This is no ordinary file"));
        return false;
    }
    if (!zr::replace_file(path, bytes, &error))
        return false;
    QFile::setPermissions(path, QFile::permissions(original));
    return true;
}

} // namespace

ZrSettingsFile::ZrSettingsFile(const QString& path)
    : m_path(path)
{
}

QString ZrSettingsFile::BackupPath() const
{
    return m_path + QLatin1String(".bak");
}

QString ZrSettingsFile::DamagedPath() const
{
    return m_path + QLatin1String(".damaged");
}

bool ZrSettingsFile::Load(QJsonObject& root)
{
    Reset();
    const Content file = ReadFile(m_path);
    if (file.state == Whole) {
        root = file.root;
        m_usedPath = m_path;
        m_state = Whole;
        return true;
    }
    const Content copy = ReadFile(BackupPath());
    if (copy.state == Whole) {
        root = copy.root;
        m_usedPath = BackupPath();
        m_state = FromBackup;
        Warn(At(m_path, file.reason) + QLatin1String(". The settings are those of its last good copy, ")
            + BackupPath() + QLatin1Char('.'));
        return true;
    }
    if (copy.state == Missing)
        return Fail(file.state, At(m_path, file.reason));
    return Fail(file.state == Missing ? copy.state : file.state,
        At(m_path, file.reason) + QLatin1String("; ") + At(BackupPath(), copy.reason));
}

bool ZrSettingsFile::Save(const QJsonObject& root)
{
    Reset();
    if (m_path.isEmpty())
        return Fail(
            NotWritten, QCoreApplication::translate("ZrSettingsFile", "The settings file has no name"));
    Content made;
    made.bytes = QJsonDocument(root).toJson(QJsonDocument::Indented);
    if (made.bytes.size() > MaxSize)
        return Fail(Damaged,
            At(m_path,
                QCoreApplication::translate("ZrSettingsFile", "The settings are too large for a file")));
    Parse(made);
    if (made.state != Whole)
        return Fail(Damaged,
            At(m_path,
                QCoreApplication::translate(
                    "ZrSettingsFile", "The settings are nested too deep for a file")));

    const Content former = ReadFile(m_path);
    if (former.state == Unreadable)
        return Fail(Unreadable, At(m_path, former.reason + QLatin1String("; it is not replaced")));
    const bool isChange = former.state != Whole || former.bytes != made.bytes;
    if (isChange) {
        KeepFormer(former.state, former.bytes, former.reason);
        if (former.state == Missing)
            QDir().mkpath(QFileInfo(m_path).absolutePath());
        QString error;
        if (!zr::replace_file(m_path, made.bytes, &error))
            return Fail(NotWritten, error);
    }
    // Only now: a copy of settings that were never saved would be loaded in place of a missing file.
    if ((!isChange || former.state != Whole) && ReadFile(BackupPath()).state != Whole)
        WriteBackup(made.bytes);
    m_state = Whole;
    return true;
}

bool ZrSettingsFile::PutAside(QString* error) const
{
    QString reason;
    const Content file = ReadFile(m_path);
    const bool ok = !file.bytes.isEmpty() && WriteBeside(DamagedPath(), file.bytes, m_path, reason);
    if (error)
        *error = reason;
    return ok;
}

void ZrSettingsFile::KeepFormer(eState state, const QByteArray& bytes, const QString& reason)
{
    if (state == Whole)
        WriteBackup(bytes);
    if (state != Damaged || bytes.isEmpty())
        return;
    QString error;
    if (WriteBeside(DamagedPath(), bytes, m_path, error))
        Warn(At(m_path, reason) + QLatin1String(". What it held is kept in ") + DamagedPath()
            + QLatin1Char('.'));
    else
        Warn(At(m_path, reason) + QLatin1String(". What it held is lost: ") + error + QLatin1Char('.'));
}

void ZrSettingsFile::WriteBackup(const QByteArray& bytes)
{
    QString error;
    if (!WriteBeside(BackupPath(), bytes, m_path, error))
        Warn(QLatin1String("The last good copy of the settings cannot be written: ") + error
            + QLatin1Char('.'));
}

void ZrSettingsFile::Reset()
{
    m_state = Idle;
    m_usedPath.clear();
    m_error.clear();
    m_warning.clear();
}

bool ZrSettingsFile::Fail(eState state, const QString& error)
{
    m_state = state;
    m_error = error;
    m_warning.clear();
    return false;
}

void ZrSettingsFile::Warn(const QString& sentence)
{
    if (!m_warning.isEmpty())
        m_warning += QLatin1Char(' ');
    m_warning += sentence;
}
