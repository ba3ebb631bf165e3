// A recorded line to be scrolled, zoomed and pointed at.

#include "TouchOn.h"
#include "ZrKit/map/ZrWaterfallLoader.h"
#include "ZrKit/map/ZrWaterfallPanel.h"
#include "ZrKit/map/ZrWaterfallPings.h"
#include "ZrKit/sonar/ZrBottomLine.h"
#include "ZrKit/sonar/ZrSonarGeo.h"
#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrKit/sonar/ZrSonarTrack.h"
#include "ZrKit/sonar/ZrSonarTrackSettings.h"
#include "ZrSonarTestLog.h"
#include "ZrUiChecks.h"

#include <QPainter>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QWheelEvent>
#include <QtTest>

#include <cmath>
#include <limits>
#include <memory>

Q_DECLARE_METATYPE(ZrWaterfallPoint)

namespace {

constexpr int width = 300;
constexpr int height = 200;
constexpr int pings = 2000;
constexpr double range = 30.0; ///< metres to each side
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

void Wheel(QWidget& widget, const QPointF& at, int delta)
{
    QWheelEvent event(at, widget.mapToGlobal(at.toPoint()), QPoint(), QPoint(0, delta), Qt::NoButton,
        Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &event);
    QVERIFY(event.isAccepted());
}

} // namespace

class tst_ZrWaterfallPanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void withoutLoader();
    void emptyLog();
    void cursorInTheMiddle_data();
    void cursorInTheMiddle();
    void cursorAtTheEnds();
    void filledAtTheEnds_data();
    void filledAtTheEnds();
    void fewerLinesThanPixels();
    void cursorByTheWayMade();
    void wrongCursors();
    void anotherLoader();
    void loadsWhatIsInView();
    void zoomKeepsThePlace();
    void zoomHasLimits();
    void wheelZooms();
    void viewportOfTheSurface();
    void dragFollowsTheFinger_data();
    void dragFollowsTheFinger();
    void dragAtTheEnds_data();
    void dragAtTheEnds();
    void dragMovesAZoomedImage();
    void tap();
    void pointing();
    void otherButtons();
    void twoFingersZoom();
    void secondFingerEndsADrag();
    void cancelledTouch();
    void overlay();

private:
    void Load(ZrWaterfallLoader& loader) const;
    std::unique_ptr<ZrWaterfallLoader> Loader();

    double PingAt(const QPointF& pixel) const { return m_panel->Layout().ToSonar(pixel).ping; }

    QTemporaryDir m_dir;
    ZrSonarLog m_log;
    std::unique_ptr<ZrSonarTrack> m_track;
    std::unique_ptr<ZrBottomLine> m_bottom;
    std::shared_ptr<ZrSonarGeo> m_geo;
    std::unique_ptr<ZrThemeState> m_theme;
    std::unique_ptr<ZrWaterfallLoader> m_loader;
    std::unique_ptr<QWidget> m_page;
    ZrWaterfallPanel* m_panel = nullptr;
};

void tst_ZrWaterfallPanel::initTestCase()
{
    qRegisterMetaType<ZrWaterfallPoint>();
    sonar_test::SonarLine line;
    line.pings = pings;
    line.samples = 60;
    line.slantRange = range;
    const QString path = m_dir.filePath(QStringLiteral("line.log"));
    QVERIFY(sonar_test::WriteLine(path, line));
    QVERIFY(m_log.Open(path));
    QCOMPARE(m_log.Pings().size(), std::size_t(pings));
    m_track = std::make_unique<ZrSonarTrack>(m_log.Pings(), ZrSonarTrackSettings());
    m_bottom = std::make_unique<ZrBottomLine>(pings);
    m_geo = std::make_shared<ZrSonarGeo>(m_log.Pings(), *m_track, *m_bottom);
}

std::unique_ptr<ZrWaterfallLoader> tst_ZrWaterfallPanel::Loader()
{
    return std::make_unique<ZrWaterfallLoader>(std::make_shared<ZrWaterfallPings>(m_log, m_geo));
}

