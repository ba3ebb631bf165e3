#include "ZrKit/planning/ZrPlanReader.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

bool ZrPlanReader::Fail(const QString& error)
{
    m_error = error;
    return false;
}

bool ZrPlanReader::Load(const QString& path)
{
    m_rest = ZrPlanState();
    m_error.clear();
    m_isDraft = false;
    m_hasRoute = true;
    m_name = path;
    if (!m_file.Load(path))
        return Fail(m_file.Error());
    QFile content(path);
    if (ZrRouteFile::FormatOf(path) == ZrRouteFile::Settings && content.open(QIODevice::ReadOnly))
        m_rest.AreasFromJson(QJsonDocument::fromJson(content.readAll()).object());
    m_rest.path = path;
    return true;
}

bool ZrPlanReader::LoadDraft(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Fail(QStringLiteral("%1: %2").arg(path, file.errorString()));
    return FromDraft(file.readAll(), path);
}

bool ZrPlanReader::FromDraft(const QByteArray& bytes, const QString& name)
{
    m_rest = ZrPlanState();
    m_error.clear();
    m_isDraft = true;
    m_name = name;
    const QJsonObject root = QJsonDocument::fromJson(bytes).object();
    if (root[QLatin1String("format")].toString() != QLatin1String("zr-plan-draft"))
        return Fail(tr("%1: this is no draft of a plan").arg(name));
    const QJsonObject route = root[QLatin1String("route")].toObject();
    // A plan may have areas and no waypoint yet.
    m_hasRoute = !route[QLatin1String("waypoints")].toArray().isEmpty();
    if (m_hasRoute && !m_file.LoadBytes(QJsonDocument(route).toJson()))
        return Fail(QStringLiteral("%1: %2").arg(name, m_file.Error()));
    m_rest.AreasFromJson(root);
    m_rest.path = root[QLatin1String("path")].toString();
    return true;
}

/// On the thread of routes.
bool ZrPlanReader::Finish(ZrPlanState& state)
{
    state = m_rest;
    state.route.linked = true;
    if (m_hasRoute && !m_file.Finish(state.route))
        return Fail(m_isDraft ? m_name + m_file.Error() : m_file.Error());
    return true;
}
