#include "ZrUtil/ZrGlSurface.h"
#include "ZrUtil/ZrMarkerImages.h"
#include "ZrUtil/ZrTheme.h"

#include <QImage>
#include <QSet>
#include <QtTest>

/// Callers name markers by their place in `ZrGlSurface::m_markers`: order and number are part of the
/// interface.
class tst_ZrMarkerImages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneForEachMarker();
    void order_data();
    void order();
    void images();
};

void tst_ZrMarkerImages::oneForEachMarker()
{
    QCOMPARE(ZrMarkerImages::Paths.size(), std::tuple_size<decltype(ZrGlSurface::m_markers)>::value);
    QCOMPARE(ZrMarkerImages::Paths.size(), std::size_t(15));
    QSet<QString> paths;
    for (const char* path : ZrMarkerImages::Paths)
        paths.insert(QLatin1String(path));
    QCOMPARE(paths.size(), int(ZrMarkerImages::Paths.size()));
}

void tst_ZrMarkerImages::order_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("path");
    const char* const paths[] = {":/marker_alpha.png", ":/marker_arrow.png", ":/marker_square.png",
        ":/marker_circle.png", ":/marker_crosshair.png", ":/marker_waypoint.png", ":/marker_vector.png",
        ":/marker_pin.png", ":/handle_rotate.png", ":/handle_stretch.png", ":/handle_tick.png",
        ":/handle_trash.png", ":/handle_pan.png", ":/handle_a.png", ":/handle_b.png"};
    int index = 0;
    for (const char* path : paths)
        QTest::newRow(path) << index++ << QString::fromLatin1(path);
}

void tst_ZrMarkerImages::order()
{
    QFETCH(int, index);
    QTEST(QString::fromLatin1(ZrMarkerImages::Paths.at(static_cast<std::size_t>(index))), "path");
}

/// Each is there, and has a shape: neither empty nor all of it covered.
void tst_ZrMarkerImages::images()
{
    for (const char* path : ZrMarkerImages::Paths) {
        const QImage image = ZrTheme::ColourImg(QImage(QString::fromLatin1(path)), Qt::red);
        QVERIFY2(!image.isNull(), path);
        int covered = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                covered += qAlpha(image.pixel(x, y)) > 127 ? 1 : 0;
        }
        QVERIFY2(covered > 0 && covered < image.width() * image.height(), path);
    }
}

QTEST_MAIN(tst_ZrMarkerImages)
#include "tst_ZrMarkerImages.moc"
