#include "ZrKit/sonar/ZrBottomFile.h"

#include "ZrKit/files/ZrReplaceFile.h"
#include "ZrKit/sonar/ZrBottomLine.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <limits>

namespace {

constexpr int version = 1;

QLatin1String FormatName()
{
    return QLatin1String("ZrBottomLine");
}

QJsonObject LogOf(const ZrSonarPings& pings)
{
    QJsonObject log;
    log.insert(QStringLiteral("pings"), static_cast<qint64>(pings.size()));
    log.insert(QStringLiteral("first"), pings.empty() ? QJsonValue() : QJsonValue(pings.front().time));
    log.insert(QStringLiteral("last"), pings.empty() ? QJsonValue() : QJsonValue(pings.back().time));
    return log;
}

QString Described(const QJsonObject& log)
{
    const auto time = [&](const char* name) {
        return QString::number(log.value(QLatin1String(name)).toDouble(), 'f', 3);
    };
    const double pings = log.value(QLatin1String("pings")).toDouble();
    return pings > 0.0 ? QCoreApplication::translate("ZrBottomFile", "%1 pings from %2 to %3 s")
                             .arg(pings, 0, 'f', 0)
                             .arg(time("first"), time("last"))
                       : QCoreApplication::translate("ZrBottomFile", "no pings");
}

/// The pings with an altitude as stretches.
QJsonArray StretchesOf(const std::vector<double>& altitudes)
{
    QJsonArray stretches;
    for (std::size_t i = 0; i < altitudes.size(); ++i) {
        if (std::isnan(altitudes[i]))
            continue;
        QJsonObject stretch;
        stretch.insert(QStringLiteral("ping"), static_cast<qint64>(i));
        QJsonArray values;
        for (; i < altitudes.size() && !std::isnan(altitudes[i]); ++i)
            values.append(altitudes[i]);
        stretch.insert(QStringLiteral("altitudes"), values);
        stretches.append(stretch);
    }
    return stretches;
}

/// Fills \p altitudes, which are all NaN; false, with the reason in \p reason, for what `StretchesOf` does
/// not make.
bool Fill(const QJsonObject& root, const QString& name, std::vector<double>& altitudes, QString& reason)
{
    const QJsonValue value = root.value(name);
    if (!value.isArray()) {
        reason = QCoreApplication::translate("ZrBottomFile", "\"%1\" is missing or no list").arg(name);
        return false;
    }
    std::size_t next = 0;
    int number = 0;
    for (const QJsonValue& entry : value.toArray()) {
        ++number;
        const double ping = entry.toObject().value(QStringLiteral("ping")).toDouble(-1.0);
        const QJsonArray values = entry.toObject().value(QStringLiteral("altitudes")).toArray();
        const auto count = static_cast<std::size_t>(values.size());
        const bool fits = ping >= static_cast<double>(next) && ping == std::floor(ping)
            && ping < static_cast<double>(altitudes.size())
            && count <= altitudes.size() - static_cast<std::size_t>(ping);
        if (!fits || count == 0) {
            reason = QCoreApplication::translate("ZrBottomFile", "Stretch %1 of \"%2\" does not fit in")
                         .arg(number)
                         .arg(name);
            return false;
        }
        next = static_cast<std::size_t>(ping);
        for (const QJsonValue& altitude : values) {
            const double metres = altitude.toDouble(-1.0);
            if (!(metres >= 0.0) || std::isinf(metres)) {
                reason = QCoreApplication::translate(
                    "ZrBottomFile", "Ping %1 of \"%2\" has no altitude that can be")
                             .arg(next)
                             .arg(name);
                return false;
            }
            altitudes[next++] = metres;
        }
    }
    return true;
}

} // namespace

ZrBottomFile::ZrBottomFile(const QString& logPath)
    : m_path(logPath + QLatin1String(".bottom.json"))
{
}

bool ZrBottomFile::Fail(eState state, const QString& reason)
{
    m_state = state;
    m_error = m_path + QLatin1String(": ") + reason;
    return false;
}

/// The bytes of the file; the state is not `Idle` when it cannot be read.
QByteArray ZrBottomFile::ReadAll()
{
    const QFileInfo info(m_path);
    if (!info.exists() && !info.isSymLink()) {
        Fail(Missing, QCoreApplication::translate("ZrBottomFile", "There is no such file"));
        return {};
    }
    // Opening a pipe would wait for whoever writes into it.
    if (!info.isFile()) {
        Fail(Unreadable, QCoreApplication::translate("ZrBottomFile", "This is no ordinary file"));
        return {};
    }
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly)) {
        Fail(Unreadable, file.errorString());
        return {};
    }
    if (file.size() > MaxSize) {
        Fail(Unreadable,
            QCoreApplication::translate("ZrBottomFile", "The file is too large for a bottom line"));
        return {};
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        Fail(Unreadable, file.errorString());
    return bytes;
}