/// All lines of the log at once, 0.15 m apart.
void tst_ZrWaterfallPanel::Load(ZrWaterfallLoader& loader) const
{
    for (int tile = 0; tile * ZrWaterfallTiles::TileLines < pings; ++tile) {
        std::vector<ZrWaterfallLine> lines;
        for (int i = tile * ZrWaterfallTiles::TileLines;
             i < std::min((tile + 1) * ZrWaterfallTiles::TileLines, pings); ++i) {
            lines.emplace_back();
            lines.back().along = 0.15 * i;
            lines.back().range = {range, range};
            lines.back().samples = {std::vector<u8>(60, 100), std::vector<u8>(60, 100)};
        }
        QVERIFY(loader.Tiles().Put(tile, std::move(lines)));
    }
}

/// A panel of one pixel a line, all of whose lines are there.
void tst_ZrWaterfallPanel::init()
{
    m_theme = std::make_unique<ZrThemeState>();
    m_loader = Loader();
    Load(*m_loader);
    m_page = std::make_unique<QWidget>();
    m_page->resize(400, 300);
    m_panel = new ZrWaterfallPanel(m_page.get());
    m_panel->m_view.speedCorrected = false;
    m_panel->setGeometry(20, 30, width, height);
    m_panel->SetLoader(m_loader.get());
    connect(m_panel, &ZrWaterfallPanel::Scrubbed, m_panel, &ZrWaterfallPanel::SetCursor);
    m_page->show();
}

void tst_ZrWaterfallPanel::cleanup()
{
    m_page.reset();
    m_loader.reset();
    m_theme.reset();
}

void tst_ZrWaterfallPanel::withoutLoader()
{
    m_panel->SetLoader(nullptr);
    QSignalSpy tapped(m_panel, &ZrWaterfallPanel::Tapped);
    QSignalSpy scrubbed(m_panel, &ZrWaterfallPanel::Scrubbed);
    m_panel->SetCursor(100.0);
    m_panel->SetZoom(4.0, QPointF(10, 10));
    QVERIFY(m_panel->Layout().Rows().empty());
    QVERIFY(m_panel->m_layer.m_view.rect.isEmpty());
    QVERIFY(std::isnan(m_panel->YOf(100.0)));
    SendPress(*m_panel, QPoint(50, 50));
    SendRelease(*m_panel, QPoint(50, 50));
    QCOMPARE(tapped.count(), 1);
    QVERIFY(!tapped[0][0].value<ZrWaterfallPoint>().IsValid());
    SendPress(*m_panel, QPoint(50, 50));
    SendMove(*m_panel, QPoint(50, 150));
    SendRelease(*m_panel, QPoint(50, 150));
    QCOMPARE(scrubbed.count(), 0);
}

void tst_ZrWaterfallPanel::emptyLog()
{
    ZrSonarLog log;
    const ZrSonarTrack track(log.Pings(), ZrSonarTrackSettings());
    const ZrBottomLine bottom;
    const auto geo = std::make_shared<const ZrSonarGeo>(log.Pings(), track, bottom);
    ZrWaterfallLoader loader(std::make_shared<ZrWaterfallPings>(log, geo));
    m_panel->SetLoader(&loader);
    m_panel->SetCursor(5.0);
    QVERIFY(m_panel->Layout().Rows().empty());
    QVERIFY(std::isnan(m_panel->YOf(5.0)));
    QVERIFY(!loader.IsLoading());
    m_panel->SetLoader(nullptr);
}

void tst_ZrWaterfallPanel::cursorInTheMiddle_data()
{
    QTest::addColumn<int>("newest");
    QTest::addColumn<double>("ping");
    for (const double ping : {150.0, 1000.25, 1899.0}) {
        QTest::addRow("newest at the top, %g", ping) << int(ZrWaterfallSettings::newestTop) << ping;
        QTest::addRow("newest at the bottom, %g", ping) << int(ZrWaterfallSettings::newestBottom) << ping;
    }
}

