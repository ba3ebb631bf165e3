#include "ZrKit/planning/ZrAreaCheck.h"

#include "ZrKit/planning/ZrPlaneArea.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrUtil/ZrUtil.h"
#include "ZrUtil/ZrWpts.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace {

// Legs of pieces that stand for a waypoint alone: this one for the first waypoint, and down from there.
constexpr int firstAlone = -1;

QString Metres(double metres)
{
    return QString::number(metres, 'f', 1) + QStringLiteral(" m");
}

void Add(std::vector<ZrRouteFinding>& findings, ZrRouteFinding::eSeverity severity,
    ZrRouteFinding::eCode code, const QString& text)
{
    findings.push_back({severity, code, -1, {}, text, {}});
}

} // namespace

void ZrAreaCheck::Box::Add(double lat, double lng)
{
    south = std::min(south, lat);
    north = std::max(north, lat);
    west = std::min(west, lng);
    east = std::max(east, lng);
}

void ZrAreaCheck::Box::Widen(double metres)
{
    constexpr double metresPerDegree = 110000.0; // somewhat less than anywhere
    const double lat = metres / metresPerDegree;
    const double level = std::cos(ZrUtil::D2R(std::min(std::max(-south, north) + lat, 89.9)));
    south -= lat;
    north += lat;
    west -= lat / level;
    east += lat / level;
}

/// Straights bow to the pole between waypoints at one latitude, and arcs stay between the straights.
double ZrAreaCheck::Box::Bow() const
{
    constexpr double earthRadius = 6371000.0;
    const double farthest = ZrUtil::D2R(std::min(std::max(-south, north), ZrRoutePath::MaxLatitude));
    const double width = ZrUtil::D2R(east - west) * std::cos(farthest) * earthRadius;
    return width * width / (8.0 * earthRadius) * std::tan(std::fabs(farthest)) * 2.0 + 1000.0;
}

bool ZrAreaCheck::Box::Meets(const Box& other) const
{
    return south <= other.north && north >= other.south && west <= other.east && east >= other.west;
}

bool ZrAreaCheck::Box::FitsPlane() const
{
    return west >= -ZrRoutePath::MaxSpan && east <= ZrRoutePath::MaxSpan && south >= -ZrRoutePath::MaxLatitude
        && north <= ZrRoutePath::MaxLatitude;
}

ZrAreaCheck::ZrAreaCheck(const ZrWpts& route, const ZrRoutePath& path, double margin,
    std::vector<ZrRouteFinding>& findings, const std::atomic<bool>* cancel)
    : m_path(path)
    , m_margin(margin)
    , m_cancel(cancel)
    , m_findings(findings)
    , m_pieces(path.Pieces())
{
    if (!std::isfinite(margin) || margin < 0.0) {
        m_margin = 0.0;
        Add(m_findings, ZrRouteFinding::eError, ZrRouteFinding::eBadMargin,
            QCoreApplication::translate(
                "ZrAreaCheck", "A safety margin of %1 m is not possible: areas are checked without one.")
                .arg(margin));
    }
    std::vector<bool> touched;
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        m_wpts.push_back(route.GetNext(pos));
        touched.push_back(false);
    }
    for (const ZrPathPiece& piece : m_pieces) {
        const ZrRouteLeg& leg = path.Legs()[static_cast<std::size_t>(piece.leg)];
        touched[static_cast<std::size_t>(leg.from)] = touched[static_cast<std::size_t>(leg.to)] = true;
    }
    for (std::size_t i = 0; i < m_wpts.size(); ++i) {
        const ZrLocalPoint point = path.Points()[i];
        if (std::isnan(point.x))
            continue;
        m_box.Add(m_wpts[i]->lat, std::remainder(m_wpts[i]->lng - path.Frame().Origin().lng, 360.0));
        if (touched[i])
            continue;
        ZrPathPiece piece;
        piece.leg = firstAlone - static_cast<int>(i);
        piece.from = piece.to = point;
        m_pieces.push_back(piece);
    }
    m_box.Widen(m_margin + m_box.Bow());
}

