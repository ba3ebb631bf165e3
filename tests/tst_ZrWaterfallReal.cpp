// ZrWaterfall on a real side-scan line, against a picture that was judged by eye.

#include "ZrKit/recording/ZrLogWriter.h"
#include "ZrKit/sonar/ZrBottomLine.h"
#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrKit/sonar/ZrSonarTrack.h"
#include "ZrKit/sonar/ZrWaterfall.h"
#include "ZrKit/sonar/ZrWaterfallMap.h"
#include "ZrLogFixture.h"
#include "import_fixture.h"

#include <QtTest/QtTest>

#include <algorithm>

class tst_ZrWaterfallReal : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void realLine();
};

namespace {

/// How far two images of one size differ.
struct Difference
{
    double mean = 0.0; ///< of the channels, 0 to 255
    double share = 0.0; ///< of the pixels with a channel off by more than `limit`
    QImage image; ///< eight times the difference

    static constexpr int limit = 24;

    Difference(const QImage& a, const QImage& b)
        : image(a.size(), QImage::Format_RGB32)
    {
        double sum = 0.0;
        double beyond = 0.0;
        for (int y = 0; y < a.height(); ++y) {
            for (int x = 0; x < a.width(); ++x) {
                const QRgb p = a.pixel(x, y);
                const QRgb q = b.pixel(x, y);
                const int off[] = {std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                    std::abs(qBlue(p) - qBlue(q))};
                sum += off[0] + off[1] + off[2];
                beyond += *std::max_element(off, off + 3) > limit ? 1.0 : 0.0;
                const auto shown = [](int v) { return std::min(255, 8 * v); };
                image.setPixel(x, y, qRgb(shown(off[0]), shown(off[1]), shown(off[2])));
            }
        }
        const double pixels = static_cast<double>(a.width()) * a.height();
        mean = sum / 3.0 / pixels;
        share = beyond / pixels;
    }
};

} // namespace

/// The wreck of the real line, as it was judged by eye: a mean difference of at most one step of 255, and of
/// at most one pixel in a thousand by more than 24, is left to compilers and processors.
void tst_ZrWaterfallReal::realLine()
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
    std::vector<double> altitudes;
    for (const ZrSonarPing& ping : log.Pings()) {
        const double altitude = ping.pose.altitude;
        altitudes.push_back(altitude > 0.0 ? altitude : std::numeric_limits<double>::quiet_NaN());
    }
    ZrBottomLine bottom;
    bottom.SetFound(altitudes);
    ZrSonarTrackSettings smooth;
    smooth.smoothing = 4.0;
    ZrWaterfallSettings settings;
    settings.width = 600;
    const ZrWaterfallMap map(
        log.Pings(), ZrSonarTrack(log.Pings(), smooth), bottom, settings, 0, log.Pings().size() - 1);
    ZrWaterfall waterfall(log);
    QImage image;
    QVERIFY(waterfall.Render(map, image));

    const QImage golden(QStringLiteral(ZR_SOURCE_DIR "/tests/golden/waterfall-wreck.png"));
    const QString actual = QDir::current().absoluteFilePath(QStringLiteral("waterfall-wreck-actual.png"));
    if (golden.size() != image.size()) {
        image.save(actual);
        QFAIL(qPrintable(
            QStringLiteral("%1 x %2 pixels, in %3").arg(image.width()).arg(image.height()).arg(actual)));
    }
    const Difference difference(image, golden);
    if (difference.mean > 1.0 || difference.share > 0.001) {
        const QString shown
            = QDir::current().absoluteFilePath(QStringLiteral("waterfall-wreck-difference.png"));
        image.save(actual);
        difference.image.save(shown);
        QFAIL(qPrintable(QStringLiteral("mean difference %1, %2 of the pixels beyond %3: see %4 and %5")
                             .arg(difference.mean)
                             .arg(difference.share)
                             .arg(Difference::limit)
                             .arg(actual, shown)));
    }
}

QTEST_GUILESS_MAIN(tst_ZrWaterfallReal)
#include "tst_ZrWaterfallReal.moc"