void tst_ZrWaterfallPanel::cursorInTheMiddle()
{
    QFETCH(int, newest);
    QFETCH(double, ping);
    m_panel->m_view.newest = static_cast<ZrWaterfallSettings::eNewest>(newest);
    m_panel->Refresh();
    QSignalSpy changed(m_panel, &ZrWaterfallPanel::Changed);
    m_panel->SetCursor(ping);
    QCOMPARE(m_panel->Cursor(), ping);
    QCOMPARE(changed.count(), 1);
    QVERIFY(std::fabs(m_panel->YOf(ping) - height / 2.0) < 0.01);
    QVERIFY(std::fabs(PingAt(QPointF(width / 2.0 + 10.0, height / 2.0)) - ping) < 0.02);
    // Later pings are where the newest ones are.
    const bool isAbove = m_panel->YOf(ping + 20.0) < m_panel->YOf(ping);
    QCOMPARE(isAbove, newest == ZrWaterfallSettings::newestTop);
    QVERIFY(std::isnan(m_panel->YOf(ping + height)));
    QVERIFY(std::isnan(m_panel->YOf(ping - height)));
    // What is drawn is what was laid out.
    QCOMPARE(m_panel->m_layer.m_view.rect, QRect(0, 0, width, height));
    QCOMPARE(m_panel->m_layer.m_view.end, m_panel->Layout().View().end);
}

/// The newest line does not come further in than to the edge, nor does the first one.
void tst_ZrWaterfallPanel::cursorAtTheEnds()
{
    m_panel->SetCursor(pings - 1);
    QVERIFY(std::fabs(m_panel->YOf(pings - 1) - 0.5) < 0.01);
    m_panel->SetCursor(pings + 500);
    QVERIFY(std::fabs(m_panel->YOf(pings - 1) - 0.5) < 0.01);
    m_panel->SetCursor(0.0);
    QVERIFY(std::fabs(m_panel->YOf(0.0) - (height - 0.5)) < 0.01);
    QCOMPARE(m_panel->Layout().End(), double(height));
    m_panel->SetCursor(-500.0);
    QCOMPARE(m_panel->Layout().End(), double(height));
}

void tst_ZrWaterfallPanel::filledAtTheEnds_data()
{
    QTest::addColumn<int>("newest");
    QTest::addColumn<bool>("byWay");
    for (const bool byWay : {false, true}) {
        QTest::addRow("newest at the top, %d", byWay) << int(ZrWaterfallSettings::newestTop) << byWay;
        QTest::addRow("newest at the bottom, %d", byWay) << int(ZrWaterfallSettings::newestBottom) << byWay;
    }
}

/// Wherever the cursor is, there is a line at every pixel, and each tells the same of its place.
void tst_ZrWaterfallPanel::filledAtTheEnds()
{
    QFETCH(int, newest);
    QFETCH(bool, byWay);
    m_panel->m_view.newest = static_cast<ZrWaterfallSettings::eNewest>(newest);
    m_panel->m_view.speedCorrected = byWay;
    m_panel->Refresh();
    const double x = width / 2.0 + 20.0;
    double before = notANumber;
    for (double ping = 0.0; ping < pings; ping += ping < 300.0 || ping > pings - 300.0 ? 3.5 : 100.0) {
        m_panel->SetCursor(ping);
        for (const double y : {0.5, height / 2.0, height - 0.5})
            QVERIFY2(m_panel->Layout().ToSonar(QPointF(x, y)).IsValid(), qPrintable(QString::number(ping)));
        const double y = m_panel->YOf(ping);
        QVERIFY2(y >= 0.0 && y <= height, qPrintable(QString::number(y)));
        QVERIFY(std::fabs(PingAt(QPointF(x, y)) - ping) < 0.02);
        QVERIFY(std::fabs(m_panel->Layout().ToPixel(ping, sideStarboard, 10.0).y() - y) < 0.01);
        // Later is never further back.
        const bool isUp = newest == ZrWaterfallSettings::newestTop;
        QVERIFY(std::isnan(before) || (isUp ? y <= before + 0.01 : y >= before - 0.01));
        before = y;
    }
}

/// They are at the edge of the newest lines, as those of a vehicle that has just begun are.
void tst_ZrWaterfallPanel::fewerLinesThanPixels()
{
    m_panel->m_view.pixelsPerLine = 0.05; // 100 pixels for all
    m_panel->Refresh();
    for (const double ping : {0.0, 1000.0, 1999.0}) {
        m_panel->SetCursor(ping);
        QCOMPARE(m_panel->Layout().End(), double(pings));
        QVERIFY(std::fabs(m_panel->YOf(ping) - (pings - 0.5 - ping) * 0.05) < 0.01);
        QVERIFY(!m_panel->Layout().ToSonar(QPointF(200, 150)).IsValid());
    }
}

