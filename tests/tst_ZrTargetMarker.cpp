// Marking and measuring a target in a waterfall by hand.

#include "ZrKit/map/ZrWaterfallLayout.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/survey/ZrTargetMarker.h"
#include "ZrSonarTestLog.h"

#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

class tst_ZrTargetMarker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void withoutRecording();
    void spots();
    void tap();
    void nothingThere();
    void outsideTheRecords();
    void positionsFarApart();
    void placedByTime();
    void linesFromOne();
    void draw();
    void shadow();
    void wrongSideOfTheShadow();
    void cleared();
    void painting();

private:
    static ZrWaterfallPoint Point(double ping, eSonarSide side, double slantRange)
    {
        ZrWaterfallPoint point;
        point.ping = ping;
        point.side = side;
        point.slantRange = slantRange;
        return point;
    }

    QTemporaryDir m_folder;
    ZrSurveyRecording m_recording; ///< 5 m above the bottom, 30 m of range in 300 samples
};

void tst_ZrTargetMarker::initTestCase()
{
    const QString path = m_folder.filePath(QStringLiteral("line.log"));
    sonar_test::SonarLine line;
    QVERIFY(sonar_test::WriteLine(path, line));
    QVERIFY2(m_recording.Load(path), qPrintable(m_recording.Error()));
}

void tst_ZrTargetMarker::withoutRecording()
{
    ZrTargetMarker marker;
    QVERIFY(!marker.HasSonar());
    QVERIFY(!marker.Tap(Point(5.0, sidePort, 10.0)));
    QVERIFY(!marker.Error().isEmpty());
    QVERIFY(!marker.Draw(Point(5.0, sidePort, 10.0), Point(6.0, sidePort, 10.0)));
    marker.SetWantsShadow(true);
    QVERIFY(!marker.WantsShadow());
    QImage image(10, 10, QImage::Format_RGB32);
    QPainter painter(&image);
    marker.Paint(painter, ZrWaterfallLayout(), 1.0, Qt::cyan);
}

void tst_ZrTargetMarker::spots()
{
    ZrTargetMarker marker;
    marker.SetRecording(&m_recording);
    const auto spot = marker.SpotAt(Point(49.6, sideStarboard, 20.05));
    QVERIFY(spot);
    QCOMPARE(spot->ping, std::size_t(50));
    QCOMPARE(spot->side, sideStarboard);
    QVERIFY(std::fabs(spot->sample - 200.0) < 1e-3);
    QVERIFY(!marker.SpotAt(ZrWaterfallPoint()));
    QVERIFY(!marker.SpotAt(Point(100.0, sidePort, 10.0)));
    QVERIFY(!marker.SpotAt(Point(5.0, sidePort, std::nan(""))));
    // Half a ping and half a sample beyond the ends are the ends.
    QCOMPARE(marker.SpotAt(Point(-0.4, sidePort, 0.0))->ping, std::size_t(0));
    QCOMPARE(marker.SpotAt(Point(3.0, sidePort, 0.0))->sample, 0.0);
    QCOMPARE(marker.SpotAt(Point(3.0, sidePort, 31.0))->sample, 299.0);
}

void tst_ZrTargetMarker::tap()
{
    ZrTargetMarker marker;
    marker.SetRecording(&m_recording);
    QVERIFY2(marker.Tap(Point(50.0, sideStarboard, 13.0)), qPrintable(marker.Error()));
    QVERIFY(marker.Error().isEmpty());
    QVERIFY(marker.Target());
    QVERIFY(std::fabs(marker.Target()->slantRange - 13.0) < 0.06);
    QVERIFY(std::fabs(marker.Target()->groundRange - 12.0) < 0.5);
    QVERIFY(marker.Target()->position.IsValid());
    QVERIFY(!marker.Extent() && !marker.Shadow());
    // Another one instead.
    QVERIFY(marker.Tap(Point(20.0, sidePort, 20.0)));
    QCOMPARE(marker.Target()->spot.ping, std::size_t(20));
}

