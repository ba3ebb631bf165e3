// The pictures of the widget gallery: that it looks as it did. And the options of the program.
//
// The pictures it is compared with are tests/golden/gallery-*.png. After an intended change of the look, with
// the fonts of fonts-liberation installed:
//
//     build/dev/bin/widget_gallery --screenshots tests/golden
//
// and look at every one of them before it is committed. When a comparison fails, the new picture and one of
// the differences lie in build/dev/golden-differences.

#include <QDir>
#include <QFontInfo>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <vector>

namespace {

/// Two pixels differ when a channel does by more than this, of 255: rasterisers of fonts round differently.
constexpr int channelTolerance = 24;
/// Two pictures differ when more pixels than this do in a square of `squareSide` pixels, 1 %: a widget that
/// moved by a pixel is seen however large the picture is.
constexpr int pixelTolerance = 40;
constexpr int squareSide = 64;

struct Difference
{
    int pixels = 0; ///< that differ
    int worst = 0; ///< of them in one square
    QImage image; ///< those in red, over a dim copy of the expected one
};

/// Of two pictures of the same size.
Difference Compare(const QImage& expected, const QImage& actual)
{
    const QImage before = expected.convertToFormat(QImage::Format_RGB32);
    const QImage now = actual.convertToFormat(QImage::Format_RGB32);
    Difference result;
    result.image = QImage(expected.size(), QImage::Format_RGB32);
    const auto across = std::size_t(expected.width() / squareSide + 1);
    std::vector<int> squares(across * std::size_t(expected.height() / squareSide + 1));
    for (int y = 0; y < expected.height(); ++y) {
        const auto* a = reinterpret_cast<const QRgb*>(before.constScanLine(y));
        const auto* b = reinterpret_cast<const QRgb*>(now.constScanLine(y));
        auto* out = reinterpret_cast<QRgb*>(result.image.scanLine(y));
        for (int x = 0; x < expected.width(); ++x) {
            const bool differs = std::abs(qRed(a[x]) - qRed(b[x])) > channelTolerance
                || std::abs(qGreen(a[x]) - qGreen(b[x])) > channelTolerance
                || std::abs(qBlue(a[x]) - qBlue(b[x])) > channelTolerance;
            const int dim = qGray(a[x]) / 4;
            out[x] = differs ? qRgb(255, 0, 0) : qRgb(dim, dim, dim);
            if (!differs)
                continue;
            ++result.pixels;
            int& inSquare = squares[std::size_t(y / squareSide) * across + std::size_t(x / squareSide)];
            result.worst = std::max(result.worst, ++inSquare);
        }
    }
    return result;
}

bool IsAlike(const Difference& difference)
{
    return difference.worst <= pixelTolerance;
}

struct Run
{
    int exitCode = -1;
    QString out;
    QString errors;
};

Run RunGallery(const QStringList& arguments)
{
    QProcess program;
    program.start(QStringLiteral(ZR_BIN_DIR "/widget_gallery"), arguments);
    Run run;
    if (program.waitForFinished(60000) && program.exitStatus() == QProcess::NormalExit)
        run.exitCode = program.exitCode();
    run.out = QString::fromUtf8(program.readAllStandardOutput());
    run.errors = QString::fromUtf8(program.readAllStandardError());
    return run;
}

QStringList PicturesIn(const QString& dir)
{
    return QDir(dir).entryList({QStringLiteral("gallery-*.png")}, QDir::Files, QDir::Name);
}

} // namespace

class tst_GalleryPictures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void fontIsTheOneOfThePictures();
    void looksAsItDid_data();
    void looksAsItDid();
    void everyPictureIsExpected();
    void comparisonSeesChanges();
    void picturesAreTheSameAtEveryRun();
    void helpIsShown();
    void wrongOptionsAreRefused_data();
    void wrongOptionsAreRefused();
    void unwritableFolderIsTold_data();
    void unwritableFolderIsTold();

private:
    QTemporaryDir m_pictures;
};

void tst_GalleryPictures::initTestCase()
{
    QVERIFY(m_pictures.isValid());
    const Run run = RunGallery({QStringLiteral("--screenshots"), m_pictures.path()});
    QVERIFY2(run.exitCode == 0, qPrintable(run.errors));
    QVERIFY2(!run.errors.contains(QLatin1String("Could not parse")), qPrintable(run.errors));
}

void tst_GalleryPictures::fontIsTheOneOfThePictures()
{
    const QString family = QFontInfo(QFont(QStringLiteral("Arial"))).family();
    QVERIFY2(family == QLatin1String("Liberation Sans") || family == QLatin1String("Arial"),
        qPrintable(QStringLiteral("%1 takes the place of Arial: install fonts-liberation").arg(family)));
}

void tst_GalleryPictures::looksAsItDid_data()
{
    QTest::addColumn<QString>("name");
    const QStringList names = PicturesIn(QStringLiteral(ZR_SOURCE_DIR "/tests/golden"));
    for (const QString& name : names)
        QTest::newRow(qPrintable(name)) << name;
}