/// Lines that are 0.15 m long where a pixel is 0.2 m.
void tst_ZrWaterfallPanel::cursorByTheWayMade()
{
    m_panel->m_view.speedCorrected = true;
    for (const double ping : {140.0, 700.0, 1000.5}) {
        m_panel->SetCursor(ping);
        QVERIFY2(std::fabs(m_panel->YOf(ping) - height / 2.0) < 0.01,
            qPrintable(QString::number(m_panel->YOf(ping))));
        QVERIFY(std::fabs(m_panel->YOf(ping) - m_panel->YOf(ping + 8.0) - 6.0) < 0.05);
    }
}

void tst_ZrWaterfallPanel::wrongCursors()
{
    m_panel->SetCursor(700.0);
    QSignalSpy changed(m_panel, &ZrWaterfallPanel::Changed);
    m_panel->SetCursor(700.0);
    m_panel->SetCursor(notANumber);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(m_panel->Cursor(), 700.0);
    for (const double ping : {HUGE_VAL, -HUGE_VAL, 1e300, -1e300}) {
        m_panel->SetCursor(ping);
        QVERIFY(m_panel->Layout().End() >= 1.0 && m_panel->Layout().End() <= pings);
    }
    m_panel->SetCursor(700.0);
    QVERIFY(std::fabs(m_panel->YOf(700.0) - height / 2.0) < 0.01);
}

/// Begins anew, and the one before has no say any more.
void tst_ZrWaterfallPanel::anotherLoader()
{
    m_panel->SetCursor(700.0);
    m_panel->SetZoom(4.0, QPointF(150, 100));
    const auto other = Loader();
    Load(*other);
    m_panel->SetLoader(other.get());
    QCOMPARE(m_panel->Cursor(), 0.0);
    QCOMPARE(m_panel->Zoom(), 1.0);
    QCOMPARE(m_panel->m_view.rect, QRect(0, 0, width, height));
    QSignalSpy changed(m_panel, &ZrWaterfallPanel::Changed);
    Q_EMIT m_loader->Loaded();
    QCOMPARE(changed.count(), 0);
    Q_EMIT other->Loaded();
    QCOMPARE(changed.count(), 1);
    m_panel->SetLoader(nullptr);
}

void tst_ZrWaterfallPanel::loadsWhatIsInView()
{
    const auto loader = Loader();
    m_panel->SetLoader(loader.get());
    m_panel->SetCursor(1000.0);
    QSignalSpy changed(m_panel, &ZrWaterfallPanel::Changed);
    const QPointF middle(width / 2.0 + 10.0, height / 2.0);
    QVERIFY(loader->IsLoading() && std::isnan(PingAt(middle)));
    QTRY_VERIFY(!std::isnan(PingAt(middle)) && m_panel->Layout().Missing().empty() && !loader->IsLoading());
    QVERIFY(changed.count() > 0);
    QVERIFY(std::fabs(m_panel->YOf(1000.0) - height / 2.0) < 0.01);
    QVERIFY(std::fabs(PingAt(middle) - 1000.0) < 0.02);
    // Tiles around the beginning, where it stood at first, and around the cursor.
    QVERIFY2(loader->LinesRead() <= 4 * ZrWaterfallTiles::TileLines,
        qPrintable(QString::number(loader->LinesRead())));
    m_panel->SetLoader(nullptr);
}

void tst_ZrWaterfallPanel::zoomKeepsThePlace()
{
    m_panel->SetCursor(1000.0);
    for (const double x : {40.0, 150.5, 260.0}) {
        m_panel->SetZoom(1.0, QPointF(x, 60));
        const ZrWaterfallPoint before = m_panel->Layout().ToSonar(QPointF(x, 60));
        for (const double zoom : {2.0, 7.5, 3.0, 16.0}) {
            m_panel->SetZoom(zoom, QPointF(x, 60));
            QCOMPARE(m_panel->Zoom(), zoom);
            const ZrWaterfallPoint after = m_panel->Layout().ToSonar(QPointF(x, 60));
            QCOMPARE(after.side, before.side);
            QVERIFY(std::fabs(after.slantRange - before.slantRange) < 0.15);
            QCOMPARE(m_panel->m_view.rect.width(), qRound(width * zoom));
            QVERIFY(std::fabs(m_panel->YOf(1000.0) - height / 2.0) < 0.01);
        }
    }
}