bool ZrBottomFile::Load(const ZrSonarPings& pings, ZrBottomLine& line)
{
    m_state = Idle;
    m_error.clear();
    m_keptPath.clear();
    const QByteArray bytes = ReadAll();
    if (m_state != Idle)
        return false;
    if (bytes.isEmpty())
        return Fail(Damaged, QCoreApplication::translate("ZrBottomFile", "The file is empty"));
    QJsonParseError parse;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &parse);
    if (parse.error != QJsonParseError::NoError) {
        return Fail(Damaged,
            QCoreApplication::translate("ZrBottomFile", "The file is damaged at byte %1 (%2)")
                .arg(parse.offset)
                .arg(parse.errorString()));
    }
    const QJsonObject root = document.object();
    if (root.value(QStringLiteral("format")).toString() != FormatName())
        return Fail(Foreign, QCoreApplication::translate("ZrBottomFile", "The file holds no bottom line"));
    const double made = root.value(QStringLiteral("version")).toDouble();
    if (made != static_cast<double>(version)) {
        return Fail(Foreign,
            QCoreApplication::translate(
                "ZrBottomFile", "The file has version %1 of the format, and only %2 is known")
                .arg(made)
                .arg(version));
    }
    const QJsonObject log = root.value(QStringLiteral("log")).toObject();
    if (log != LogOf(pings)) {
        return Fail(Foreign,
            QCoreApplication::translate(
                "ZrBottomFile", "The bottom line belongs to another log: it has %1, this log has %2")
                .arg(Described(log), Described(LogOf(pings))));
    }
    constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
    std::vector<double> found(pings.size(), unknown);
    std::vector<double> edited(pings.size(), unknown);
    QString reason;
    if (!Fill(root, QStringLiteral("found"), found, reason)
        || !Fill(root, QStringLiteral("edited"), edited, reason))
        return Fail(Damaged, reason);
    ZrBottomLine loaded(pings.size());
    loaded.SetFound(std::move(found));
    loaded.SetEdited(0, edited);
    line = std::move(loaded);
    m_state = Whole;
    return true;
}

/// Moves what is there aside.
bool ZrBottomFile::Keep()
{
    const QString aside = m_path + QLatin1String(".kept");
    QString name = aside;
    for (int i = 2; QFileInfo::exists(name) || QFileInfo(name).isSymLink(); ++i)
        name = aside + QLatin1Char('-') + QString::number(i);
    QFile file(m_path);
    if (!file.rename(name))
        return Fail(NotWritten,
            QCoreApplication::translate("ZrBottomFile", "Cannot be moved aside, %1").arg(file.errorString()));
    m_keptPath = name;
    return true;
}

bool ZrBottomFile::Save(const ZrSonarPings& pings, const ZrBottomLine& line)
{
    if (line.Count() != pings.size()) {
        m_keptPath.clear();
        return Fail(NotWritten,
            QCoreApplication::translate("ZrBottomFile", "The bottom line has %1 pings, the log %2")
                .arg(line.Count())
                .arg(pings.size()));
    }
    QJsonObject root;
    root.insert(QStringLiteral("format"), FormatName());
    root.insert(QStringLiteral("version"), version);
    root.insert(QStringLiteral("log"), LogOf(pings));
    root.insert(QStringLiteral("found"), StretchesOf(line.Found()));
    root.insert(QStringLiteral("edited"), StretchesOf(line.Edited()));
    const QByteArray bytes = QJsonDocument(root).toJson(QJsonDocument::Compact);
    if (bytes.size() > MaxSize) {
        m_keptPath.clear();
        return Fail(NotWritten,
            QCoreApplication::translate("ZrBottomFile", "The bottom line is too large for the file"));
    }
    ZrBottomLine former;
    const bool replaces = Load(pings, former) || m_state == Missing;
    const QFileInfo info(m_path);
    const bool tooLarge = m_state == Unreadable && info.isFile() && info.size() > MaxSize;
    if (!replaces && m_state == Unreadable && !tooLarge)
        return false;
    if (!replaces && !Keep())
        return false;
    QString reason;
    if (!zr::replace_file(m_path, bytes, &reason)) {
        if (!m_keptPath.isEmpty() && QFile::rename(m_keptPath, m_path))
            m_keptPath.clear();
        m_state = NotWritten;
        m_error = reason;
        return false;
    }
    m_state = Whole;
    m_error.clear();
    return true;
}