/// What was marked stays.
void tst_ZrTargetMarker::nothingThere()
{
    ZrTargetMarker marker;
    marker.SetRecording(&m_recording);
    QVERIFY(marker.Tap(Point(50.0, sideStarboard, 13.0)));
    QVERIFY(!marker.Tap(ZrWaterfallPoint()));
    QCOMPARE(marker.Error(), QStringLiteral("Nothing was recorded there."));
    QVERIFY(marker.Target());
    // The water column.
    QVERIFY(!marker.Tap(Point(50.0, sideStarboard, 1.0)));
    QVERIFY(!marker.Error().isEmpty());
    QCOMPARE(marker.Target()->spot.ping, std::size_t(50));
    QVERIFY(!marker.Draw(Point(50.0, sideStarboard, 13.0), ZrWaterfallPoint()));
    QCOMPARE(marker.Error(), QStringLiteral("Nothing was recorded at one of the ends."));
    QVERIFY(!marker.Draw(Point(50.0, sideStarboard, 13.0), Point(60.0, sideStarboard, 0.5)));
    QVERIFY(marker.Target() && !marker.Extent());
}

/// The last position that was recorded is none for pings long behind it.
void tst_ZrTargetMarker::outsideTheRecords()
{
    const QString path = m_folder.filePath(QStringLiteral("outside.log"));
    sonar_test::SonarLine line;
    line.pings = 300;
    line.hasNav = [](int ping) { return ping >= 120 && ping < 150; };
    QVERIFY(sonar_test::WriteLine(path, line));
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    ZrTargetMarker marker;
    marker.SetRecording(&recording);
    for (const int ping : {25, 119, 149, 245}) // within 10 s
        QVERIFY2(marker.Tap(Point(ping, sideStarboard, 13.0)), qPrintable(marker.Error()));
    QVERIFY(!marker.Tap(Point(260.0, sideStarboard, 13.0)));
    QCOMPARE(marker.Error(), QStringLiteral("No position was recorded near line 261."));
    QVERIFY(!marker.Tap(Point(15.0, sidePort, 13.0)));
    QVERIFY(!marker.Draw(Point(130.0, sidePort, 13.0), Point(260.0, sidePort, 13.0)));
    QVERIFY(!marker.Draw(Point(260.0, sidePort, 13.0), Point(130.0, sidePort, 13.0)));
    QVERIFY(marker.Draw(Point(130.0, sidePort, 13.0), Point(135.0, sidePort, 13.0)));
}

/// Between two positions that are minutes apart a place is a guess.
void tst_ZrTargetMarker::positionsFarApart()
{
    const QString path = m_folder.filePath(QStringLiteral("apart.log"));
    sonar_test::SonarLine line;
    line.interval = 1.0;
    line.pings = 220;
    line.hasNav = [](int ping) { return ping <= 20 || ping == 60 || ping >= 200; };
    QVERIFY(sonar_test::WriteLine(path, line));
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    ZrTargetMarker marker;
    marker.SetRecording(&recording);
    for (const int ping : {10, 40, 60, 210})
        QVERIFY2(marker.Tap(Point(ping, sideStarboard, 13.0)), qPrintable(marker.Error()));
    QVERIFY(!marker.Tap(Point(130.0, sideStarboard, 13.0)));
    QCOMPARE(marker.Error(), QStringLiteral("No position was recorded near line 131."));
}

/// The place is that of the pose, which goes by time: the clock was set back behind the records, and the
/// pings lie long behind them on the axis.
void tst_ZrTargetMarker::placedByTime()
{
    const QString path = m_folder.filePath(QStringLiteral("set.log"));
    sonar_test::SonarLine line;
    sonar_test::Log log(path);
    const auto timeOf = [&](int ping) { return line.time + ping - (ping < 120 ? 0.0 : 60.0); };
    for (int i = 0; i < 150; ++i) {
        if (i < 100)
            log.AddNav(timeOf(i), line.NavOf(i));
        for (const eSonarSide side : {sidePort, sideStarboard})
            log.AddPing(timeOf(i), line.PingOf(i, side));
    }
    QVERIFY(log.Commit());
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    QVERIFY(!recording.KnowsVehicle(recording.TimeOfPing(140.0)));
    ZrTargetMarker marker;
    marker.SetRecording(&recording);
    QVERIFY2(marker.Tap(Point(140.0, sideStarboard, 13.0)), qPrintable(marker.Error()));
    QVERIFY(!marker.Tap(Point(115.0, sideStarboard, 13.0)));
}

/// As the review counts them.
void tst_ZrTargetMarker::linesFromOne()
{
    ZrTargetMarker marker;
    marker.SetRecording(&m_recording);
    QVERIFY(!marker.Tap(Point(50.0, sideStarboard, 1.05)));
    QCOMPARE(marker.Error(),
        QStringLiteral(
            "Sample 10 of line 51 lies in the water column: at 1.05 m, the seabed begins at 5.00 m"));
}

