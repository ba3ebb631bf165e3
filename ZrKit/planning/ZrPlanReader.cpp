#include "ZrKit/planning/ZrPlanReader.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

bool ZrPlanReader::Fail(const QString& error)
{
    m_error = error;
    return false;
}

void ZrPlanReader::Begin(bool isDraft, const QString& path)
{
    m_state = ZrPlanState();
    m_bytes.clear();
    m_path = path;
    m_isDraft = isDraft;
    m_isLoaded = false;
    m_error.clear();
}

bool ZrPlanReader::Load(const QString& path)
{
    Begin(false, path);
    if (!m_file.Load(path) || !m_file.FinishBare(m_state.route, m_state.head))
        return Fail(m_file.Error());
    QFile content(path);
    if (ZrRouteFile::FormatOf(path) == ZrRouteFile::Settings && content.open(QIODevice::ReadOnly))
        m_state.areas = ZrPlanAreas::FromJson(QJsonDocument::fromJson(content.readAll()).object());
    m_state.path = path;
    m_isLoaded = true;
    return true;
}

bool ZrPlanReader::LoadDraft(const QString& path)
{
    Begin(true, path);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Fail(QStringLiteral("%1: %2").arg(path, file.errorString()));
    return ReadDraft(file.readAll(), path);
}

bool ZrPlanReader::FromDraft(const QByteArray& bytes, const QString& name)
{
    Begin(true, QString());
    return ReadDraft(bytes, name);
}

bool ZrPlanReader::ReadDraft(const QByteArray& bytes, const QString& name)
{
    const QJsonObject root = QJsonDocument::fromJson(bytes).object();
    if (root[QLatin1String("format")].toString() != QLatin1String("zr-plan-draft"))
        return Fail(tr("%1: this is no draft of a plan").arg(name));
    const QJsonObject route = root[QLatin1String("route")].toObject();
    // A plan may have areas and no waypoint yet.
    const bool hasRoute = !route[QLatin1String("waypoints")].toArray().isEmpty();
    if (hasRoute
        && !(m_file.LoadBytes(QJsonDocument(route).toJson())
            && m_file.FinishBare(m_state.route, m_state.head)))
        return Fail(QStringLiteral("%1: %2").arg(name, m_file.Error()));
    if (!hasRoute)
        m_state.route.linked = true;
    m_state.areas = ZrPlanAreas::FromJson(root);
    m_state.sketch = ZrPlanSketch::FromJson(root[QLatin1String("sketch")].toObject());
    m_state.path = root[QLatin1String("path")].toString();
    m_bytes = bytes;
    m_isLoaded = true;
    return true;
}
