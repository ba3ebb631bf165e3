// Files of mosaics: what they say, what other programs make of them, and that nothing is left half done.

#include "ProgramOutput.h"
#include "ZrKit/sonar/ZrMosaicFile.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <sys/stat.h>
#include <thread>

namespace {

ZrMosaicFrame FrameOf(int zone, bool south)
{
    ZrMosaicFrame frame;
    frame.zone = zone;
    frame.south = south;
    frame.west = 512681.1;
    frame.north = south ? 5183873.7 : 5365873.7;
    frame.resolution = 0.05;
    frame.width = 40;
    frame.height = 30;
    return frame;
}

/// Grey steps with a transparent corner.
QImage Picture(int width = 40, int height = 30)
{
    QImage image(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, x + y < 10 ? qRgba(0, 0, 0, 0) : qRgb((x * 6) % 256, (y * 8) % 256, 128));
    }
    return image;
}

QByteArray ContentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

QJsonObject GdalInfo(const QString& path)
{
    return QJsonDocument::fromJson(OutputOf(QStringLiteral("gdalinfo"), {QStringLiteral("-json"), path}))
        .object();
}

/// The six numbers of a picture's place: easting of the upper left corner, metres of a pixel, 0, northing, 0,
/// minus the metres.
std::vector<double> TransformOf(const QJsonObject& info)
{
    std::vector<double> values;
    for (const QJsonValue& value : info.value(QStringLiteral("geoTransform")).toArray())
        values.push_back(value.toDouble());
    return values;
}

/// Sets PATH while it lives.
class OtherPath
{
public:
    explicit OtherPath(const QByteArray& path)
        : m_before(qgetenv("PATH"))
    {
        qputenv("PATH", path);
    }

    ~OtherPath() { qputenv("PATH", m_before); }

    OtherPath(const OtherPath&) = delete;
    OtherPath& operator=(const OtherPath&) = delete;

private:
    QByteArray m_before;
};

} // namespace

class tst_ZrMosaicFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void worldFileNames_data();
    void worldFileNames();
    void worldFileText();
    void projectionText();
    void projectionIsUnderstood_data();
    void projectionIsUnderstood();
    void filesOf();
    void pictures_data();
    void pictures();
    void pngIsPlacedByOthers();
    void geoTiffIsPlacedByOthers_data();
    void geoTiffIsPlacedByOthers();
    void geoTiffNeedsTheProgram();
    void geoTiffThatFails();
    void geoTiffIsCancelled();
    void refusals_data();
    void refusals();
    void nothingIsReplacedAfterAFailure();
    void existingFilesAreReplaced();
    void linksStay();
    void cancelledBefore();
    void cancelledWhileWriting();
    void errorGoesAway();