/// 20 pings of 0.15 m along the track, on one range.
void tst_ZrTargetMarker::draw()
{
    ZrTargetMarker marker;
    marker.SetRecording(&m_recording);
    QVERIFY(marker.Draw(Point(40.0, sidePort, 13.0), Point(60.0, sidePort, 13.0)));
    QVERIFY(marker.Extent());
    QVERIFY2(std::fabs(marker.Extent()->distance - 3.0) < 0.1,
        qPrintable(QString::number(marker.Extent()->distance)));
    QCOMPARE(marker.Target()->length, marker.Extent()->length);
    QCOMPARE(marker.Target()->width, marker.Extent()->width);
    // A tap alone has no extent.
    QVERIFY(marker.Tap(Point(50.0, sideStarboard, 13.0)));
    QVERIFY(!marker.Extent());
    QVERIFY(std::isnan(marker.Target()->length));
}

/// By similar triangles: 5 m · (20 − 13) / 20.
void tst_ZrTargetMarker::shadow()
{
    ZrTargetMarker marker;
    marker.SetRecording(&m_recording);
    marker.SetWantsShadow(true);
    QVERIFY(!marker.WantsShadow()); // of nothing
    QVERIFY(marker.Tap(Point(50.0, sideStarboard, 13.05)));
    marker.SetWantsShadow(true);
    QVERIFY(marker.WantsShadow());
    QVERIFY2(marker.Tap(Point(55.0, sideStarboard, 20.05)), qPrintable(marker.Error()));
    QVERIFY(!marker.WantsShadow());
    QVERIFY(marker.Shadow());
    const double wanted = marker.Target()->altitude * 7.0 / 20.05;
    QVERIFY2(std::fabs(marker.Target()->height - wanted) < 0.02,
        qPrintable(QString::number(marker.Target()->height)));
    QCOMPARE(marker.Target()->spot.ping, std::size_t(50));
    QVERIFY(marker.Draw(Point(40.0, sidePort, 13.0), Point(60.0, sidePort, 13.0)));
    QVERIFY(!marker.Shadow() && std::isnan(marker.Target()->height));
}

void tst_ZrTargetMarker::wrongSideOfTheShadow()
{
    ZrTargetMarker marker;
    marker.SetRecording(&m_recording);
    QVERIFY(marker.Tap(Point(50.0, sideStarboard, 13.0)));
    marker.SetWantsShadow(true);
    QVERIFY(!marker.Tap(Point(50.0, sidePort, 20.0)));
    QCOMPARE(marker.Error(), QStringLiteral("The shadow lies on the target's side of the track."));
    // Before the target it is none either; it is asked for still.
    QVERIFY(!marker.Tap(Point(50.0, sideStarboard, 10.0)));
    QVERIFY(!marker.Error().isEmpty());
    QVERIFY(marker.WantsShadow() && !marker.Shadow());
    QVERIFY(marker.Tap(Point(50.0, sideStarboard, 20.0)));
}

void tst_ZrTargetMarker::cleared()
{
    ZrTargetMarker marker;
    marker.SetRecording(&m_recording);
    QVERIFY(marker.Draw(Point(40.0, sidePort, 13.0), Point(60.0, sidePort, 13.0)));
    marker.SetWantsShadow(true);
    marker.Clear();
    QVERIFY(!marker.Target() && !marker.Extent() && !marker.Shadow() && !marker.WantsShadow());
    QVERIFY(marker.Tap(Point(50.0, sideStarboard, 13.0)));
    marker.SetRecording(nullptr);
    QVERIFY(!marker.Target() && !marker.HasSonar());
}

void tst_ZrTargetMarker::painting()
{
    ZrTargetMarker marker;
    marker.SetRecording(&m_recording);
    QVERIFY(marker.Draw(Point(40.0, sidePort, 13.0), Point(60.0, sidePort, 13.0)));
    marker.SetWantsShadow(true);
    QVERIFY(marker.Tap(Point(40.0, sidePort, 20.0)));
    QImage image(200, 200, QImage::Format_RGB32);
    image.fill(Qt::gray);
    const QImage blank = image;
    QPainter painter(&image);
    // Nothing of it is in view.
    marker.Paint(painter, ZrWaterfallLayout(), 1.0, Qt::cyan);
    QCOMPARE(image, blank);
}

QTEST_MAIN(tst_ZrTargetMarker)
#include "tst_ZrTargetMarker.moc"
