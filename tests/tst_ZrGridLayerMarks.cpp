// Scale bar and north arrow of a map, in both kinds of context.

#include "GridLayerTest.h"

class tst_ZrGridLayerMarks : public GridLayerTest
{
    Q_OBJECT

private Q_SLOTS:

    void initTestCase_data() { AddContexts(); }

    void init() { Begin(); }

    void cleanup() { End(); }

    void scaleBarIsExact_data();
    void scaleBarIsExact();
    void scaleBarIsSeenOnEveryGround_data();
    void scaleBarIsSeenOnEveryGround();
    void unitsShowAtOnce();
    void arrowPointsNorth_data();
    void arrowPointsNorth();
    void northAngle_data();
    void northAngle();
    void northWithoutProjection();
    void letterCanBeRead_data();
    void letterCanBeRead();
    void tapArea();
    void marginsAreKeptClear();
    void rectsFitOrAreEmpty_data();
    void rectsFitOrAreEmpty();
    void textsLeaveBarAndArrow();
};

void tst_ZrGridLayerMarks::scaleBarIsExact_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("pixels");
    QTest::addColumn<bool>("isImperial");
    QTest::newRow("1") << 1.0 << 200.0 << false;
    QTest::newRow("2") << 2.0 << 125.0 << false;
    QTest::newRow("7") << 7.0 << 1000 / 7.0 << false;
    QTest::newRow("feet") << 1.0 << 500 / 3.28084 << true;
}

void tst_ZrGridLayerMarks::scaleBarIsExact()
{
    QFETCH(double, scale);
    QFETCH(double, pixels);
    QFETCH(bool, isImperial);
    if (isImperial)
        ZrUnits::SetToImperial();
    m_layer->m_hasGrid = false;
    m_layer->m_hasNorthArrow = false;
    m_view.SetScale(scale);
    m_view.SetRotation(66);
    const QImage image = Painted(Qt::blue);
    const QRect rect = m_layer->ScaleBarRect(m_view).toRect();
    // The upper edge of the bar is light from one end to the other, within the casing.
    const int row = rect.bottom() - 2 - 9;
    int light = 0;
    for (int x = 0; x < width; ++x)
        light += image.pixelColor(x, row) == QColor(Qt::white) ? 1 : 0;
    QCOMPARE(light, qRound(pixels));
    QCOMPARE(rect.width(), qRound(pixels) + 4);
    QCOMPARE(image.pixelColor(rect.left(), row), QColor(Qt::black));
    QCOMPARE(image.pixelColor(rect.right(), row), QColor(Qt::black));
    // Nothing beside it.
    QCOMPARE(CountOutside(image, QRectF(rect).adjusted(-2, -2, 2, 0), Qt::blue), 0);
}

void tst_ZrGridLayerMarks::scaleBarIsSeenOnEveryGround_data()
{
    QTest::addColumn<QColor>("ground");
    QTest::newRow("sea") << QColor(35, 55, 75);
    QTest::newRow("seabed") << QColor(90, 160, 180);
    QTest::newRow("white") << QColor(Qt::white);
    QTest::newRow("black") << QColor(Qt::black);
    // The colour of the lines themselves.
    QTest::newRow("grey") << QColor(128, 128, 128);
}

void tst_ZrGridLayerMarks::scaleBarIsSeenOnEveryGround()
{
    QFETCH(QColor, ground);
    m_layer->m_hasGrid = false;
    const QImage image = Painted(ground);
    const QRectF rect = m_layer->ScaleBarRect(m_view);
    QVERIFY(Count(image, rect, Qt::white, 10) > 300);
    QVERIFY(Count(image, rect, Qt::black, 10) > 300);
    // The text too: light ink, dark halo.
    const QRectF text(rect.left(), rect.top(), rect.width(), 20);
    QVERIFY(Count(image, text, Qt::white, 60) > 20);
    QVERIFY(Count(image, text, Qt::black, 60) > 40);
}

void tst_ZrGridLayerMarks::unitsShowAtOnce()
{
    m_layer->m_hasGrid = false;
    const QImage metric = Painted();
    ZrUnits::SetToImperial();
    QVERIFY(!gl::Difference(Painted(), metric).isEmpty());
    ZrUnits::SetToMetric();
    const QString difference = gl::Difference(Painted(), metric);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGridLayerMarks::arrowPointsNorth_data()
{
    QTest::addColumn<double>("rotation");
    for (const double rotation : {0.0, 45.0, 90.0, 180.0, 250.0, 359.0})
        QTest::addRow("%g", rotation) << rotation;
}

void tst_ZrGridLayerMarks::arrowPointsNorth()
{
    QFETCH(double, rotation);
    m_layer->m_hasGrid = false;
    m_layer->m_hasScaleBar = false;
    m_view.SetRotation(rotation);
    const QImage image = Painted();
    const QRectF rect = m_layer->NorthArrowRect(m_view);
    QPointF sum;
    int count = 0;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const QColor c = image.pixelColor(x, y);
            if (c.red() > 200 && c.green() < 60) {
                sum += QPointF(x + 0.5, y + 0.5) - rect.center();
                ++count;
            }
        }
    }
    QVERIFY(count > 100);
    // The middle of the red pointer is on the line from the middle to the north.
    const double angle = m_layer->NorthAngle(m_view) / 57.29577951308232;
    const QPointF towards = sum / count;
    const double across = -towards.x() * std::cos(angle) + towards.y() * std::sin(angle);
    QVERIFY2(std::fabs(across) < 0.5, qPrintable(QString::number(across)));
    // It is north of the middle, and nowhere else.
    const auto at = [&](double share) {
        const double r = share * rect.width() / 2.0;
        const QPointF p = rect.center() + QPointF(-std::sin(angle) * r, -std::cos(angle) * r);
        return image.pixelColor(int(std::floor(p.x())), int(std::floor(p.y())));
    };
    QVERIFY(at(0.75).red() > 200 && at(0.75).green() < 60);
    QVERIFY(at(-0.75).red() < 60);
}

