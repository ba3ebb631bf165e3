// What a step of the cursor reads from a log: as much of one of a million records as of one with a tenth.

#include "GlTest.h"
#include "LongLog.h"
#include "ZrKit/map/ZrWaterfallLoader.h"
#include "ZrKit/map/ZrWaterfallTiles.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/ReviewPage.h"
#include "apps/ZrSurvey/ReviewSonar.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

namespace {

constexpr int patience = 200000; ///< milliseconds
constexpr qint64 recordsPerLine = 3;
constexpr int steps = 10;
constexpr qint64 mostTiles = 5; ///< that a window reaches into, and those just left and just ahead
constexpr int leastTurns = 10; ///< of the event loop; work in its thread would leave none

/// What all steps together took.
struct Taken
{
    qint64 lines = 0; ///< decoded
    qint64 bytes = 0; ///< read by the process
};

bool IsAlike(qint64 a, qint64 b)
{
    return std::llabs(a - b) * 5 <= std::max(a, b);
}

} // namespace

class tst_SurveyScrub : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsAlike();

private:
    void Scrub(qint64 records, Taken& taken);

    QTemporaryDir m_folder;
};

/// Opens a log of so many records and goes to places far from one another.
void tst_SurveyScrub::Scrub(qint64 records, Taken& taken)
{
    long_log::Shape shape;
    shape.lines = records / recordsPerLine + 1;
    // A million records are more bytes than the bottom is tracked in, which would take its time.
    shape.samples = 320;
    const QString log = m_folder.filePath(QStringLiteral("%1.log").arg(records));
    QVERIFY(long_log::Write(log, shape));
    SurveyView view((QString()));
    view.resize(1280, 800);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QTRY_VERIFY(view.IsComplete());
    auto& page = *static_cast<ReviewPage*>(view.GetPage(QStringLiteral("Review")));
    long_log::Turns turns;
    turns.Begin();
    view.OpenLog(log);
    QTRY_VERIFY_WITH_TIMEOUT(!page.IsLoading(), patience);
    QTRY_VERIFY(page.IsDrawn());
    turns.End();
    qInfo("%lld records: %d turns of the event loop while they are opened, at most %lld ms without one, %.0f "
          "ms of work",
        records, turns.Count(), turns.Longest(), turns.Busiest());
    QVERIFY2(turns.Busiest() < long_log::mostWork, qPrintable(QString::number(turns.Busiest())));
    QVERIFY(page.Recording());
    QCOMPARE(page.Recording()->Series().Count(), static_cast<std::size_t>(shape.lines));
    if (records > 500000)
        QVERIFY2(turns.Count() >= leastTurns, qPrintable(QString::number(turns.Count())));

    const ZrWaterfallLoader& loader = *page.Sonar().Loader();
    QTRY_VERIFY_WITH_TIMEOUT(!loader.IsLoading(), patience);
    const qint64 tiles = shape.lines / ZrWaterfallTiles::TileLines;
    const qint64 linesBefore = loader.LinesRead();
    const qint64 bytesBefore = long_log::BytesRead();
    QVERIFY(bytesBefore > 0);
    turns.Begin();
    for (int i = 0; i < steps; ++i) {
        // 7 and 10 share no divisor: every tenth of the log once, in no order.
        const qint64 tile = (2 * ((7 * i + 3) % steps) + 1) * tiles / (2 * steps);
        const auto ping
            = static_cast<double>(tile * ZrWaterfallTiles::TileLines) + ZrWaterfallTiles::TileLines / 2.0;
        page.GoTo(page.Recording()->TimeOfPing(ping));
        QTRY_VERIFY_WITH_TIMEOUT(!loader.IsLoading(), patience);
    }
    turns.End();
    taken.lines = loader.LinesRead() - linesBefore;
    taken.bytes = long_log::BytesRead() - bytesBefore;
    const qint64 useful = taken.lines * 2 * shape.PingBytes();
    qInfo("%lld records: %lld lines decoded and %lld bytes read in %d steps, %lld of them of these lines; at "
          "most %lld ms without a turn, %.0f ms of work",
        records, taken.lines, taken.bytes, steps, useful, turns.Longest(), turns.Busiest());
    QVERIFY2(turns.Busiest() < long_log::mostWork, qPrintable(QString::number(turns.Busiest())));
    QVERIFY(taken.lines >= steps * ZrWaterfallTiles::TileLines);
    QVERIFY2(taken.lines <= steps * mostTiles * ZrWaterfallTiles::TileLines,
        qPrintable(QString::number(taken.lines)));
    // Nothing of the log but these lines, and what a file is read ahead for each tile.
    QVERIFY2(taken.bytes <= 2 * useful + steps * 65536, qPrintable(QString::number(taken.bytes)));
}

void tst_SurveyScrub::readsAlike()
{
    ZrTheme::SetDesignScale(1280, 800);
    ZrTheme::SetStdStyle();
    Taken ofShort;
    Scrub(100000, ofShort);
    if (QTest::currentTestFailed())
        return;
    Taken ofLong;
    Scrub(1000000, ofLong);
    if (QTest::currentTestFailed())
        return;
    QVERIFY(IsAlike(ofShort.lines, ofLong.lines));
    QVERIFY(IsAlike(ofShort.bytes, ofLong.bytes));
}

GL_TEST_MAIN(tst_SurveyScrub)
#include "tst_SurveyScrub.moc"