QString ZrAreaCheck::NameOf(const ZrWpt& wpt, int index)
{
    const QString name = wpt.Name();
    return name.isEmpty() ? QStringLiteral("point %1").arg(index + 1) : name;
}

void ZrAreaCheck::Check(const ZrArea& area, int index, bool isFence)
{
    m_isFence = isFence;
    m_area = (isFence ? QStringLiteral("fence ") : QCoreApplication::translate("ZrAreaCheck", "no-go area "))
        + (area.name.isEmpty() ? QString::number(index + 1)
                               : QLatin1Char('"') + area.name + QLatin1Char('"'));
    if (!HasCorners(area))
        return;
    const Box box = BoxOf(area);
    // An area that goes half round the earth may reach the route from the other side.
    const bool isFar = !m_pieces.empty() && !box.Meets(m_box) && box.east - box.west <= 180.0;
    const bool isApart = isFar || m_pieces.empty(); // only the area itself is looked at
    if (!isApart && !box.FitsPlane()) {
        AddBad(QCoreApplication::translate("ZrAreaCheck",
            "is too large to be checked: it goes more than %1 degrees of longitude to a side of "
            "the middle of the route, or beyond %2 degrees of latitude.")
                   .arg(ZrRoutePath::MaxSpan)
                   .arg(ZrRoutePath::MaxLatitude));
        return;
    }
    const ZrLocalFrame frame = isApart ? ZrLocalFrame::Around(area.ring) : m_path.Frame();
    std::vector<ZrLocalPoint> corners;
    for (const ZrGeoPoint& corner : area.ring)
        corners.push_back(frame.ToLocal(corner));
    const ZrPlaneArea plane(corners);
    if (!IsSound(plane))
        return;
    if (isFar && isFence)
        AddFarFence();
    if (isApart)
        return;
    for (const ZrPathPiece& piece : m_pieces) {
        if (m_cancel && *m_cancel)
            return;
        CheckPiece(plane, piece);
    }
}

bool ZrAreaCheck::HasCorners(const ZrArea& area)
{
    for (std::size_t i = 0; i < area.ring.size(); ++i) {
        if (!area.ring[i].IsValid()) {
            AddBad(QCoreApplication::translate(
                "ZrAreaCheck", "cannot be checked: its corner %1 has no valid position.")
                       .arg(i + 1));
            return false;
        }
    }
    if (area.ring.size() < 3)
        AddBad(QCoreApplication::translate(
            "ZrAreaCheck", "cannot be checked: it has %1 corners, an area needs three.")
                   .arg(area.ring.size()));
    return area.ring.size() >= 3;
}

/// Each corner lies the shorter way round from the one before.
ZrAreaCheck::Box ZrAreaCheck::BoxOf(const ZrArea& area) const
{
    Box box;
    double last = m_path.Frame().Origin().lng;
    double around = 0.0; // from there, without wrapping
    for (const ZrGeoPoint& corner : area.ring) {
        around += std::remainder(corner.lng - last, 360.0);
        last = corner.lng;
        box.Add(corner.lat, around);
    }
    const double shift = 360.0 * std::round((box.west + box.east) / 720.0);
    box.west -= shift;
    box.east -= shift;
    return box;
}

bool ZrAreaCheck::IsSound(const ZrPlaneArea& plane)
{
    if (plane.IsDegenerate()) {
        AddBad(plane.Corners() < 3 ? QCoreApplication::translate(
                   "ZrAreaCheck", "cannot be checked: it has %1 different corners, an area needs three.")
                                         .arg(plane.Corners())
                                   : QCoreApplication::translate(
                                       "ZrAreaCheck", "cannot be checked: all its corners lie on a line."));
        return false;
    }
    if (plane.CrossesItself())
        Add(m_findings, ZrRouteFinding::eWarning, ZrRouteFinding::eAreaCrossesItself,
            QCoreApplication::translate("ZrAreaCheck",
                "The border of the %1 crosses itself: what it goes round twice counts as outside.")
                .arg(m_area));
    return true;
}