/// From all of the range to `MostZoom`, and never with a gap beside the image.
void tst_ZrWaterfallPanel::zoomHasLimits()
{
    m_panel->SetZoom(0.1, QPointF(150, 60));
    QCOMPARE(m_panel->Zoom(), 1.0);
    QCOMPARE(m_panel->m_view.rect, QRect(0, 0, width, height));
    m_panel->SetZoom(1000.0, QPointF(150, 60));
    QCOMPARE(m_panel->Zoom(), ZrWaterfallPanel::MostZoom);
    m_panel->SetZoom(4.0, QPointF(300, 60));
    for (const double x : {0.0, 300.0, 20.0, 280.0}) {
        for (const double zoom : {3.0, 1.5, 1.1}) {
            m_panel->SetZoom(zoom, QPointF(x, 60));
            QVERIFY(m_panel->m_view.rect.left() <= 0);
            QVERIFY(m_panel->m_view.rect.right() >= width - 1);
        }
    }
}

void tst_ZrWaterfallPanel::wheelZooms()
{
    m_panel->SetCursor(1000.0);
    const double before = m_panel->Layout().ToSonar(QPointF(200, 60)).slantRange;
    Wheel(*m_panel, QPointF(200, 60), 240);
    QCOMPARE(m_panel->Zoom(), 1.25 * 1.25);
    QVERIFY(std::fabs(m_panel->Layout().ToSonar(QPointF(200, 60)).slantRange - before) < 0.3);
    Wheel(*m_panel, QPointF(200, 60), -120);
    QCOMPARE(m_panel->Zoom(), 1.25);
    Wheel(*m_panel, QPointF(200, 60), -1200);
    QCOMPARE(m_panel->Zoom(), 1.0);
}

/// From the lower edge of the page up.
void tst_ZrWaterfallPanel::viewportOfTheSurface()
{
    QCOMPARE(m_panel->Surface().m_viewport, QRect(20, 300 - 30 - height, width, height));
    m_panel->move(50, 60);
    QCOMPARE(m_panel->Surface().m_viewport, QRect(50, 300 - 60 - height, width, height));
    m_panel->resize(100, 80);
    QCOMPARE(m_panel->Surface().m_viewport, QRect(50, 300 - 60 - 80, 100, 80));
    QCOMPARE(m_panel->Layout().View().rect, QRect(0, 0, 100, 80));
    m_page->resize(400, 500);
    m_panel->Match();
    QCOMPARE(m_panel->Surface().m_viewport, QRect(50, 500 - 60 - 80, 100, 80));
}

void tst_ZrWaterfallPanel::dragFollowsTheFinger_data()
{
    QTest::addColumn<int>("newest");
    QTest::addColumn<bool>("byWay");
    for (const bool byWay : {false, true}) {
        QTest::addRow("newest at the top, %d", byWay) << int(ZrWaterfallSettings::newestTop) << byWay;
        QTest::addRow("newest at the bottom, %d", byWay) << int(ZrWaterfallSettings::newestBottom) << byWay;
    }
}

