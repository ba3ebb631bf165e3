#include "ZrKit/planning/ZrPlanDocument.h"

#include "ZrKit/files/ZrReplaceFile.h"
#include "ZrKit/planning/ZrRouteFile.h"
#include "ZrUtil/ZrSetApp.h"
#include "ZrUtil/ZrWpt.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTimer>

#include <cmath>
#include <utility>

namespace {

const auto formatKey = QLatin1String("format");
const auto formatName = QLatin1String("zr-plan-draft");
const auto pathKey = QLatin1String("path");
const auto routeKey = QLatin1String("route");
const auto areasKey = QLatin1String("areas");
const auto noGoKey = QLatin1String("no-go");
const auto marginKey = QLatin1String("margin");

QJsonArray AreasToJson(const std::vector<ZrArea>& areas)
{
    QJsonArray array;
    for (const ZrArea& area : areas) {
        QJsonArray ring;
        for (const ZrGeoPoint& point : area.ring)
            ring.append(QJsonArray({point.lng, point.lat}));
        array.append(QJsonObject({{QStringLiteral("name"), area.name}, {QStringLiteral("ring"), ring}}));
    }
    return array;
}

/// Areas without a valid corner are left out, corners that are none as well.
std::vector<ZrArea> AreasFromJson(const QJsonValue& value)
{
    std::vector<ZrArea> areas;
    const QJsonArray array = value.toArray();
    for (const QJsonValue& item : array) {
        ZrArea area;
        area.name = item[QLatin1String("name")].toString();
        const QJsonArray ring = item[QLatin1String("ring")].toArray();
        for (const QJsonValue& corner : ring) {
            const ZrGeoPoint point{corner[1].toDouble(std::nan("")), corner[0].toDouble(std::nan(""))};
            if (point.IsValid())
                area.ring.push_back(point);
        }
        if (!area.ring.empty())
            areas.push_back(std::move(area));
    }
    return areas;
}

} // namespace

ZrPlanDocument::ZrPlanDocument(const QString& draftPath, QObject* parent)
    : QObject(parent)
    , m_history(m_route)
    , m_draftPath(draftPath)
    , m_draftTimer(new QTimer(this))
{
    m_route.linked = true;
    m_history.Reset();
    m_draftTimer->setSingleShot(true);
    connect(m_draftTimer, &QTimer::timeout, this, [this] {
        if (m_isDraftDue)
            WriteDraft();
    });
}

ZrPlanDocument::~ZrPlanDocument()
{
    FlushDraft();
}

void ZrPlanDocument::SetAreas(std::vector<ZrArea> areas)
{
    m_areas = std::move(areas);
    m_areasEdited = true;
    Edited();
}

void ZrPlanDocument::SetNoGo(std::vector<ZrArea> areas)
{
    m_noGo = std::move(areas);
    m_areasEdited = true;
    Edited();
}

void ZrPlanDocument::SetMargin(double metres)
{
    if (!std::isfinite(metres) || metres == m_margin)
        return;
    m_margin = metres;
    m_areasEdited = true;
    Edited();
}

void ZrPlanDocument::Edited()
{
    Forget();
    if (!m_isDraftDue)
        m_draftWait.start();
    m_isDraftDue = true;
    if (!m_draftTimer->isActive() || m_draftWait.elapsed() >= DraftMostMilliseconds)
        WriteDraft();
    m_draftTimer->start(DraftMilliseconds);
    Q_EMIT Changed();
}

void ZrPlanDocument::Forget()
{
    m_pathway.reset();
    m_findings.reset();
}

const ZrRoutePath& ZrPlanDocument::Path()
{
    if (!m_pathway)
        m_pathway = std::make_unique<ZrRoutePath>(m_route);
    return *m_pathway;
}

const std::vector<ZrRouteFinding>& ZrPlanDocument::Findings()
{
    if (!m_findings) {
        ZrRouteCheck::Options options;
        options.noGo = m_noGo;
        options.margin = m_margin;
        m_findings = std::make_unique<std::vector<ZrRouteFinding>>(ZrRouteCheck::Run(m_route, options));
    }
    return *m_findings;
}

int ZrPlanDocument::LineCount() const
{
    int count = 0;
    for (ZrListPos* pos = m_route.GetHeadPos(); pos;)
        count += m_route.GetNext(pos)->name.endsWith(QLatin1String(" S")) ? 1 : 0;
    return count;
}

QString ZrPlanDocument::Name() const
{
    return m_path.isEmpty() ? tr("New plan") : QFileInfo(m_path).completeBaseName();
}

bool ZrPlanDocument::IsDirty() const
{
    return m_areasEdited || !m_history.IsClean();
}

void ZrPlanDocument::SetPath(const QString& path)
{
    m_path = path;
    m_history.SetClean();
    m_areasEdited = false;
    DiscardDraft();
    Q_EMIT Changed();
}

void ZrPlanDocument::New()
{
    m_route = ZrWpts();
    m_route.linked = true;
    m_history.Reset();
    m_areas.clear();
    m_noGo.clear();
    m_margin = 0.0;
    Forget();
    SetPath(QString());
}

