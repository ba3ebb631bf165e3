// Scrubbing through a recording of a million records reads what it shows, and no more: counted.

#include "ZrKit/review/ZrDatasetReader.h"
#include "ZrKit/review/ZrPlayClock.h"
#include "ZrKit/review/ZrPlotDecimator.h"
#include "ZrKit/review/ZrSurveyDataset.h"
#include "ZrKit/review/ZrSurveySeries.h"
#include "ZrKit/review/ZrSurveySeriesReader.h"
#include "ZrKit/review/ZrTimeLine.h"
#include "ZrSurveyLog.h"

#include <cmath>
#include <random>

namespace {

using survey::Nav;
using survey::NavItem;
using survey::S;
using survey::startTime;
using survey::TimedItem;

constexpr int records = 1000000;
constexpr int fixEvery = 10;
constexpr double recordStep = 0.1; ///< seconds
constexpr double gapLength = 3600.0; ///< after every hundred thousand records

double TimeOf(int record)
{
    return startTime + record * recordStep + gapLength * (record / 100000);
}

/// Ten records a second, a fix in front of every tenth.
bool WriteLog(const QString& path)
{
    Nav nav;
    nav.latitude = 44.0;
    nav.longitude = -63.0;
    nav.altitude = 5.0f;
    nav.heading = 90.0f;
    QByteArray item = NavItem(0.0, nav).Bytes();
    QByteArray fix = TimedItem(18, 0, 0.0, QByteArray(28, '\0')).Bytes();
    QByteArray bytes = FileHeader(startTime);
    bytes.reserve(records * item.size() + records / fixEvery * fix.size() + 48);
    const auto add = [&bytes](QByteArray& one, double time) {
        std::memcpy(one.data() + 16, &time, sizeof time);
        bytes += one;
    };
    for (int i = 0; i < records; ++i) {
        const float depth = static_cast<float>(100.0 + 50.0 * std::sin(i * 1e-4));
        std::memcpy(item.data() + 40 + 20, &depth, sizeof depth);
        if (i % fixEvery == 0)
            add(fix, TimeOf(i));
        add(item, TimeOf(i));
    }
    return WriteWhole(path, bytes);
}

#ifdef Q_OS_LINUX
qint64 BytesRead()
{
    for (const QByteArray& line : ReadWhole(S("/proc/self/io")).split('\n')) {
        if (line.startsWith("rchar:"))
            return line.mid(6).trimmed().toLongLong();
    }
    return -1;
}
#endif

} // namespace

class tst_ZrScrub : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void showsTheStateOfEachMoment();
    void readsOnlyWhatItShows();
    void playingReadsEachRecordOnce();
    void plotsLookAtWhatIsVisible();
    void memoryIsBounded();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    ZrSurveyDataset m_dataset;
    ZrSurveySeries m_series;
};

void tst_ZrScrub::initTestCase()
{
    if constexpr (Q_BYTE_ORDER != Q_LITTLE_ENDIAN)
        QSKIP("the log is written in the byte order of the host");
    m_folder = std::make_unique<QTemporaryDir>();
    const QString path = m_folder->filePath(S("long.log"));
    QVERIFY(WriteLog(path));
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(path, m_dataset), ZrDatasetReader::Built);
    QCOMPARE(m_dataset.recs.size(), std::size_t(records));
    ZrSurveySeriesReader series;
    QVERIFY(series.Read(path, m_series));
    QCOMPARE(m_series.Count(), std::size_t(records));
}

/// Wherever the clock is set, the player delivers the latest fix and the record of that moment.
void tst_ZrScrub::showsTheStateOfEachMoment()
{
    ZrPlayer player;
    QVERIFY(player.OpenFile(m_dataset.fileName));
    double fixTime = 0.0;
    double navTime = 0.0;
    QObject::connect(&player, &ZrPlayer::NewPayload, this,
        [&](const ZrLogItemInf& inf, zr::span<u8>) { (inf.type == 18 ? fixTime : navTime) = inf.time; });
    std::mt19937 random(1);
    for (int i = 0; i < 300; ++i) {
        const int record = static_cast<int>(random() % records);
        const std::size_t found = m_series.times->RecordAt(TimeOf(record) + 0.01);
        QCOMPARE(found, std::size_t(record));
        m_dataset.SeekTo(player, m_dataset.recs[found]);
        player.SeekTo(m_dataset.recs[found].pos);
        QVERIFY(player.ReadNextItem(false));
        QCOMPARE(navTime, TimeOf(record));
        QCOMPARE(fixTime, TimeOf(record / fixEvery * fixEvery));
    }
}