/// The ping under the finger stays there.
void tst_ZrWaterfallPanel::dragFollowsTheFinger()
{
    QFETCH(int, newest);
    QFETCH(bool, byWay);
    m_panel->m_view.newest = static_cast<ZrWaterfallSettings::eNewest>(newest);
    m_panel->m_view.speedCorrected = byWay;
    m_panel->SetCursor(1000.0);
    QSignalSpy began(m_panel, &ZrWaterfallPanel::ScrubBegan);
    QSignalSpy scrubbed(m_panel, &ZrWaterfallPanel::Scrubbed);
    QSignalSpy ended(m_panel, &ZrWaterfallPanel::ScrubEnded);
    QSignalSpy tapped(m_panel, &ZrWaterfallPanel::Tapped);
    const double ping = PingAt(QPointF(200, 80));
    SendPress(*m_panel, QPoint(200, 80));
    SendMove(*m_panel, QPoint(200, 85)); // may be a tap still
    QCOMPARE(began.count(), 0);
    for (int y = 90; y <= 140; y += 5) {
        SendMove(*m_panel, QPoint(200, y));
        QVERIFY2(std::fabs(PingAt(QPointF(200, y)) - ping) < 1.5,
            qPrintable(QStringLiteral("%1 instead of %2").arg(PingAt(QPointF(200, y))).arg(ping)));
    }
    for (int y = 140; y >= 20; y -= 30)
        SendMove(*m_panel, QPoint(200, y));
    QVERIFY(std::fabs(PingAt(QPointF(200, 20)) - ping) < 1.5);
    QCOMPARE(began.count(), 1);
    QVERIFY(scrubbed.count() >= 10);
    QCOMPARE(ended.count(), 0);
    SendRelease(*m_panel, QPoint(200, 20));
    QCOMPARE(ended.count(), 1);
    QCOMPARE(tapped.count(), 0);
    SendMove(*m_panel, QPoint(200, 100));
    QVERIFY(std::fabs(PingAt(QPointF(200, 20)) - ping) < 1.5);
}

void tst_ZrWaterfallPanel::dragAtTheEnds_data()
{
    filledAtTheEnds_data();
}

/// The image stands, the cursor goes on the same way and as far as the finger does, up to the end of the log.
void tst_ZrWaterfallPanel::dragAtTheEnds()
{
    QFETCH(int, newest);
    QFETCH(bool, byWay);
    m_panel->m_view.newest = static_cast<ZrWaterfallSettings::eNewest>(newest);
    m_panel->m_view.speedCorrected = byWay;
    m_panel->Refresh();
    QSignalSpy scrubbed(m_panel, &ZrWaterfallPanel::Scrubbed);
    // To what is later, which is down where the newest lines are at the top.
    const int down = newest == ZrWaterfallSettings::newestTop ? 1 : -1;
    const QPoint from(200, height / 2 - down * 80);
    for (const bool isBeginning : {true, false}) {
        const int way = isBeginning ? down : -down;
        m_panel->SetCursor(isBeginning ? 0.0 : pings - 1.0);
        const QPointF fixed(200, 60);
        const double before = PingAt(fixed);
        const double y = m_panel->YOf(m_panel->Cursor());
        const QPoint start = isBeginning ? from : QPoint(200, height / 2 + down * 80);
        SendPress(*m_panel, start);
        for (int step = 20; step <= 80; step += 20) {
            SendMove(*m_panel, start + QPoint(0, way * step));
            QVERIFY(std::fabs(PingAt(fixed) - before) < 0.02);
            QVERIFY2(std::fabs(m_panel->YOf(m_panel->Cursor()) - (y - way * step)) < 1.0,
                qPrintable(QStringLiteral("%1 from %2").arg(m_panel->YOf(m_panel->Cursor())).arg(y)));
        }
        // In the middle it stops, and the image moves.
        SendMove(*m_panel, start + QPoint(0, way * 150));
        QVERIFY(std::fabs(m_panel->YOf(m_panel->Cursor()) - height / 2.0) < 1.5);
        QVERIFY(std::fabs(PingAt(fixed) - before) > 30.0);
        // Back further than the log goes.
        for (int step = 130; step >= -170; step -= 50)
            SendMove(*m_panel, start + QPoint(0, way * step));
        QCOMPARE(m_panel->Cursor(), isBeginning ? 0.0 : pings - 1.0);
        QVERIFY(std::fabs(PingAt(fixed) - before) < 0.02);
        SendRelease(*m_panel, start);
    }
    QVERIFY(scrubbed.count() > 10);
}

void tst_ZrWaterfallPanel::dragMovesAZoomedImage()
{
    m_panel->SetCursor(1000.0);
    m_panel->SetZoom(4.0, QPointF(150, 100));
    const int left = m_panel->m_view.rect.left();
    QSignalSpy scrubbed(m_panel, &ZrWaterfallPanel::Scrubbed);
    SendPress(*m_panel, QPoint(100, 100));
    SendMove(*m_panel, QPoint(160, 100));
    QCOMPARE(m_panel->m_view.rect.left(), left + 60);
    SendMove(*m_panel, QPoint(80, 100));
    QCOMPARE(m_panel->m_view.rect.left(), left - 20);
    SendRelease(*m_panel, QPoint(80, 100));
    QCOMPARE(scrubbed.count(), 0);
    QCOMPARE(m_panel->Cursor(), 1000.0);
}