void tst_ZrGridLayerMarks::northAngle_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::addColumn<double>("rotation");
    QTest::newRow("west") << 50.3 << -5.9 << 0.0;
    QTest::newRow("east") << 50.3 << -0.1 << 20.0;
    QTest::newRow("middle") << 50.3 << -3.0 << 200.0;
    QTest::newRow("south, west") << -50.0 << -5.5 << 0.0;
    QTest::newRow("south, east") << -50.0 << -0.5 << 90.0;
}

void tst_ZrGridLayerMarks::northAngle()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    QFETCH(double, rotation);
    const ZrProj projection = ProjectionOf(lat, lng);
    m_layer->SetProjection(ZrUnits::wgs84, projection);
    m_view.SetCentre(WorldOf(projection, lat, lng));
    m_view.SetRotation(rotation);
    // Where a step to the north leads on the screen.
    const QPointF d = m_view.ToPixel(WorldOf(projection, lat + 0.001, lng))
        - m_view.ToPixel(WorldOf(projection, lat, lng));
    const double expected = std::atan2(-d.x(), -d.y()) * 57.29577951308232;
    const double error = std::remainder(m_layer->NorthAngle(m_view) - expected, 360.0);
    QVERIFY2(std::fabs(error) < 0.01, qPrintable(QString::number(error)));
    m_layer->m_north = ZrGridLayer::northGrid;
    QCOMPARE(m_layer->NorthAngle(m_view), rotation);
}

void tst_ZrGridLayerMarks::northWithoutProjection()
{
    m_view.SetRotation(12);
    QVERIFY(m_layer->NorthAngle(m_view) != 12.0);
    const QImage withName = Painted();
    m_layer->ClearProjection();
    QCOMPARE(m_layer->NorthAngle(m_view), 12.0);
    m_layer->SetProjection(ZrUnits::wgs84, m_projection);
    m_view.SetCentre({1e9, 1e300});
    QCOMPARE(m_layer->NorthAngle(m_view), 12.0);
    ZrProj broken;
    broken.lngOrigin = notANumber;
    m_layer->SetProjection(ZrUnits::wgs84, broken);
    m_view.SetCentre({500000, 5e6});
    QCOMPARE(m_layer->NorthAngle(m_view), 12.0);
}

void tst_ZrGridLayerMarks::letterCanBeRead_data()
{
    QTest::addColumn<double>("dp");
    QTest::addColumn<double>("rotation");
    for (const double dp : {0.75, 1.0, 2.0}) {
        for (const double rotation : {0.0, 100.0})
            QTest::addRow("%g, %g", dp, rotation) << dp << rotation;
    }
}

/// At arm's length: its capital is as high as a finger's text, upright however the map is turned.
void tst_ZrGridLayerMarks::letterCanBeRead()
{
    QFETCH(double, dp);
    QFETCH(double, rotation);
    ZrTheme::dp = static_cast<float>(dp);
    m_layer->m_hasGrid = false;
    m_layer->m_hasScaleBar = false;
    m_view.SetRotation(rotation);
    const QImage image = Painted(Qt::blue);
    const QRectF rect = m_layer->NorthArrowRect(m_view);
    const QRectF middle(rect.center() - QPointF(rect.width(), rect.height()) * 0.25, rect.size() * 0.5);
    int first = image.height();
    int last = -1;
    for (int y = int(middle.top()); y < int(middle.bottom()); ++y) {
        for (int x = int(middle.left()); x < int(middle.right()); ++x) {
            if (gl::Distance(image.pixelColor(x, y), Qt::white) > 60)
                continue;
            first = std::min(first, y);
            last = std::max(last, y);
        }
    }
    QVERIFY2(last - first + 1 >= 18.0 * dp, qPrintable(QString::number(last - first + 1)));
    // In the middle, whatever turns around it.
    QVERIFY(std::fabs((first + last + 1) / 2.0 - rect.center().y()) <= 2.0 * dp + 1.0);
}

