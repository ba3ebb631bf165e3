#include "ZrKit/map/ZrWaterfallLoader.h"
#include "ZrKit/map/ZrWaterfallPings.h"
#include "ZrKit/sonar/ZrBottomLine.h"
#include "ZrKit/sonar/ZrSonarGeo.h"
#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrKit/sonar/ZrSonarTrack.h"
#include "ZrSonarTestLog.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using sonar_test::SonarLine;

namespace {

constexpr int patience = 60000; ///< milliseconds
constexpr i64 tile = ZrWaterfallTiles::TileLines;
constexpr int lineCount = 2000; ///< the last tile is not full

} // namespace

/// Lines that come from a log when they are wanted, and only then.
class tst_ZrWaterfallLoader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void loadsWhatIsWanted();
    void eachTileOnce();
    void lastTile();
    void onlyTheLastWish();
    void nothingWanted();
    void wishesBeyondTheLog();
    void linesAreThoseOfThePings();
    void endsWhileLoading();

private:
    void Wait(ZrWaterfallLoader& loader) const { QTRY_VERIFY_WITH_TIMEOUT(!loader.IsLoading(), patience); }

    QTemporaryDir m_folder;
    ZrSonarLog m_log;
    ZrBottomLine m_bottom;
    std::unique_ptr<ZrSonarTrack> m_track;
    std::shared_ptr<ZrSonarGeo> m_geo;
    std::shared_ptr<ZrWaterfallPings> m_pings;
};

void tst_ZrWaterfallLoader::initTestCase()
{
    SonarLine line;
    line.pings = lineCount;
    line.samples = 50;
    const QString path = m_folder.filePath(QStringLiteral("line.log"));
    QVERIFY(WriteLine(path, line));
    QVERIFY(m_log.Open(path));
    m_bottom.SetFound(std::vector<double>(lineCount, 5.0));
    m_track = std::make_unique<ZrSonarTrack>(m_log.Pings(), ZrSonarTrackSettings());
    m_geo = std::make_shared<ZrSonarGeo>(m_log.Pings(), *m_track, m_bottom);
    m_pings = std::make_shared<ZrWaterfallPings>(m_log, m_geo);
    QVERIFY(m_pings->Learn());
}

void tst_ZrWaterfallLoader::loadsWhatIsWanted()
{
    ZrWaterfallLoader loader(m_pings);
    QSignalSpy loaded(&loader, &ZrWaterfallLoader::Loaded);
    ZrWaterfallLine line;
    QCOMPARE(loader.Tiles().LineCount(), i64(lineCount));
    QVERIFY(!loader.Tiles().Fetch(300, line));
    loader.Want({{300, 310}});
    QVERIFY(loader.IsLoading());
    // Not in this thread: it is not there before the event loop has turned.
    QVERIFY(!loader.Tiles().Fetch(300, line));
    Wait(loader);
    QCOMPARE(loaded.size(), 1);
    QCOMPARE(loader.LinesRead(), tile);
    QVERIFY(loader.Tiles().Fetch(300, line));
    QVERIFY(loader.Tiles().Fetch(tile, line));
    QVERIFY(loader.Tiles().Fetch(2 * tile - 1, line));
    QVERIFY(!loader.Tiles().Fetch(tile - 1, line));
    QVERIFY(!loader.Tiles().Fetch(2 * tile, line));
}

void tst_ZrWaterfallLoader::eachTileOnce()
{
    ZrWaterfallLoader loader(m_pings);
    QSignalSpy loaded(&loader, &ZrWaterfallLoader::Loaded);
    loader.Want({{0, 3 * tile}});
    Wait(loader);
    QCOMPARE(loaded.size(), 3);
    QCOMPARE(loader.LinesRead(), 3 * tile);
    loader.Want({{10, 20}, {2 * tile, 3 * tile}});
    QVERIFY(!loader.IsLoading());
    loader.Want({{10, 4 * tile}});
    Wait(loader);
    QCOMPARE(loader.LinesRead(), 4 * tile);
}

void tst_ZrWaterfallLoader::lastTile()
{
    ZrWaterfallLoader loader(m_pings);
    loader.Want({{lineCount - 1, lineCount + 500}});
    Wait(loader);
    QCOMPARE(loader.LinesRead(), lineCount % tile);
    ZrWaterfallLine line;
    QVERIFY(loader.Tiles().Fetch(lineCount - 1, line));
    QVERIFY(!loader.Tiles().Fetch(lineCount, line));
}

/// What was wanted meanwhile and went out of view is not read.
void tst_ZrWaterfallLoader::onlyTheLastWish()
{
    ZrWaterfallLoader loader(m_pings);
    for (i64 first = 0; first < 7 * tile; first += tile)
        loader.Want({{first, first + 1}});
    Wait(loader);
    // The first, which was under way, and the last.
    QCOMPARE(loader.LinesRead(), 2 * tile);
    ZrWaterfallLine line;
    QVERIFY(loader.Tiles().Fetch(0, line));
    QVERIFY(!loader.Tiles().Fetch(tile, line));
    QVERIFY(loader.Tiles().Fetch(6 * tile, line));
}

void tst_ZrWaterfallLoader::nothingWanted()
{
    ZrWaterfallLoader loader(m_pings);
    loader.Want({});
    QVERIFY(!loader.IsLoading());
    // A wish that is taken back while its first tile is under way.
    loader.Want({{0, 5 * tile}});
    loader.Want({});
    Wait(loader);
    QCOMPARE(loader.LinesRead(), tile);
}

void tst_ZrWaterfallLoader::wishesBeyondTheLog()
{
    ZrWaterfallLoader loader(m_pings);
    loader.Want({{-500, 0}, {lineCount, lineCount + 100}, {50, 40}});
    QVERIFY(!loader.IsLoading());
    QCOMPARE(loader.LinesRead(), i64(0));
    loader.Want({{-500, 1}});
    Wait(loader);
    QCOMPARE(loader.LinesRead(), tile);
}

void tst_ZrWaterfallLoader::linesAreThoseOfThePings()
{
    ZrWaterfallLoader loader(m_pings);
    loader.Want({{700, 701}});
    Wait(loader);
    for (const i64 at : {2 * tile, i64(700), 3 * tile - 1}) {
        ZrWaterfallLine expected;
        m_pings->Make(static_cast<std::size_t>(at), expected);
        ZrWaterfallLine line;
        QVERIFY(loader.Tiles().Fetch(at, line));
        QCOMPARE(line.time, expected.time);
        QCOMPARE(line.samples, expected.samples);
    }
}

/// It waits for the tile under way, no more, and nothing comes afterwards.
void tst_ZrWaterfallLoader::endsWhileLoading()
{
    int told = 0;
    {
        ZrWaterfallLoader loader(m_pings);
        connect(&loader, &ZrWaterfallLoader::Loaded, this, [&] { ++told; });
        loader.Want({{0, lineCount}});
        QVERIFY(loader.IsLoading());
    }
    QCoreApplication::processEvents();
    QCOMPARE(told, 0);
    // The pings can be used again.
    ZrWaterfallLine line;
    m_pings->Make(5, line);
    QVERIFY(!line.samples[0].empty());
}

QTEST_MAIN(tst_ZrWaterfallLoader)
#include "tst_ZrWaterfallLoader.moc"