void tst_ZrWaterfallPanel::tap()
{
    m_panel->SetCursor(1000.0);
    QSignalSpy tapped(m_panel, &ZrWaterfallPanel::Tapped);
    QSignalSpy began(m_panel, &ZrWaterfallPanel::ScrubBegan);
    SendPress(*m_panel, QPoint(200, 60));
    SendMove(*m_panel, QPoint(204, 65));
    SendRelease(*m_panel, QPoint(204, 65));
    QCOMPARE(tapped.count(), 1);
    QCOMPARE(began.count(), 0);
    QCOMPARE(tapped[0][1].toPointF(), QPointF(204, 65));
    const auto point = tapped[0][0].value<ZrWaterfallPoint>();
    QCOMPARE(point.side, sideStarboard);
    QVERIFY(std::fabs(point.slantRange - (204.0 - 150.0) * range / 150.0) < 1e-9);
    QVERIFY(std::fabs(point.ping - (1000.0 + 100.0 - 65.0)) < 0.02);
    // A release that no press began.
    SendRelease(*m_panel, QPoint(204, 65));
    QCOMPARE(tapped.count(), 1);
}

void tst_ZrWaterfallPanel::pointing()
{
    m_panel->SetCursor(1000.0);
    m_panel->m_isPointing = true;
    QSignalSpy drawn(m_panel, &ZrWaterfallPanel::Drawn);
    QSignalSpy began(m_panel, &ZrWaterfallPanel::ScrubBegan);
    QSignalSpy ended(m_panel, &ZrWaterfallPanel::ScrubEnded);
    QSignalSpy tapped(m_panel, &ZrWaterfallPanel::Tapped);
    SendPress(*m_panel, QPoint(100, 60));
    SendMove(*m_panel, QPoint(104, 62));
    SendMove(*m_panel, QPoint(140, 90));
    SendRelease(*m_panel, QPoint(141, 91));
    QCOMPARE(drawn.count(), 2);
    QCOMPARE(drawn[0][0].toPointF(), QPointF(100, 60));
    QCOMPARE(drawn[0][1].toPointF(), QPointF(140, 90));
    QCOMPARE(drawn[0][2].toBool(), false);
    QCOMPARE(drawn[1][0].toPointF(), QPointF(100, 60));
    QCOMPARE(drawn[1][1].toPointF(), QPointF(141, 91));
    QCOMPARE(drawn[1][2].toBool(), true);
    QCOMPARE(began.count() + ended.count() + tapped.count(), 0);
    QCOMPARE(m_panel->Cursor(), 1000.0);
    SendPress(*m_panel, QPoint(100, 60));
    SendRelease(*m_panel, QPoint(100, 60));
    QCOMPARE(tapped.count(), 1);
}

/// Neither other buttons nor what was made of a touch.
void tst_ZrWaterfallPanel::otherButtons()
{
    QSignalSpy tapped(m_panel, &ZrWaterfallPanel::Tapped);
    QTest::mouseClick(m_panel, Qt::RightButton, {}, QPoint(50, 50));
    QTest::mouseClick(m_panel, Qt::MiddleButton, {}, QPoint(50, 50));
    SendPress(*m_panel, QPoint(50, 50), Qt::MouseEventSynthesizedByQt);
    SendRelease(*m_panel, QPoint(50, 50), Qt::MouseEventSynthesizedByQt);
    QCOMPARE(tapped.count(), 0);
    QTest::mouseClick(m_panel, Qt::LeftButton, {}, QPoint(50, 50));
    QCOMPARE(tapped.count(), 1);
}