void tst_ZrGridLayerMarks::tapArea()
{
    const QRectF rect = m_layer->NorthArrowRect(m_view);
    QVERIFY(rect.width() >= 44 && rect.height() >= 44);
    QVERIFY(QRectF(0, 0, width, height).contains(rect));
    // The disc is what it covers.
    m_layer->m_hasGrid = false;
    m_layer->m_hasScaleBar = false;
    const QImage image = Painted(Qt::blue);
    QCOMPARE(
        image.pixelColor(rect.center().toPoint() + QPoint(0, int(rect.height() / 2) - 2)), QColor(Qt::white));
    QCOMPARE(CountOutside(image, rect.adjusted(-1, -1, 1, 1), Qt::blue), 0);
    ZrTheme::dp = 1.5F;
    QCOMPARE(m_layer->NorthArrowRect(m_view).width(), 102.0);
    QCOMPARE(m_layer->NorthArrowRect(m_view, 2).width(), 204.0);
    m_layer->m_hasNorthArrow = false;
    QVERIFY(m_layer->NorthArrowRect(m_view).isEmpty());
    m_layer->m_hasScaleBar = false;
    QVERIFY(m_layer->ScaleBarRect(m_view).isEmpty());
}

void tst_ZrGridLayerMarks::marginsAreKeptClear()
{
    m_layer->m_hasGrid = true;
    m_layer->SetMargins({30, 50, 70, 90});
    const QRectF area(30, 50, width - 100, height - 140);
    QVERIFY(area.contains(m_layer->NorthArrowRect(m_view)));
    QVERIFY(area.contains(m_layer->ScaleBarRect(m_view)));
    for (const double rotation : {0.0, 33.0}) {
        m_view.SetRotation(rotation);
        ZrTheme::gridCol = QColor(128, 128, 128, 0);
        ZrTheme::darken = QColor(0, 0, 0, 0);
        const QImage image = Painted(Qt::blue);
        // Without lines nothing is outside; the halo of a text may be.
        QCOMPARE(CountOutside(image, area.adjusted(-2, -2, 2, 2), Qt::blue), 0);
        QVERIFY(gl::CountNot(image, Qt::blue) > 3000);
    }
    // Margins that are none.
    m_layer->SetMargins({-5, notANumber, 0, std::numeric_limits<double>::infinity()});
    QVERIFY(QRectF(0, 0, width, height).contains(m_layer->NorthArrowRect(m_view)));
}

void tst_ZrGridLayerMarks::rectsFitOrAreEmpty_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("nothing") << QSize(0, 0);
    QTest::newRow("a pixel") << QSize(1, 1);
    QTest::newRow("narrow") << QSize(30, 400);
    QTest::newRow("flat") << QSize(400, 30);
    QTest::newRow("small") << QSize(100, 96);
    QTest::newRow("usual") << QSize(640, 400);
}

void tst_ZrGridLayerMarks::rectsFitOrAreEmpty()
{
    QFETCH(QSize, size);
    m_view.SetSize(size.width(), size.height());
    const QRectF all(0, 0, size.width(), size.height());
    for (double scale = 0.001; scale < 50000; scale *= 1.7) {
        m_view.SetScale(scale);
        for (const QRectF& rect : {m_layer->NorthArrowRect(m_view), m_layer->ScaleBarRect(m_view)})
            QVERIFY(rect.isEmpty() || all.contains(rect));
    }
    QCOMPARE(m_layer->NorthArrowRect(m_view).isEmpty(), size.height() < 92 || size.width() < 92);
    Paint();
    // Margins that leave nothing.
    m_layer->SetMargins({500, 500, 500, 500});
    QVERIFY(m_layer->NorthArrowRect(m_view).isEmpty());
    QVERIFY(m_layer->ScaleBarRect(m_view).isEmpty());
    Paint();
}

void tst_ZrGridLayerMarks::textsLeaveBarAndArrow()
{
    // Whatever moves under them, bar and arrow look the same.
    ZrTheme::gridCol = QColor(128, 128, 128, 0);
    ZrTheme::darken = QColor(0, 0, 0, 0);
    const QRect bar = m_layer->ScaleBarRect(m_view).toRect();
    const QRect arrow = m_layer->NorthArrowRect(m_view).toRect();
    const QImage first = Painted(Qt::blue);
    m_layer->m_hasTexts = false;
    const QImage plain = Painted(Qt::blue);
    QVERIFY(!gl::Difference(first, plain).isEmpty());
    m_layer->m_hasTexts = true;
    for (int i = 0; i < 25; ++i) {
        m_view.Pan({0, 9});
        const QImage image = Painted(Qt::blue);
        QVERIFY(gl::Difference(image.copy(bar), plain.copy(bar)).isEmpty());
        // The convergence turns the needle a little.
        QVERIFY(gl::Difference(image.copy(arrow), plain.copy(arrow), 30).isEmpty());
    }
}

GL_TEST_MAIN(tst_ZrGridLayerMarks)
#include "tst_ZrGridLayerMarks.moc"
