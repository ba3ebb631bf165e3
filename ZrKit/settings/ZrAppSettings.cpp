#include "ZrKit/settings/ZrAppSettings.h"

#include "ZrUtil/IPersistable.h"
#include "ZrUtil/ZrSetApp.h"

#include <QCoreApplication>
#include <QJsonValue>
#include <QStringList>

#include <algorithm>

namespace {

bool IsSameKind(const QJsonValue& a, const QJsonValue& b)
{
    const auto isNumber = [](const QJsonValue& value) { return value.isDouble() || value.isNull(); };
    return a.type() == b.type() || (isNumber(a) && isNumber(b));
}

/// Removes from \p loaded what is of another kind than in \p stored; as deep as \p stored is.
void RemoveOtherKinds(
    QJsonObject& loaded, const QJsonObject& stored, const QString& above, QStringList& removed)
{
    for (auto known = stored.constBegin(); known != stored.constEnd(); ++known) {
        const auto found = loaded.find(known.key());
        if (found == loaded.end())
            continue;
        const QJsonValue value = *found;
        const QString name = above + known.key();
        if (!IsSameKind(value, known.value())) {
            loaded.erase(found);
            removed.append(name);
        } else if (value.isObject()) {
            QJsonObject part = value.toObject();
            RemoveOtherKinds(part, known.value().toObject(), name + QLatin1String(" / "), removed);
            *found = part;
        }
    }
}

/// The first names; a damaged file may have thousands.
QString Listed(const QStringList& names)
{
    constexpr int most = 5;
    const QString first = QStringList(names.mid(0, most)).join(QLatin1String(", "));
    return names.size() <= most
        ? first
        : QCoreApplication::translate("ZrAppSettings", "%1 and %2 more").arg(first).arg(names.size() - most);
}

} // namespace

ZrAppSettings::ZrAppSettings(const QString& path)
    : m_file(path)
{
}

bool ZrAppSettings::Load(zr::IPersistable& app)
{
    m_message.clear();
    zr::ZrSetApp loaded(zr::ePersistLoading);
    if (!m_file.Load(loaded.root)) {
        if (m_file.State() == ZrSettingsFile::Missing)
            return false; // the first start
        m_message = QCoreApplication::translate(
            "ZrAppSettings", "The settings cannot be read; these are the defaults. %1.")
                        .arg(m_file.Error());
        if (m_file.State() == ZrSettingsFile::Damaged)
            PutAside();
        return false;
    }
    m_message = m_file.Warning();
    if (m_file.State() == ZrSettingsFile::FromBackup)
        PutAside();

    zr::ZrSetApp stored(zr::ePersistStoring);
    stored.synchronise(app);
    QStringList removed;
    RemoveOtherKinds(loaded.root, stored.root, QString(), removed);
    if (!removed.isEmpty()) {
        if (!m_message.isEmpty())
            m_message += QLatin1Char(' ');
        m_message += QCoreApplication::translate(
            "ZrAppSettings", "These settings have their defaults, what is in %1 is of the wrong kind: %2.")
                         .arg(m_file.UsedPath(), Listed(removed));
        if (m_file.State() == ZrSettingsFile::Whole)
            PutAside();
    }
    loaded.synchronise(app);
    return true;
}

bool ZrAppSettings::Save(zr::IPersistable& app)
{
    zr::ZrSetApp stored(zr::ePersistStoring);
    stored.synchronise(app);
    const bool ok = m_file.Save(stored.root);
    m_message = ok
        ? m_file.Warning()
        : QCoreApplication::translate("ZrAppSettings", "The settings are not saved. %1.").arg(m_file.Error());
    return ok;
}

/// At once: the next saving replaces the file.
void ZrAppSettings::PutAside()
{
    QString error;
    if (m_file.PutAside(&error))
        m_message += QCoreApplication::translate("ZrAppSettings", " What the file held is kept in %1.")
                         .arg(m_file.DamagedPath());
    else if (!error.isEmpty())
        m_message += QCoreApplication::translate("ZrAppSettings", " What the file held cannot be kept: %1.")
                         .arg(error);
}
