// The waterfall layer on a real side-scan line, against pictures that were judged by eye.

#include "GlView.h"
#include "GoldenImage.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/map/ZrWaterfallLayer.h"
#include "ZrKit/recording/ZrLogWriter.h"
#include "ZrKit/sonar/ZrBottomTracker.h"
#include "ZrKit/sonar/ZrSonarContrast.h"
#include "ZrKit/sonar/ZrSonarGain.h"
#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrKit/sonar/ZrSonarTrack.h"
#include "ZrLogFixture.h"
#include "import_fixture.h"

#include <QtWidgets>

class tst_ZrWaterfallPicture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void wreck_data();
    void wreck();

private:
    ZrWaterfallRing m_ring{300, 1024};
};

namespace {

constexpr int copper = 3; ///< of the palettes of the surface

/// The samples of both sides of all pings, with the gain that they teach.
struct Samples
{
    std::vector<std::vector<u16>> of[2];
    std::vector<double> altitudes;
    ZrSonarContrast contrast;

    explicit Samples(ZrSonarLog& log)
        : altitudes(ZrBottomTracker().Track(log))
    {
        ZrSonarGain gain(ZrSonarGainSettings{});
        for (const eSonarSide side : {sidePort, sideStarboard}) {
            for (std::size_t i = 0; i < log.Pings().size(); ++i) {
                const ZrSonarPing& ping = log.Pings()[i];
                std::vector<u16>& samples = of[side].emplace_back();
                log.ReadSamples(i, side, samples);
                gain.Learn(samples, side, ping.sides[side].slantRange, altitudes[i]);
            }
        }
        gain.Prepare();
        for (const eSonarSide side : {sidePort, sideStarboard}) {
            for (std::size_t i = 0; i < of[side].size(); ++i) {
                std::vector<u16>& samples = of[side][i];
                const double range = log.Pings()[i].sides[side].slantRange;
                gain.Apply(samples, side, range, altitudes[i]);
                // The seabed alone, neither the pulse nor the water.
                const auto water
                    = static_cast<std::ptrdiff_t>(altitudes[i] / range * static_cast<double>(samples.size()));
                contrast.Add(std::vector<u16>(samples.begin() + water, samples.end()));
            }
        }
        contrast.clip = 0.01;
        contrast.gamma = 1.0;
        contrast.Measure();
    }
};

} // namespace

void tst_ZrWaterfallPicture::initTestCase()
{
    const MessageCatcher quiet;
    const QTemporaryDir folder;
    const fixture::Imported line
        = fixture::import(fixture::data("sidescan-xtf/iver2-scotsman-pings0-299.xtf"));
    QVERIFY(line.opened);
    const QString path = folder.filePath(QStringLiteral("real.log"));
    ZrLogWriter writer;
    QVERIFY(writer.Open(path, line.items.first().time));
    for (const ZrImportItem& item : line.items) {
        QVERIFY(
            writer.Write(item.type, item.source, item.format, item.time, false, zr::bytes_of(item.payload)));
    }
    QVERIFY(writer.Commit());
    ZrSonarLog log;
    QVERIFY(log.Open(path));
    const Samples samples(log);
    ZrSonarTrackSettings smooth;
    smooth.smoothing = 4.0;
    const ZrSonarTrack track(log.Pings(), smooth);
    QVERIFY(std::none_of(samples.altitudes.begin(), samples.altitudes.end(),
        [](double altitude) { return std::isnan(altitude); }));
    for (std::size_t i = 0; i < log.Pings().size(); ++i) {
        const ZrSonarPing& ping = log.Pings()[i];
        ZrWaterfallLine content;
        content.time = ping.time;
        content.altitude = samples.altitudes[i];
        content.along = track.Distance(i);
        for (const std::size_t side : {std::size_t(sidePort), std::size_t(sideStarboard)}) {
            content.range[side] = ping.sides[side].slantRange;
            content.samples[side].resize(samples.of[side][i].size());
            samples.contrast.Map(samples.of[side][i], content.samples[side]);
        }
        m_ring.Append(content);
    }
    QCOMPARE(m_ring.End(), i64(300));
}

void tst_ZrWaterfallPicture::wreck_data()
{
    QTest::addColumn<bool>("slant");
    QTest::newRow("slant") << false;
    QTest::newRow("ground") << true;
}

void tst_ZrWaterfallPicture::wreck()
{
    QFETCH(bool, slant);
    const QSize size(600, 358);
    gl::Context context(gl::Api::desktop, size);
    QVERIFY2(context.Error().isEmpty(), qPrintable(context.Error()));
    GlView surface;
    surface.m_background = QStringLiteral(":/back_light.png");
    surface.OnCreate();
    surface.ZrglSetViewport(0, 0, size.width(), size.height());
    ZrMapView view;
    view.SetSize(size.width(), size.height());
    view.Apply(surface);
    context.Clear(QColor(44, 54, 66));
    ZrWaterfallLayer layer;
    layer.SetRing(&m_ring);
    layer.m_isSmooth = true;
    layer.m_palette = copper;
    layer.m_gain = 0.5F;
    layer.m_view.speedCorrected = true;
    layer.m_view.rect = QRect(QPoint(0, 0), size);
    layer.m_view.slantCorrected = slant;
    layer.Paint(surface, view);
    QCOMPARE(context.TakeErrors(), GLenum(GL_NO_ERROR));
    const QImage image = context.Read().convertToFormat(QImage::Format_RGB32);
    const QString name
        = slant ? QStringLiteral("waterfall-layer-ground.png") : QStringLiteral("waterfall-layer-slant.png");
    QCOMPARE(golden::Compare(image.convertToFormat(QImage::Format_ARGB32), name), QString());
}

GL_TEST_MAIN(tst_ZrWaterfallPicture)
#include "tst_ZrWaterfallPicture.moc"
