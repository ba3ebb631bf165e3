#include "ZrKit/map/ZrWaterfallPings.h"
#include "ZrKit/sonar/ZrBottomLine.h"
#include "ZrKit/sonar/ZrSonarGeo.h"
#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrKit/sonar/ZrSonarTrack.h"
#include "ZrSonarTestLog.h"
#include "ZrUtil/IZrProgress.h"

#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <numeric>

using sonar_test::SonarLine;

namespace {

class Percents final : public IZrProgress
{
public:
    QVector<int> m_told;
    std::function<void()> m_then;

    void UpdateProgress(int percent) override
    {
        m_told.append(percent);
        if (m_then)
            m_then();
    }

    int GetProgress() override { return m_told.isEmpty() ? 0 : m_told.last(); }
};

/// A log with all that lines are made from.
struct Made
{
    explicit Made(const SonarLine& line, bool knowsAltitudes = true)
    {
        const QString path = folder.filePath(QStringLiteral("line.log"));
        if (!WriteLine(path, line) || !log.Open(path))
            qFatal("no log");
        if (knowsAltitudes)
            bottom.SetFound(std::vector<double>(log.Pings().size(), line.altitude));
        track = std::make_unique<ZrSonarTrack>(log.Pings(), ZrSonarTrackSettings());
        geo = std::make_shared<ZrSonarGeo>(log.Pings(), *track, bottom);
        pings = std::make_unique<ZrWaterfallPings>(log, geo);
    }

    QTemporaryDir folder;
    ZrSonarLog log;
    ZrBottomLine bottom;
    std::unique_ptr<ZrSonarTrack> track;
    std::shared_ptr<ZrSonarGeo> geo;
    std::unique_ptr<ZrWaterfallPings> pings;
};

double Mean(const std::vector<u8>& samples, std::size_t from, std::size_t end)
{
    return std::accumulate(samples.begin() + static_cast<std::ptrdiff_t>(from),
               samples.begin() + static_cast<std::ptrdiff_t>(end), 0.0)
        / static_cast<double>(end - from);
}

} // namespace

class tst_ZrWaterfallPings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lineOfAPing();
    void evenInRange();
    void contrastIsOfTheWholeLog();
    void sidesThatAreMissing();
    void altitudesThatAreUnknown();
    void damagedSamples();
    void pingsBeyondTheEnd();
    void learnsFromFew();
    void cancels();
};

void tst_ZrWaterfallPings::lineOfAPing()
{
    SonarLine source;
    Made made(source);
    QCOMPARE(made.pings->Count(), std::size_t(100));
    QVERIFY(made.pings->Learn());
    ZrWaterfallLine line;
    line.samples[0].assign(7, 1); // replaced as a whole
    made.pings->Make(17, line);
    QCOMPARE(line.time, source.TimeOf(17));
    QCOMPARE(line.altitude, 5.0);
    QVERIFY(std::fabs(line.along - 17 * 0.15) < 0.01);
    for (const std::size_t side : {0U, 1U}) {
        QCOMPARE(line.samples[side].size(), std::size_t(300));
        QCOMPARE(line.range[side], 30.0);
    }
    ZrWaterfallLine again;
    made.pings->Make(17, again);
    QCOMPARE(again.samples, line.samples);
}

/// Echoes that fade with the range end as bright as they begin.
void tst_ZrWaterfallPings::evenInRange()
{
    SonarLine source;
    source.pings = 200;
    source.amplitude = [](int ping, eSonarSide, u32 sample) {
        const double noise = 0.5 + 0.5 * ((sample * 37 + static_cast<u32>(ping) * 101) % 97) / 97.0;
        return sample < 50 ? 0.001 : 0.8 * noise * std::exp(-static_cast<double>(sample) / 100.0);
    };
    Made made(source);
    QVERIFY(made.pings->Learn());
    ZrWaterfallLine line;
    made.pings->Make(100, line);
    const double near = Mean(line.samples[0], 70, 120);
    const double far = Mean(line.samples[0], 240, 290);
    QVERIFY2(near > 20.0 && far > 20.0 && far > 0.6 * near && far < 1.7 * near,
        qPrintable(QStringLiteral("%1 %2").arg(near).arg(far)));
}