void tst_ZrWaterfallPanel::twoFingersZoom()
{
    QTouchDevice* const screen = QTest::createTouchDevice();
    m_panel->SetCursor(1000.0);
    QSignalSpy tapped(m_panel, &ZrWaterfallPanel::Tapped);
    QSignalSpy scrubbed(m_panel, &ZrWaterfallPanel::Scrubbed);
    const double before = m_panel->Layout().ToSonar(QPointF(200, 60)).slantRange;
    TouchOn(m_panel, screen).press(0, QPoint(180, 60), m_panel).press(1, QPoint(220, 60), m_panel);
    TouchOn(m_panel, screen).move(0, QPoint(160, 60), m_panel).move(1, QPoint(240, 60), m_panel);
    QVERIFY(std::fabs(m_panel->Zoom() - 2.0) < 1e-6);
    QVERIFY(std::fabs(m_panel->Layout().ToSonar(QPointF(200, 60)).slantRange - before) < 0.3);
    // Both to one side: the image goes along.
    const int left = m_panel->m_view.rect.left();
    TouchOn(m_panel, screen).move(0, QPoint(170, 60), m_panel).move(1, QPoint(250, 60), m_panel);
    QVERIFY(std::abs(m_panel->m_view.rect.left() - left - 10) <= 1);
    // One is lifted before the other, which neither scrolls nor taps.
    TouchOn(m_panel, screen).stationary(0).release(1, QPoint(250, 60), m_panel);
    TouchOn(m_panel, screen).move(0, QPoint(170, 150), m_panel);
    TouchOn(m_panel, screen).release(0, QPoint(170, 150), m_panel);
    QCOMPARE(tapped.count() + scrubbed.count(), 0);
    // The next finger is a finger again.
    TouchOn(m_panel, screen).press(0, QPoint(100, 60), m_panel);
    TouchOn(m_panel, screen).release(0, QPoint(100, 60), m_panel);
    QCOMPARE(tapped.count(), 1);
}

void tst_ZrWaterfallPanel::secondFingerEndsADrag()
{
    QTouchDevice* const screen = QTest::createTouchDevice();
    m_panel->SetCursor(1000.0);
    QSignalSpy ended(m_panel, &ZrWaterfallPanel::ScrubEnded);
    QSignalSpy tapped(m_panel, &ZrWaterfallPanel::Tapped);
    TouchOn(m_panel, screen).press(0, QPoint(100, 60), m_panel);
    TouchOn(m_panel, screen).move(0, QPoint(100, 100), m_panel);
    QVERIFY(m_panel->Cursor() > 1030.0);
    TouchOn(m_panel, screen).stationary(0).press(1, QPoint(200, 100), m_panel);
    QCOMPARE(ended.count(), 1);
    TouchOn(m_panel, screen).release(0, QPoint(100, 100), m_panel).release(1, QPoint(200, 100), m_panel);
    QCOMPARE(ended.count(), 1);
    QCOMPARE(tapped.count(), 0);
}

void tst_ZrWaterfallPanel::cancelledTouch()
{
    QSignalSpy tapped(m_panel, &ZrWaterfallPanel::Tapped);
    SendPress(*m_panel, QPoint(100, 60));
    QTouchEvent cancel(QEvent::TouchCancel);
    QCoreApplication::sendEvent(m_panel, &cancel);
    SendRelease(*m_panel, QPoint(100, 60));
    QCOMPARE(tapped.count(), 0);
}

/// Painted over the image in the pixels of the layout; without one nothing is.
void tst_ZrWaterfallPanel::overlay()
{
    m_panel->SetCursor(1000.0);
    const QImage without = Painted(*m_panel);
    double middle = 0.0;
    m_panel->m_overlay = [&](QPainter& painter, const ZrWaterfallLayout& layout) {
        middle = layout.ToPixel(1000.0, sideStarboard, 10.0).y();
        painter.fillRect(QRectF(200, 100, 10, 5), QColor(255, 0, 255));
    };
    const QImage image = Painted(*m_panel);
    QVERIFY(std::fabs(middle - height / 2.0) < 0.01);
    QVERIFY(!HasColour(without, QColor(255, 0, 255)));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const bool isInside = QRect(200, 100, 10, 5).contains(x, y);
            QCOMPARE(image.pixelColor(x, y) == QColor(255, 0, 255), isInside);
        }
    }
}

QTEST_MAIN(tst_ZrWaterfallPanel)
#include "tst_ZrWaterfallPanel.moc"
