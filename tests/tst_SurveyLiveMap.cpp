// The map of a vehicle that is on its way: names of the plan and texts of the grid beside what moves.

#include "GlTest.h"
#include "ZrKit/map/ZrMapObstacles.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "ZrUtil/ZrWpts.h"
#include "apps/ZrSurvey/LiveMap.h"

#include <QtTest>

#include <memory>

namespace {

const QSize size(640, 480);
constexpr double lat = 48.4455;
constexpr double lng = -68.8280;

} // namespace

class tst_SurveyLiveMap : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void nameBelowTheVehicle();
    void textsBesideTheTrail();
    void textsBesideTheWaypoints();

private:
    std::vector<QRectF> GridTexts() const;
    bool IsShown(const QString& name) const;

    std::unique_ptr<gl::Context> m_context;
    std::unique_ptr<LiveMap> m_map;
};

void tst_SurveyLiveMap::init()
{
    ZrTheme::dp = 1.0F;
    ZrTheme::SetStdStyle();
    ZrUnits::SetToMetric();
    ZrUnits::SetGeoStyle(eGeoDeg);
    m_context = std::make_unique<gl::Context>(gl::Api::desktop, size);
    QCOMPARE(m_context->Error(), QString());
    m_map = std::make_unique<LiveMap>();
    m_map->m_background = QStringLiteral(":/back_light.png");
    m_map->OnCreate();
    m_map->ZrglSetViewport(0, 0, size.width(), size.height());
    m_map->OnResize(size.width(), size.height());
    ZrWpts route;
    int number = 0;
    for (const double east : {0.0, 0.0005, 0.0010})
        route.Add(lat, lng + east, eZrWptBlue, ZrWpts::eAddTail)->name
            = QStringLiteral("L%1 E").arg(++number);
    m_map->SetPlan(std::make_shared<const ZrWpts>(route));
    m_map->m_way.m_isFollowing = false;
    m_context->TakeErrors();
}

void tst_SurveyLiveMap::cleanup()
{
    if (m_map && m_context)
        m_map->Release();
    m_map.reset();
    m_context.reset();
}

bool tst_SurveyLiveMap::IsShown(const QString& name) const
{
    const auto& labels = m_map->Names().Labels();
    for (std::size_t i = 0; i < labels.size(); ++i) {
        if (labels[i].text == name)
            return m_map->Names().Shown()[i];
    }
    return false;
}

/// What those cover that tell of lines.
std::vector<QRectF> tst_SurveyLiveMap::GridTexts() const
{
    std::vector<QRectF> boxes;
    for (const QRectF& box : m_map->m_grid.Texts().Boxes()) {
        if (!m_map->m_grid.ScaleBarRect(m_map->m_camera).intersects(box)
            && !m_map->m_grid.NorthArrowRect(m_map->m_camera).intersects(box))
            boxes.push_back(box);
    }
    return boxes;
}

/// It would be read in half.
void tst_SurveyLiveMap::nameBelowTheVehicle()
{
    m_map->Render();
    for (const char* name : {"L1 E", "L2 E", "L3 E"})
        QVERIFY2(IsShown(QString::fromLatin1(name)), name);
    m_map->m_way.SetVehicle(lat, lng + 0.0005, 90.0, true);
    m_map->Render();
    QVERIFY(!IsShown(QStringLiteral("L2 E")));
    QVERIFY(IsShown(QStringLiteral("L1 E")) && IsShown(QStringLiteral("L3 E")));
    m_map->m_way.SetVehicle(lat, lng + 0.0010, 90.0, true);
    m_map->Render();
    QVERIFY(IsShown(QStringLiteral("L1 E")) && IsShown(QStringLiteral("L2 E")));
    QVERIFY(!IsShown(QStringLiteral("L3 E")));
    m_map->m_way.Clear();
    m_map->Render();
    QVERIFY(IsShown(QStringLiteral("L3 E")));
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

/// Along the texts of the latitudes, at the left edge.
void tst_SurveyLiveMap::textsBesideTheTrail()
{
    m_map->Render();
    const std::vector<QRectF> before = GridTexts();
    QVERIFY(before.size() >= 2);
    ZrMapObstacles obstacles;
    obstacles.m_tracks = {&m_map->m_way.m_trail};
    for (const QRectF& box : before) {
        for (const QPointF& pixel : {box.topLeft(), box.bottomRight()}) {
            const QPointF at = m_map->m_camera.ToWorld(pixel);
            m_map->m_way.m_trail.m_track.Append(at.x(), at.y());
        }
        m_map->m_way.m_trail.m_track.Append(std::numeric_limits<double>::quiet_NaN(), 0.0);
    }
    m_map->Render();
    obstacles.Look(m_map->m_camera, 1.0);
    QVERIFY(!GridTexts().empty());
    QVERIFY(GridTexts() != before);
    for (const QRectF& box : GridTexts())
        QVERIFY(!obstacles.HasLine(box));
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

/// Plans of one waypoint have no line that would be kept clear of.
void tst_SurveyLiveMap::textsBesideTheWaypoints()
{
    m_map->Render();
    const ZrMapView camera = m_map->m_camera;
    const std::vector<QRectF> before = GridTexts();
    QVERIFY(before.size() >= 2);
    for (const QRectF& box : before) {
        const QPointF at = camera.ToWorld(box.center());
        const double east = at.x();
        const double north = at.y();
        ZrWpts route;
        ZrWpt& waypoint = *route.Add(lat, lng, eZrWptBlue, ZrWpts::eAddTail);
        m_map->m_way.Grid()->ToLatLng({&east, 1}, {&north, 1}, {&waypoint.lat, 1}, {&waypoint.lng, 1});
        m_map->SetPlan(std::make_shared<const ZrWpts>(route));
        QCOMPARE(m_map->PlanCount(), i64(0));
        m_map->m_camera = camera;
        m_map->Render();
        QVERIFY(!GridTexts().empty());
        const QRectF mark(box.center() - QPointF(6, 6), QSizeF(12, 12));
        for (const QRectF& text : GridTexts())
            QVERIFY(!text.intersects(mark));
    }
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

GL_TEST_MAIN(tst_SurveyLiveMap)
#include "tst_SurveyLiveMap.moc"