void ZrAreaCheck::CheckPiece(const ZrPlaneArea& plane, const ZrPathPiece& piece)
{
    const std::vector<ZrPlaneArea::Stretch> stretches = plane.Stretches(piece, !m_isFence);
    if (!stretches.empty()) {
        double share = 0.0;
        for (const ZrPlaneArea::Stretch& stretch : stretches)
            share += stretch.last - stretch.first;
        const QString what = m_isFence ? QStringLiteral("outside") : QStringLiteral("inside");
        const QString much = share > 0.9999 ? QCoreApplication::translate("ZrAreaCheck", "all of it")
                                            : QCoreApplication::translate("ZrAreaCheck", "%1 of its %2")
                                                  .arg(Metres(share * piece.length), Metres(piece.length));
        const QString text = piece.leg <= firstAlone
            ? QCoreApplication::translate("ZrAreaCheck", "is %1 the %2.").arg(what, m_area)
            : m_isFence
            ? QCoreApplication::translate("ZrAreaCheck", "leaves the %1: %2 outside.").arg(m_area, much)
            : QCoreApplication::translate("ZrAreaCheck", "enters the %1: %2 inside.").arg(m_area, much);
        AddPiece(piece, stretches.front().first,
            m_isFence ? ZrRouteFinding::eOutsideFence : ZrRouteFinding::eInNoGo, text);
        return;
    }
    if (!(m_margin > 0.0))
        return;
    const double distance = plane.Distance(piece, m_margin - ZrPlaneArea::Tolerance);
    if (std::isfinite(distance))
        AddPiece(piece, 0.0, m_isFence ? ZrRouteFinding::eNearFence : ZrRouteFinding::eNearNoGo,
            QCoreApplication::translate(
                "ZrAreaCheck", "comes within %1 of the border of the %2; the margin is %3.")
                .arg(Metres(distance), m_area, Metres(m_margin)));
}

/// The whole route is outside: one finding says so, at its first waypoint.
void ZrAreaCheck::AddFarFence()
{
    const auto known = std::find_if(m_path.Points().begin(), m_path.Points().end(),
        [](ZrLocalPoint point) { return !std::isnan(point.x); });
    const auto index = static_cast<std::size_t>(known - m_path.Points().begin());
    const ZrWpt& wpt = *m_wpts[index];
    m_findings.push_back(
        {ZrRouteFinding::eError, ZrRouteFinding::eOutsideFence, static_cast<int>(index), wpt.uuid,
            QCoreApplication::translate("ZrAreaCheck", "The whole route is outside the %1.").arg(m_area),
            {wpt.lat, wpt.lng}});
}

void ZrAreaCheck::AddBad(const QString& text)
{
    Add(m_findings, ZrRouteFinding::eError, ZrRouteFinding::eBadArea,
        QStringLiteral("The %1 %2").arg(m_area, text));
}

void ZrAreaCheck::AddPiece(
    const ZrPathPiece& piece, double fraction, ZrRouteFinding::eCode code, const QString& text)
{
    const auto name = [this](int i) { return NameOf(*m_wpts[static_cast<std::size_t>(i)], i); };
    int index = firstAlone - piece.leg;
    QString subject;
    if (piece.leg <= firstAlone) {
        subject = name(index);
    } else {
        const ZrRouteLeg& leg = m_path.Legs()[static_cast<std::size_t>(piece.leg)];
        index = piece.isArc ? leg.to : leg.from;
        subject = piece.isArc ? QCoreApplication::translate("ZrAreaCheck", "The turn at %1").arg(name(leg.to))
                              : QCoreApplication::translate("ZrAreaCheck", "The leg from %1 to %2")
                                    .arg(name(leg.from), name(leg.to));
    }
    m_findings.push_back({ZrRouteFinding::eError, code, index, m_wpts[static_cast<std::size_t>(index)]->uuid,
        subject + QLatin1Char(' ') + text, m_path.Frame().ToGeo(piece.At(fraction))});
}