void tst_GalleryPictures::looksAsItDid()
{
    QFETCH(QString, name);
    const QImage expected(QStringLiteral(ZR_SOURCE_DIR "/tests/golden/") + name);
    const QImage actual(m_pictures.filePath(name));
    QVERIFY(!expected.isNull());
    QVERIFY2(!actual.isNull(), "the gallery does not write this picture any more");
    const bool isSameSize = expected.size() == actual.size();
    const Difference difference = isSameSize ? Compare(expected, actual) : Difference();
    if (isSameSize && IsAlike(difference))
        return;
    const QDir folder(QStringLiteral(ZR_BIN_DIR "/../golden-differences"));
    QVERIFY(folder.mkpath(QStringLiteral(".")));
    QVERIFY(actual.save(folder.filePath(name)));
    if (isSameSize)
        QVERIFY(difference.image.save(folder.filePath(QStringLiteral("difference-") + name)));
    QFAIL(qPrintable(QStringLiteral("%1 pixels differ (%2 × %3, expected %4 × %5); see %6")
                         .arg(difference.pixels)
                         .arg(actual.width())
                         .arg(actual.height())
                         .arg(expected.width())
                         .arg(expected.height())
                         .arg(QDir::cleanPath(folder.path()))));
}

void tst_GalleryPictures::everyPictureIsExpected()
{
    const QStringList written = PicturesIn(m_pictures.path());
    QCOMPARE(written, PicturesIn(QStringLiteral(ZR_SOURCE_DIR "/tests/golden")));
    // Each scale in metric and imperial units, and the keyboards.
    QCOMPARE(written.filter(QStringLiteral("metric")).size(), 4);
    QCOMPARE(written.filter(QStringLiteral("imperial")).size(), 4);
    QCOMPARE(written.filter(QStringLiteral("keyboard")).size(), 7);
}

void tst_GalleryPictures::comparisonSeesChanges()
{
    // One small control in a large picture: seen when it moves by a pixel, whatever its place.
    const auto draw = [](const QPoint& at) {
        QImage image(1280, 3000, QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(QColor(125, 125, 125), 2));
        painter.setBrush(QColor(26, 26, 26));
        painter.drawRoundedRect(QRect(at, QSize(44, 44)), 6, 6);
        return image;
    };
    const QImage picture = draw({600, 1400});
    QVERIFY(IsAlike(Compare(picture, picture)));
    QVERIFY(!IsAlike(Compare(picture, draw({600, 1401}))));
    QVERIFY(!IsAlike(Compare(picture, draw({601, 1400}))));
    // A channel that is off by little is not.
    QImage changed;
    changed = picture;
    changed.setPixel(5, 5, qRgb(channelTolerance, 0, 0));
    QCOMPARE(Compare(picture, changed).pixels, 0);
    changed.setPixel(5, 5, qRgb(channelTolerance + 1, 0, 0));
    QCOMPARE(Compare(picture, changed).pixels, 1);
    // Other units are another picture.
    const QImage metric(m_pictures.filePath(QStringLiteral("gallery-plus1-metric.png")));
    const QImage imperial(m_pictures.filePath(QStringLiteral("gallery-plus1-imperial.png")));
    QCOMPARE(metric.size(), imperial.size());
    QVERIFY(!IsAlike(Compare(metric, imperial)));
}

void tst_GalleryPictures::picturesAreTheSameAtEveryRun()
{
    QTemporaryDir again;
    QVERIFY(again.isValid());
    QCOMPARE(RunGallery({QStringLiteral("--screenshots"), again.path()}).exitCode, 0);
    const QStringList names = PicturesIn(m_pictures.path());
    QVERIFY(!names.isEmpty());
    for (const QString& name : names)
        QVERIFY2(QImage(again.filePath(name)) == QImage(m_pictures.filePath(name)), qPrintable(name));
}

void tst_GalleryPictures::helpIsShown()
{
    const Run run = RunGallery({QStringLiteral("--help")});
    QCOMPARE(run.exitCode, 0);
    QVERIFY(run.out.contains(QLatin1String("--screenshots <DIR>")));
}

void tst_GalleryPictures::wrongOptionsAreRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("unknown") << QStringList{QStringLiteral("--bogus")} << QStringLiteral("bogus");
    QTest::newRow("no folder") << QStringList{QStringLiteral("--screenshots")}
                               << QStringLiteral("screenshots");
    QTest::newRow("argument") << QStringList{QStringLiteral("file")}
                              << QStringLiteral("Unexpected argument file");
}

void tst_GalleryPictures::wrongOptionsAreRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const Run run = RunGallery(arguments);
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.errors.contains(message), qPrintable(run.errors));
    QVERIFY(run.errors.contains(QLatin1String("Usage:")));
}

void tst_GalleryPictures::unwritableFolderIsTold_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("missing") << m_pictures.filePath(QStringLiteral("missing"));
    QTest::newRow("a file") << m_pictures.filePath(QStringLiteral("gallery-plus1-metric.png"));
    QTest::newRow("of the system") << QStringLiteral("/proc");
}

void tst_GalleryPictures::unwritableFolderIsTold()
{
    QFETCH(QString, folder);
    const Run run = RunGallery({QStringLiteral("--screenshots"), folder});
    QCOMPARE(run.exitCode, 3);
    QVERIFY2(run.errors.contains(QStringLiteral("Cannot write ") + folder), qPrintable(run.errors));
}

QTEST_MAIN(tst_GalleryPictures)
#include "tst_GalleryPictures.moc"