private:
    QString Path(const char* name) const { return m_folder->filePath(QString::fromUtf8(name)); }

    QStringList Names() const
    {
        return QDir(m_folder->path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    }

    /// Puts a program called gdal_translate into the folder.
    void MakeTranslator(const QByteArray& script);

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_ZrMosaicFile::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

void tst_ZrMosaicFile::MakeTranslator(const QByteArray& script)
{
    QFile file(Path("gdal_translate"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("#!/bin/sh\n" + script + "\n");
    file.close();
    QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

void tst_ZrMosaicFile::worldFileNames_data()
{
    QTest::addColumn<QString>("picture");
    QTest::addColumn<QString>("world");
    const auto row = [](const char* picture, const char* world) {
        QTest::newRow(picture) << QString::fromUtf8(picture) << QString::fromUtf8(world);
    };
    row("a.png", "a.pgw");
    row("a.jpg", "a.jgw");
    row("a.jpeg", "a.jgw");
    row("a.bmp", "a.bpw");
    row("a.tif", "a.tfw");
    row("a.PNG", "a.PGw");
    row("dir.d/a.b.png", "dir.d/a.b.pgw");
    row("no suffix", "no suffix.w");
    row("ä ö.png", "ä ö.pgw");
}

void tst_ZrMosaicFile::worldFileNames()
{
    QFETCH(QString, picture);
    QFETCH(QString, world);
    QCOMPARE(ZrMosaicFile::WorldFileName(picture), world);
}

void tst_ZrMosaicFile::worldFileText()
{
    QCOMPARE(ZrMosaicFile::WorldFile(FrameOf(19, false)),
        QByteArray("0.0500000000\n0.0000000000\n0.0000000000\n-0.0500000000\n"
                   "512681.125000\n5365873.675000\n"));
}

void tst_ZrMosaicFile::projectionText()
{
    QCOMPARE(ZrMosaicFile::Projection(FrameOf(19, false)),
        QByteArray("PROJCS[\"WGS_1984_UTM_Zone_19N\",GEOGCS[\"GCS_WGS_1984\",DATUM[\"D_WGS_1984\","
                   "SPHEROID[\"WGS_1984\",6378137.0,298.257223563]],PRIMEM[\"Greenwich\",0.0],"
                   "UNIT[\"Degree\",0.0174532925199433]],PROJECTION[\"Transverse_Mercator\"],"
                   "PARAMETER[\"False_Easting\",500000.0],PARAMETER[\"False_Northing\",0.0],"
                   "PARAMETER[\"Central_Meridian\",-69.0],PARAMETER[\"Scale_Factor\",0.9996],"
                   "PARAMETER[\"Latitude_Of_Origin\",0.0],UNIT[\"Meter\",1.0]]\n"));
}

void tst_ZrMosaicFile::projectionIsUnderstood_data()
{
    QTest::addColumn<int>("zone");
    QTest::addColumn<bool>("south");
    for (const int zone : {1, 19, 31, 60}) {
        QTest::addRow("%d north", zone) << zone << false;
        QTest::addRow("%d south", zone) << zone << true;
    }
}

void tst_ZrMosaicFile::projectionIsUnderstood()
{
    QFETCH(int, zone);
    QFETCH(bool, south);
    const ZrMosaicFrame frame = FrameOf(zone, south);
    QFile file(Path("a.prj"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(ZrMosaicFile::Projection(frame));
    file.close();
    const QByteArray epsg = OutputOf(
        QStringLiteral("gdalsrsinfo"), {QStringLiteral("-o"), QStringLiteral("epsg"), file.fileName()});
    QCOMPARE(epsg.trimmed(), "EPSG:" + QByteArray::number((south ? 32700 : 32600) + zone));
}

void tst_ZrMosaicFile::filesOf()
{
    const auto files = [](const char* path) {
        return ZrMosaicFile::FilesOf(QString::fromUtf8(path)).join(QLatin1Char(' '));
    };
    QCOMPARE(files("d/a.png"), QStringLiteral("d/a.png d/a.pgw d/a.prj"));
    QCOMPARE(files("d.e/a.JPG"), QStringLiteral("d.e/a.JPG d.e/a.JGw d.e/a.prj"));
    QCOMPARE(files("a.tif"), QStringLiteral("a.tif"));
    QCOMPARE(files("a.tiff"), QStringLiteral("a.tiff"));
    QCOMPARE(files("a.txt"), QString());
    QCOMPARE(files("png"), QString());
    QCOMPARE(files(""), QString());
}

void tst_ZrMosaicFile::pictures_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("world");
    QTest::addColumn<bool>("exact");
    QTest::newRow("png") << QStringLiteral("wrack ö.png") << QStringLiteral("wrack ö.pgw") << true;
    QTest::newRow("jpg") << QStringLiteral("a.jpg") << QStringLiteral("a.jgw") << false;
    QTest::newRow("jpeg") << QStringLiteral("a.jpeg") << QStringLiteral("a.jgw") << false;
    QTest::newRow("bmp") << QStringLiteral("a.bmp") << QStringLiteral("a.bpw") << false;
}

void tst_ZrMosaicFile::pictures()
{
    QFETCH(QString, name);
    QFETCH(QString, world);
    QFETCH(bool, exact);
    const QString path = m_folder->filePath(name);
    ZrMosaicFile file;
    QVERIFY2(file.Write(Picture(), FrameOf(19, false), path), qPrintable(file.Error()));
    const QImage read(path);
    QCOMPARE(read.size(), QSize(40, 30));
    if (exact)
        QCOMPARE(read.convertToFormat(QImage::Format_ARGB32), Picture());
    else
        QVERIFY(qGray(read.pixel(1, 1)) < 20 && qAlpha(read.pixel(1, 1)) == 255); // black where nothing is
    QCOMPARE(ContentOf(m_folder->filePath(world)), ZrMosaicFile::WorldFile(FrameOf(19, false)));
    const QString projection = name.section(QLatin1Char('.'), 0, 0) + QStringLiteral(".prj");
    QCOMPARE(ContentOf(m_folder->filePath(projection)), ZrMosaicFile::Projection(FrameOf(19, false)));
    QCOMPARE(Names().size(), 3);
}

void tst_ZrMosaicFile::pngIsPlacedByOthers()
{
    ZrMosaicFile file;
    QVERIFY2(file.Write(Picture(), FrameOf(19, false), Path("a.png")), qPrintable(file.Error()));
    const QJsonObject info = GdalInfo(Path("a.png"));
    const std::vector<double> place = TransformOf(info);
    QCOMPARE(place.size(), std::size_t(6));
    const double expected[] = {512681.1, 0.05, 0.0, 5365873.7, 0.0, -0.05};
    for (std::size_t i = 0; i < 6; ++i)
        QVERIFY2(std::fabs(place[i] - expected[i]) < 1e-6, qPrintable(QString::number(place[i], 'g', 15)));
    QCOMPARE(info.value(QStringLiteral("bands")).toArray().size(), 4);
}

void tst_ZrMosaicFile::geoTiffIsPlacedByOthers_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("south");
    QTest::newRow("north") << QStringLiteral("wrack ö.tif") << false;
    QTest::newRow("south") << QStringLiteral("a.tiff") << true;
}

void tst_ZrMosaicFile::geoTiffIsPlacedByOthers()
{
    QFETCH(QString, name);
    QFETCH(bool, south);
    QVERIFY(ZrMosaicFile::CanWriteGeoTiff());
    ZrMosaicFile file;
    QVERIFY2(file.Write(Picture(), FrameOf(19, south), m_folder->filePath(name)), qPrintable(file.Error()));
    QCOMPARE(Names(), QStringList(name));
    const QJsonObject info = GdalInfo(m_folder->filePath(name));
    QCOMPARE(info.value(QStringLiteral("driverShortName")).toString(), QStringLiteral("GTiff"));
    QCOMPARE(info.value(QStringLiteral("size")).toArray(), QJsonArray({40, 30}));
    const std::vector<double> place = TransformOf(info);
    QCOMPARE(place.size(), std::size_t(6));
    const double expected[] = {512681.1, 0.05, 0.0, south ? 5183873.7 : 5365873.7, 0.0, -0.05};
    for (std::size_t i = 0; i < 6; ++i)
        QVERIFY2(std::fabs(place[i] - expected[i]) < 1e-6, qPrintable(QString::number(place[i], 'g', 15)));
    const QString system
        = info.value(QStringLiteral("coordinateSystem")).toObject().value(QStringLiteral("wkt")).toString();
    QVERIFY2(
        system.contains(south ? QStringLiteral("ID[\"EPSG\",32719]") : QStringLiteral("ID[\"EPSG\",32619]")),
        qPrintable(system));
    // The pixels are those of the picture.
    const QString back = Path("back.png");
    OutputOf(QStringLiteral("gdal_translate"),
        {QStringLiteral("-q"), QStringLiteral("-of"), QStringLiteral("PNG"), m_folder->filePath(name), back});
    const QImage read = QImage(back).convertToFormat(QImage::Format_ARGB32);
    QCOMPARE(read, Picture());
}

void tst_ZrMosaicFile::geoTiffNeedsTheProgram()
{
    const OtherPath nowhere(QFile::encodeName(m_folder->path()));
    QVERIFY(!ZrMosaicFile::CanWriteGeoTiff());
    ZrMosaicFile file;
    QVERIFY(!file.Write(Picture(), FrameOf(19, false), Path("a.tif")));
    QCOMPARE(file.Error(),
        Path("a.tif")
            + QStringLiteral(
                ": GeoTIFF needs the program gdal_translate; install the package gdal-bin, or write "
                "a .png, which comes with a world file"));
    QCOMPARE(Names(), QStringList());
    QVERIFY2(file.Write(Picture(), FrameOf(19, false), Path("a.png")), qPrintable(file.Error()));
}

void tst_ZrMosaicFile::geoTiffThatFails()
{
    MakeTranslator("echo 'no room on device' >&2; echo more >&2; exit 3");
    const OtherPath path(QFile::encodeName(m_folder->path()) + ":" + qgetenv("PATH"));
    ZrMosaicFile file;
    QVERIFY(!file.Write(Picture(), FrameOf(19, false), Path("a.tif")));
    QCOMPARE(file.Error(), QStringLiteral("gdal_translate has failed: no room on device"));
    QCOMPARE(Names(), QStringList(QStringLiteral("gdal_translate")));
    MakeTranslator("exit 0");
    QVERIFY(!file.Write(Picture(), FrameOf(19, false), Path("a.tif")));
    QCOMPARE(file.Error(), QStringLiteral("gdal_translate has written nothing"));
}

void tst_ZrMosaicFile::geoTiffIsCancelled()
{
    MakeTranslator("echo started > " + QFile::encodeName(Path("started")) + "; exec sleep 60");
    const OtherPath path(QFile::encodeName(m_folder->path()) + ":" + qgetenv("PATH"));
    ZrMosaicFile file;
    std::atomic<bool> over{false};
    std::thread other([&] {
        while (!over && !QFileInfo::exists(Path("started")))
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        file.cancel = true;
    });
    const bool written = file.Write(Picture(), FrameOf(19, false), Path("a.tif"));
    over = true;
    other.join();
    QVERIFY(!written);
    QCOMPARE(file.Error(), QStringLiteral("Cancelled"));
    QVERIFY(!QFileInfo::exists(Path("a.tif")));
}

void tst_ZrMosaicFile::refusals_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("hasPicture");
    QTest::addColumn<QString>("error");
    const QString endings
        = QStringLiteral(": The name of a picture must end in .png, .jpg, .jpeg, .bmp, .tif, .tiff");
    QTest::newRow("suffix") << QStringLiteral("a.gif") << true << endings;
    QTest::newRow("no suffix") << QStringLiteral("png") << true << endings;
    QTest::newRow("no picture") << QStringLiteral("a.png") << false
                                << QStringLiteral(": There is no picture to write");
    QTest::newRow("no folder") << QStringLiteral("missing/a.png") << true << QString();
    QTest::newRow("no folder for GeoTIFF") << QStringLiteral("missing/a.tif") << true << QString();
}

void tst_ZrMosaicFile::refusals()
{
    QFETCH(QString, name);
    QFETCH(bool, hasPicture);
    QFETCH(QString, error);
    ZrMosaicFile file;
    const QString path = m_folder->filePath(name);
    QVERIFY(!file.Write(hasPicture ? Picture() : QImage(), FrameOf(19, false), path));
    if (error.isEmpty())
        QVERIFY2(file.Error().startsWith(m_folder->path()), qPrintable(file.Error()));
    else
        QCOMPARE(file.Error(), path + error);
    QCOMPARE(Names(), QStringList());
}

/// A folder stands where one of the files should go: none of the others is touched.
void tst_ZrMosaicFile::nothingIsReplacedAfterAFailure()
{
    for (const char* blocked : {"a.png", "a.pgw", "a.prj"}) {
        init();
        for (const char* name : {"a.png", "a.pgw", "a.prj"}) {
            QFile file(Path(name));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("old") == 3);
        }
        QVERIFY(QFile::remove(Path(blocked)) && QDir().mkdir(Path(blocked)));
        ZrMosaicFile file;
        QVERIFY(!file.Write(Picture(), FrameOf(19, false), Path("a.png")));
        QVERIFY2(file.Error().startsWith(Path(blocked) + QStringLiteral(": ")), qPrintable(file.Error()));
        QCOMPARE(Names().size(), 3);
        for (const char* name : {"a.png", "a.pgw", "a.prj"}) {
            if (qstrcmp(name, blocked) != 0)
                QCOMPARE(ContentOf(Path(name)), QByteArray("old"));
        }
    }
}

void tst_ZrMosaicFile::existingFilesAreReplaced()
{
    ZrMosaicFile file;
    QVERIFY(file.Write(Picture(), FrameOf(19, false), Path("a.png")));
    QVERIFY(file.Write(Picture(50, 20), FrameOf(20, true), Path("a.png")));
    QCOMPARE(QImage(Path("a.png")).size(), QSize(50, 20));
    QCOMPARE(ContentOf(Path("a.pgw")), ZrMosaicFile::WorldFile(FrameOf(20, true)));
    QCOMPARE(ContentOf(Path("a.prj")), ZrMosaicFile::Projection(FrameOf(20, true)));
    QCOMPARE(Names().size(), 3);
}

void tst_ZrMosaicFile::linksStay()
{
    QVERIFY(QDir().mkdir(Path("store")));
    QFile real(Path("store/real.png"));
    QVERIFY(real.open(QIODevice::WriteOnly) && real.write("old") == 3);
    real.close();
    QVERIFY(QFile::link(Path("store/real.png"), Path("a.png")));
    ZrMosaicFile file;
    QVERIFY2(file.Write(Picture(), FrameOf(19, false), Path("a.png")), qPrintable(file.Error()));
    QVERIFY(QFileInfo(Path("a.png")).isSymLink());
    QCOMPARE(QImage(Path("store/real.png")).size(), QSize(40, 30));
    QVERIFY(QFileInfo::exists(Path("a.pgw")));
}

void tst_ZrMosaicFile::cancelledBefore()
{
    for (const char* name : {"a.png", "a.tif"}) {
        ZrMosaicFile file;
        file.cancel = true;
        QVERIFY(!file.Write(Picture(), FrameOf(19, false), Path(name)));
        QCOMPARE(file.Error(), QStringLiteral("Cancelled"));
        QCOMPARE(Names(), QStringList());
    }
}

/// At whatever moment: either all three files are there or none.
void tst_ZrMosaicFile::cancelledWhileWriting()
{
    const QImage large = Picture(1500, 1500);
    int stopped = 0;
    for (int delay = 0; delay < 40; delay += 4) {
        init();
        ZrMosaicFile file;
        std::thread other([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(delay));
            file.cancel = true;
        });
        const bool written = file.Write(large, FrameOf(19, false), Path("a.png"));
        other.join();
        QCOMPARE(Names().size(), written ? 3 : 0);
        if (!written)
            QCOMPARE(file.Error(), QStringLiteral("Cancelled"));
        stopped += written ? 0 : 1;
    }
    QVERIFY(stopped > 0);
}

void tst_ZrMosaicFile::errorGoesAway()
{
    ZrMosaicFile file;
    QVERIFY(!file.Write(Picture(), FrameOf(19, false), Path("a.gif")));
    QVERIFY(!file.Error().isEmpty());
    QVERIFY(file.Write(Picture(), FrameOf(19, false), Path("a.png")));
    QCOMPARE(file.Error(), QString());
}

QTEST_GUILESS_MAIN(tst_ZrMosaicFile)
#include "tst_ZrMosaicFile.moc"