/// A stretch that is darker stays darker: the contrast is not that of a line.
void tst_ZrWaterfallPings::contrastIsOfTheWholeLog()
{
    SonarLine source;
    source.amplitude = [](int ping, eSonarSide, u32 sample) {
        const double noise = 0.5 + 0.5 * ((sample * 37 + static_cast<u32>(ping) * 101) % 97) / 97.0;
        return (ping < 50 ? 0.6 : 0.15) * noise;
    };
    Made made(source);
    QVERIFY(made.pings->Learn());
    ZrWaterfallLine bright;
    ZrWaterfallLine dark;
    made.pings->Make(20, bright);
    made.pings->Make(80, dark);
    QVERIFY(Mean(bright.samples[0], 100, 290) > 1.5 * Mean(dark.samples[0], 100, 290));
}

void tst_ZrWaterfallPings::sidesThatAreMissing()
{
    SonarLine source;
    source.isThere = [](int ping, eSonarSide side) { return side == sidePort || ping % 2 == 0; };
    Made made(source);
    QVERIFY(made.pings->Learn());
    ZrWaterfallLine line;
    made.pings->Make(3, line);
    QCOMPARE(line.samples[sidePort].size(), std::size_t(300));
    QVERIFY(line.samples[sideStarboard].empty());
    QCOMPARE(line.range[sideStarboard], 0.0);
    made.pings->Make(4, line);
    QCOMPARE(line.samples[sideStarboard].size(), std::size_t(300));
}

void tst_ZrWaterfallPings::altitudesThatAreUnknown()
{
    Made made(SonarLine(), false);
    QVERIFY(made.pings->Learn());
    ZrWaterfallLine line;
    made.pings->Make(3, line);
    QVERIFY(std::isnan(line.altitude));
    QCOMPARE(line.samples[0].size(), std::size_t(300));
}

/// Cut off behind the log's back: nothing is shown of it, and nothing fails.
void tst_ZrWaterfallPings::damagedSamples()
{
    Made made((SonarLine()));
    QFile file(made.log.Path());
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.resize(file.size() / 2));
    file.close();
    QVERIFY(made.pings->Learn());
    ZrWaterfallLine line;
    made.pings->Make(99, line);
    QVERIFY(line.samples[0].empty() && line.samples[1].empty());
    QVERIFY(line.time > 0.0);
    made.pings->Make(3, line);
    QCOMPARE(line.samples[0].size(), std::size_t(300));
}

void tst_ZrWaterfallPings::pingsBeyondTheEnd()
{
    SonarLine none;
    none.pings = 0;
    Made empty(none);
    QVERIFY(empty.pings->Learn());
    QCOMPARE(empty.pings->Count(), std::size_t(0));
    ZrWaterfallLine line;
    line.time = 5.0;
    empty.pings->Make(0, line);
    QCOMPARE(line.time, 0.0);
    QVERIFY(line.samples[0].empty());
}

/// Of a log of any length some hundred pings are read.
void tst_ZrWaterfallPings::learnsFromFew()
{
    SonarLine source;
    source.samples = 20;
    for (const int count : {1000, 5000}) {
        source.pings = count;
        Made made(source);
        Percents percents;
        made.pings->progress = &percents;
        QVERIFY(made.pings->Learn());
        // Once before each ping of both passes, and at the end.
        QVERIFY2(percents.m_told.size() <= static_cast<int>(2 * ZrWaterfallPings::MostLearnt) + 1,
            qPrintable(QString::number(percents.m_told.size())));
        QVERIFY(percents.m_told.size() > 600);
        QCOMPARE(percents.m_told.last(), 100);
        QVERIFY(std::is_sorted(percents.m_told.begin(), percents.m_told.end()));
    }
}

void tst_ZrWaterfallPings::cancels()
{
    Made made((SonarLine()));
    Percents percents;
    made.pings->progress = &percents;
    percents.m_then = [&] {
        if (percents.m_told.size() == 30)
            made.pings->cancel = true;
    };
    QVERIFY(!made.pings->Learn());
    QCOMPARE(percents.m_told.size(), 30);
}

QTEST_MAIN(tst_ZrWaterfallPings)
#include "tst_ZrWaterfallPings.moc"