bool ZrPlanDocument::Open(const QString& path)
{
    m_error.clear();
    ZrRouteFile file;
    ZrWpts route;
    const bool isRead = file.Read(path, route);
    m_warnings = file.Warnings();
    if (!isRead)
        return Fail(file.Error());
    m_route = route;
    m_history.Reset();
    QJsonObject extras;
    QFile content(path);
    if (ZrRouteFile::FormatOf(path) == ZrRouteFile::Settings && content.open(QIODevice::ReadOnly))
        extras = QJsonDocument::fromJson(content.readAll()).object();
    ExtrasFromJson(extras);
    Forget();
    SetPath(path);
    return true;
}

bool ZrPlanDocument::Save(const QString& path)
{
    m_error.clear();
    m_warnings.clear();
    if (ZrRouteFile::FormatOf(path) == ZrRouteFile::Settings) {
        ZrRouteFile file;
        QByteArray bytes;
        if (!file.ToBytes(ZrRouteFile::Settings, m_route, bytes))
            return Fail(file.Error());
        QJsonObject root = QJsonDocument::fromJson(bytes).object();
        ExtrasToJson(root);
        if (!zr::replace_file(path, QJsonDocument(root).toJson(), &m_error))
            return false;
    } else if (!Export(path)) {
        return false;
    }
    SetPath(path);
    return true;
}

bool ZrPlanDocument::Export(const QString& path)
{
    m_error.clear();
    ZrRouteFile file;
    const bool isWritten = file.Write(path, ZrRouteFile::FormatOf(path), m_route);
    m_warnings = file.Warnings();
    return isWritten || Fail(file.Error());
}

void ZrPlanDocument::ExtrasToJson(QJsonObject& root) const
{
    root[areasKey] = AreasToJson(m_areas);
    root[noGoKey] = AreasToJson(m_noGo);
    root[marginKey] = m_margin;
}

void ZrPlanDocument::ExtrasFromJson(const QJsonObject& root)
{
    m_areas = AreasFromJson(root[areasKey]);
    m_noGo = AreasFromJson(root[noGoKey]);
    m_margin = root[marginKey].toDouble();
}

QJsonObject ZrPlanDocument::ToJson() const
{
    ZrRouteFile file;
    QByteArray bytes;
    file.ToBytes(ZrRouteFile::Settings, m_route, bytes);
    QJsonObject root({{formatKey, QString(formatName)}, {pathKey, m_path},
        {routeKey, QJsonDocument::fromJson(bytes).object()}});
    ExtrasToJson(root);
    return root;
}

bool ZrPlanDocument::HasDraft() const
{
    return !m_draftPath.isEmpty() && QFileInfo(m_draftPath).isFile();
}

bool ZrPlanDocument::RestoreDraft()
{
    m_error.clear();
    if (!HasDraft())
        return Fail(tr("There is no draft"));
    QFile file(m_draftPath);
    if (!file.open(QIODevice::ReadOnly))
        return Fail(QStringLiteral("%1: %2").arg(m_draftPath, file.errorString()));
    return FromJson(QJsonDocument::fromJson(file.readAll()).object(), m_draftPath);
}

bool ZrPlanDocument::FromJson(const QJsonObject& root, const QString& name)
{
    if (root[formatKey].toString() != formatName)
        return Fail(tr("%1: this is no draft of a plan").arg(name));
    ZrWpts route;
    const QByteArray bytes = QJsonDocument(root[routeKey].toObject()).toJson();
    ZrRouteFile reader;
    // A plan may have areas and no waypoint yet.
    const bool hasRoute = !root[routeKey][QLatin1String("waypoints")].toArray().isEmpty();
    if (hasRoute && !reader.FromBytes(bytes, route))
        return Fail(QStringLiteral("%1: %2").arg(name, reader.Error()));
    if (!hasRoute)
        route.linked = true;
    m_route = route;
    m_history.Reset();
    ExtrasFromJson(root);
    m_path = root[pathKey].toString();
    // What was not saved then is not saved now.
    m_areasEdited = true;
    Forget();
    Q_EMIT Changed();
    return true;
}

QByteArray ZrPlanDocument::State() const
{
    return QJsonDocument(ToJson()).toJson(QJsonDocument::Compact);
}

bool ZrPlanDocument::SetState(const QByteArray& state)
{
    m_error.clear();
    if (!FromJson(QJsonDocument::fromJson(state).object(), tr("State")))
        return false;
    m_isDraftDue = true;
    FlushDraft();
    return true;
}

void ZrPlanDocument::DiscardDraft()
{
    m_isDraftDue = false;
    if (!m_draftPath.isEmpty())
        QFile::remove(m_draftPath);
}

void ZrPlanDocument::FlushDraft()
{
    if (m_isDraftDue)
        WriteDraft();
}

void ZrPlanDocument::WriteDraft()
{
    m_isDraftDue = false;
    if (m_draftPath.isEmpty())
        return;
    QString error;
    QDir().mkpath(QFileInfo(m_draftPath).path());
    const bool isWritten = zr::replace_file(m_draftPath, QJsonDocument(ToJson()).toJson(), &error);
    if (!isWritten && !m_hasDraftFailed)
        Q_EMIT DraftFailed(error);
    m_hasDraftFailed = !isWritten;
}

bool ZrPlanDocument::Fail(const QString& error)
{
    m_error = error;
    return false;
}