void tst_ZrScrub::readsOnlyWhatItShows()
{
    ZrPlayer player;
    QVERIFY(player.OpenFile(m_dataset.fileName));
    int items = 0;
    QObject::connect(&player, &ZrPlayer::NewPayload, this, [&items] { ++items; });
    ZrPlayClock clock;
    clock.SetRange(m_series.times->Begin(), m_series.times->End());
    constexpr int moves = 1000;
    std::mt19937 random(2);
#ifdef Q_OS_LINUX
    qint64 before = BytesRead();
    const qint64 own = BytesRead() - before; // what asking costs
    before = BytesRead();
#endif
    for (int i = 0; i < moves; ++i) {
        clock.SetTime(TimeOf(static_cast<int>(random() % records)));
        const std::size_t record = m_series.times->RecordAt(clock.Time());
        m_dataset.SeekTo(player, m_dataset.recs[record]);
        player.SeekTo(m_dataset.recs[record].pos);
        QVERIFY(player.ReadNextItem(false));
    }
    QCOMPARE(items, 2 * moves); // the fix and the record
#ifdef Q_OS_LINUX
    const qint64 read = BytesRead() - before - own;
    // Two places for each move, a block at each.
    constexpr qint64 block = 16 * 1024; // the smallest one that the player reads
    QVERIFY2(read <= 2 * moves * block, qPrintable(QString::number(read / moves)));
#endif
}

/// A minute at tenfold speed: what is delivered is what lies between the two ends, gaps left out.
void tst_ZrScrub::playingReadsEachRecordOnce()
{
    ZrPlayer player;
    QVERIFY(player.OpenFile(m_dataset.fileName));
    int navs = 0;
    int fixes = 0;
    QObject::connect(&player, &ZrPlayer::NewPayload, this,
        [&](const ZrLogItemInf& inf, zr::span<u8>) { ++(inf.type == 18 ? fixes : navs); });
    ZrPlayClock clock;
    clock.SetRange(m_series.times->Begin(), m_series.times->End());
    clock.SetGaps(ZrGaps(m_series.times->Times()));
    clock.SetRate(10.0);
    const int from = 99900; // a gap of an hour lies ahead
    clock.SetTime(TimeOf(from));
    std::size_t shown = m_series.times->RecordAt(clock.Time());
    player.SeekTo(m_dataset.recs[shown].pos);
    QVERIFY(player.ReadNextItem(true));
    clock.Play();
    clock.Advance(0.0);
    for (int frame = 1; frame <= 60 * 60; ++frame) {
        clock.Advance(frame / 60.0);
        const std::size_t now = m_series.times->RecordAt(clock.Time());
        QVERIFY(now >= shown);
        while (player.pos <= m_dataset.recs[now].pos)
            QVERIFY(player.ReadNextItem(true));
        shown = now;
    }
    // Six hundred seconds are six thousand records.
    QVERIFY2(std::abs(navs - 6001) <= 1, qPrintable(QString::number(navs)));
    QVERIFY2(std::abs(fixes - 600) <= 1, qPrintable(QString::number(fixes)));
    QVERIFY(clock.Time() > TimeOf(100000));
}

void tst_ZrScrub::plotsLookAtWhatIsVisible()
{
    ZrTimeLine line;
    line.SetLog(m_series.times);
    QCOMPARE(line.Gaps().All().size(), std::size_t(records / 100000 - 1));
    ZrPlotDecimator decimator;
    constexpr int columns = 1200;
    std::size_t all = 0;
    for (const ZrPlotSeries* series : {&m_series.depth, &m_series.seabed, &m_series.heading}) {
        const auto& points = decimator.Decimate(*series, line.Columns(columns));
        QVERIFY(!points.empty() && points.size() <= 4u * columns + 2u);
        all = decimator.Looks();
        QVERIFY2(all <= 100u * columns, qPrintable(QString::number(all)));
    }
    // Ten seconds in sight: a hundred records.
    line.Show(TimeOf(555555), TimeOf(555655));
    const auto& points = decimator.Decimate(m_series.depth, line.Columns(columns));
    QVERIFY(points.size() >= 100 && points.size() <= 103);
    QVERIFY2(decimator.Looks() <= 3u * columns, qPrintable(QString::number(decimator.Looks())));
    QVERIFY(decimator.Looks() * 10 < all);
}

void tst_ZrScrub::memoryIsBounded()
{
    QVERIFY(m_series.Bytes() <= u64(60) * records);
    QVERIFY(m_series.Bytes() + m_dataset.recs.size() * sizeof(ZrLogRec) <= u64(220) * records);
}

QTEST_GUILESS_MAIN(tst_ZrScrub)
#include "tst_ZrScrub.moc"
