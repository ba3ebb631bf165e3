// ZrWaterfall: progress, cancelling, what goes wrong.

#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrKit/sonar/ZrSonarTrack.h"
#include "ZrKit/sonar/ZrWaterfall.h"
#include "ZrKit/sonar/ZrWaterfallMap.h"
#include "ZrLogFixture.h"
#include "ZrSonarLine.h"

#include <QtTest/QtTest>

#include <algorithm>

class tst_ZrWaterfallRuns : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void progressGoesUp();
    void cancelled_data();
    void cancelled();
    void errors();
    void logIsGone();
    void twiceIsTheSame();
};

namespace {

class Steps final : public IZrProgress
{
public:
    QVector<int> steps;
    std::atomic<bool>* cancel = nullptr;
    int cancelAt = 0;

    void UpdateProgress(int percent) override
    {
        steps << percent;
        if (cancel && percent >= cancelAt)
            *cancel = true;
    }

    int GetProgress() override { return steps.isEmpty() ? 0 : steps.last(); }
};

/// A line of fifty pings that is ready to be drawn.
struct Ready
{
    QTemporaryDir folder;
    ZrSonarLog log;
    std::unique_ptr<ZrWaterfallMap> map;

    explicit Ready(const ZrWaterfallSettings& settings = ZrWaterfallSettings())
    {
        const SonarLine line = SonarLine::Steady(50, 0.5);
        const QString path = folder.filePath(QStringLiteral("line.log"));
        if (!line.Write(path) || !log.Open(path))
            qFatal("no log");
        map = std::make_unique<ZrWaterfallMap>(
            log.Pings(), ZrSonarTrack(log.Pings(), {}), line.Bottom(), settings, 0, 49);
    }
};

} // namespace

void tst_ZrWaterfallRuns::progressGoesUp()
{
    const MessageCatcher quiet;
    Ready ready;
    for (const auto mode : {ZrSonarGainSettings::gainAuto, ZrSonarGainSettings::gainNone}) {
        ZrWaterfallSettings settings;
        settings.gain.mode = mode;
        Ready one(settings);
        ZrWaterfall waterfall(one.log);
        Steps steps;
        waterfall.progress = &steps;
        QImage image;
        QVERIFY(waterfall.Render(*one.map, image));
        QVERIFY(steps.steps.size() > 20);
        QVERIFY(std::is_sorted(steps.steps.begin(), steps.steps.end()));
        QVERIFY(std::adjacent_find(steps.steps.begin(), steps.steps.end()) == steps.steps.end());
        QCOMPARE(steps.steps.last(), 100);
    }
}

void tst_ZrWaterfallRuns::cancelled_data()
{
    QTest::addColumn<int>("at");
    QTest::newRow("learning") << 1;
    QTest::newRow("measuring") << 30;
    QTest::newRow("drawing") << 70;
}

void tst_ZrWaterfallRuns::cancelled()
{
    QFETCH(int, at);
    const MessageCatcher quiet;
    Ready ready;
    ZrWaterfall waterfall(ready.log);
    Steps steps;
    steps.cancel = &waterfall.cancel;
    steps.cancelAt = at;
    waterfall.progress = &steps;
    QImage image(3, 3, QImage::Format_RGB32);
    QVERIFY(!waterfall.Render(*ready.map, image));
    QVERIFY(image.isNull());
    QCOMPARE(waterfall.Error(), QStringLiteral("Cancelled"));
    QVERIFY(steps.steps.last() < at + 3);
    waterfall.cancel = false;
    waterfall.progress = nullptr;
    QVERIFY(waterfall.Render(*ready.map, image));
    QCOMPARE(waterfall.Error(), QString());
}

void tst_ZrWaterfallRuns::errors()
{
    const MessageCatcher quiet;
    ZrWaterfallSettings settings;
    settings.palette = QStringLiteral("rosé");
    Ready ready(settings);
    ZrWaterfall waterfall(ready.log);
    QImage image(3, 3, QImage::Format_RGB32);
    QVERIFY(!waterfall.Render(*ready.map, image));
    QCOMPARE(waterfall.Error(), QStringLiteral("There is no palette \"rosé\""));
    QVERIFY(image.isNull());
    settings = ZrWaterfallSettings();
    settings.width = 40000;
    Ready wide(settings);
    QVERIFY(!ZrWaterfall(wide.log).Render(*wide.map, image));
    ZrWaterfall again(wide.log);
    QVERIFY(!again.Render(*wide.map, image));
    QCOMPARE(again.Error(), wide.map->Error());
    // A map of another, longer log.
    ZrSonarLog empty;
    ZrWaterfall other(empty);
    QVERIFY(!other.Render(*ready.map, image));
    QCOMPARE(other.Error(), QStringLiteral("There are no such pings"));
}

/// The log is cut short behind our back: what cannot be read any more is as if it had not been recorded.
void tst_ZrWaterfallRuns::logIsGone()
{
    const MessageCatcher quiet;
    Ready ready;
    QVERIFY(QFile::resize(ready.log.Path(), 48));
    ZrWaterfall waterfall(ready.log);
    QImage image;
    QVERIFY(waterfall.Render(*ready.map, image));
    for (int y = 0; y < image.height(); y += 50) {
        for (int x = 0; x < image.width(); x += 50)
            QCOMPARE(image.pixel(x, y), ZrWaterfallSettings().noData);
    }
}

void tst_ZrWaterfallRuns::twiceIsTheSame()
{
    const MessageCatcher quiet;
    Ready ready;
    ZrWaterfall waterfall(ready.log);
    QImage first;
    QImage second;
    QVERIFY(waterfall.Render(*ready.map, first));
    QVERIFY(waterfall.Render(*ready.map, second));
    QVERIFY(first == second);
}

QTEST_GUILESS_MAIN(tst_ZrWaterfallRuns)
#include "tst_ZrWaterfallRuns.moc"
