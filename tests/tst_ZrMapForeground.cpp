// What stands out on a map, by its pixels, in the colours of each light: the data before the grid.

#include "GlTest.h"
#include "ZrKit/map/ZrGridLayer.h"
#include "ZrKit/map/ZrMapSurface.h"
#include "ZrKit/map/ZrTrackLayer.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"

#include <QtTest>

#include <cmath>
#include <memory>

namespace {

const QSize size(400, 300);

double Luminance(const QColor& colour)
{
    const auto part = [](double v) { return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
    return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
}

/// As of text and graphics: 1 the same, 21 black and white.
double Contrast(const QColor& a, const QColor& b)
{
    const double la = Luminance(a) + 0.05;
    const double lb = Luminance(b) + 0.05;
    return std::max(la, lb) / std::min(la, lb);
}

/// The strongest contrast to the water in a row or column of pixels.
double Strongest(const QImage& image, const QRect& rect)
{
    double most = 1.0;
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        for (int x = rect.left(); x <= rect.right(); ++x)
            most = std::max(most, Contrast(image.pixelColor(x, y), ZrTheme::sea));
    }
    return most;
}

} // namespace

class tst_ZrMapForeground : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void gridIsBehindTheData_data();
    void gridIsBehindTheData();
};

void tst_ZrMapForeground::gridIsBehindTheData_data()
{
    QTest::addColumn<int>("scheme");
    for (int scheme = 0; scheme < ZrColourScheme::Count; ++scheme)
        QTest::addRow("%s", qPrintable(ZrColourScheme::Name(scheme))) << scheme;
}

/// A grid that can be followed with the eye (1.1), and no stronger than half of what a track has; a track
/// that is seen at a glance (3), also what is still to come of one, and the plan.
void tst_ZrMapForeground::gridIsBehindTheData()
{
    QFETCH(int, scheme);
    ZrTheme::dp = 1.0F;
    ZrTheme::SetStdStyle();
    ZrColourScheme::Apply(scheme);
    ZrUnits::SetGeoStyle(eGeoUTM);
    gl::Context context(gl::Api::desktop, size);
    QCOMPARE(context.Error(), QString());
    ZrMapSurface map;
    ZrGridLayer grid;
    grid.m_hasTexts = grid.m_hasScaleBar = grid.m_hasNorthArrow = false;
    ZrTrackLayer way;
    way.m_casing = ZrTheme::formBack;
    way.m_futureColour = ZrColourScheme::TrackAhead();
    ZrTrackLayer plan;
    plan.m_colour = ZrTheme::route;
    plan.m_casing = ZrTheme::formBack;
    // A grid of 200 m at 1 m for each pixel; across it the way to the north and the plan beside it.
    const QPointF centre(500100, 5000100);
    for (const double y : {-140.0, 0.0, 140.0}) {
        way.m_track.Append(centre.x() - 50.0, centre.y() + y);
        plan.m_track.Append(centre.x() + 50.0, centre.y() + y);
    }
    way.m_cursor = 1;
    map.m_layers = {&grid, &plan, &way};
    map.m_background = QStringLiteral(":/back_light.png");
    map.OnCreate();
    map.ZrglSetViewport(0, 0, size.width(), size.height());
    map.OnResize(size.width(), size.height());
    map.m_camera.SetCentre(centre);
    map.m_camera.SetScale(1.0);
    context.TakeErrors();
    map.Render();
    const QImage image = context.Read();
    QCOMPARE(context.TakeErrors(), GLenum(GL_NO_ERROR));
    map.Release();

    const double lines = Strongest(image, QRect(size.width() / 2 - 20, 20, 40, size.height() - 40));
    const double past = Strongest(image, QRect(size.width() / 2 - 51, 200, 3, 60));
    const double future = Strongest(image, QRect(size.width() / 2 - 51, 40, 3, 60));
    const double planned = Strongest(image, QRect(size.width() / 2 + 49, 40, 3, 60));
    const QString told = QStringLiteral("grid %1, past %2, future %3, plan %4")
                             .arg(lines)
                             .arg(past)
                             .arg(future)
                             .arg(planned);
    QVERIFY2(lines >= 1.1 && lines <= 1.6, qPrintable(told));
    for (const double data : {past, future, planned})
        QVERIFY2(data >= 3.0 && data - 1.0 >= 2.0 * (lines - 1.0), qPrintable(told));
}

GL_TEST_MAIN(tst_ZrMapForeground)
#include "tst_ZrMapForeground.moc"
