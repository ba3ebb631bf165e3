// `zr sonar image`: side-scan lines as pictures.

#include "ZrSonarLine.h"
#include "ZrToolRun.h"

#include <QImage>
#include <QImageReader>

#include <csignal>

namespace {

double MeanRed(const QImage& image, const QRect& part)
{
    double sum = 0.0;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x)
            sum += qRed(image.pixel(x, y));
    }
    return sum / (static_cast<double>(part.width()) * part.height());
}

} // namespace

class tst_zr_sonar_image : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init();

    void help();
    void sonarAlone();
    void drawsAPicture();
    void saysWhatItDrew();
    void jsonResult();
    void metadata();
    void metadataOfRows();
    void options_data();
    void options();
    void contrastByHand();
    void palettes();
    void bottomIsMarked();
    void formats_data();
    void formats();
    void wrongUsage_data();
    void wrongUsage();
    void times_data();
    void times();
    void timesOutOfOrder();
    void noPings();
    void noPingsThatCanBeUsed();
    void nothingToShow();
    void noAltitude();
    void noPositions();
    void damagedLog();
    void unreadableInput_data();
    void unreadableInput();
    void existingFileStays();
    void unwritable_data();
    void unwritable();
    void diskFull();
    void tooLarge();
    void interrupted();
    void realLine();

private:
    QString Path(const char* name) const { return m_folder.Path(name); }

    ToolResult Run(const QStringList& options)
    {
        return RunTool(QStringList{S("sonar"), S("image"), m_in, m_out} + options);
    }

    QImage Drawn(const QStringList& options)
    {
        const ToolResult result = Run(options + QStringList{S("--force")});
        if (result.code != 0)
            qWarning("%s", result.Text().constData());
        return QImage(m_out);
    }

    ToolFolder m_folder;
    SonarLine m_line;
    QString m_in;
    QString m_out;
};

void tst_zr_sonar_image::init()
{
    m_folder.Renew();
    m_in = Path("line ö.log");
    m_out = Path("picture ö.png");
    m_line = SonarLine::Steady(100, 0.5);
    m_line.samples = 300;
    m_line.seabed = [](double x, double north) {
        const bool disc = std::hypot(x - 18.0, north - 30.0) < 2.0;
        return disc ? 30000.0 : 3000.0 + 2000.0 * std::sin(5.0 * x + 3.0 * north);
    };
    QVERIFY(m_line.Write(m_in));
}

void tst_zr_sonar_image::help()
{
    const ToolResult result = RunTool({S("sonar"), S("image"), S("--help")});
    QCOMPARE(result.code, 0);
    for (const char* word :
        {"Usage: zr sonar image [OPTIONS] LOG OUT", "--palette P", "--gain G", "--spreading DB",
            "--absorption DB/M", "--slant", "--from T", "--to T", "--side SIDE", "--contrast C", "--gamma G",
            "--width PX", "--resolution M", "--no-speed-correction", "--bottom", "--newest END", "--invert",
            "--force", "--json", "Units:", "Examples:", "Apply the slant-range correction", "copper"})
        QVERIFY2(result.out.contains(word), word);
}

void tst_zr_sonar_image::sonarAlone()
{
    const ToolResult result = RunTool({S("sonar"), S("--help")});
    QCOMPARE(result.code, 0);
    QVERIFY(result.out.contains("  image "));
}

void tst_zr_sonar_image::drawsAPicture()
{
    const ToolResult result = Run({});
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(Names(m_folder.Path()), (QStringList{S("line ö.log"), S("picture ö.png")}));
    const QImage image(m_out);
    QCOMPARE(image.size(), QSize(600, 500));
    // The disc, 30 m on and 18 m to starboard from 10 m up, is the brightest of the seabed.
    const int x = 300 + qRound(std::hypot(18.0, 10.0) * 10.0);
    const int y = 500 - 302;
    const QSize part(16, 16);
    const double disc = MeanRed(image, QRect(QPoint(x - 8, y - 8), part));
    QVERIFY2(disc > 250.0, qPrintable(QString::number(disc)));
    QVERIFY(MeanRed(image, QRect(QPoint(x - 8, y + 60), part)) < 200.0);
    QVERIFY(MeanRed(image, QRect(QPoint(600 - x - 8, y - 8), part)) < 200.0);
}

void tst_zr_sonar_image::saysWhatItDrew()
{
    const ToolResult result = Run({S("--resolution"), S("0.5"), S("--contrast"), S("100:20000")});
    QVERIFY2(result.code == 0, result.Text());
    const QString size = SizeText(ReadWhole(m_out).size());
    QCOMPARE(QString::fromUtf8(result.out),
        S("%1: 120 x 100 pixels of 0.5 m across and 0.5 m along, 100 pings, contrast 100:20000, %2\n")
            .arg(m_out, size));
}

void tst_zr_sonar_image::jsonResult()
{
    const ToolResult result = Run({S("--json"), S("--slant"), S("--width"), S("400")});
    QVERIFY2(result.code == 0, result.Text());
    const QJsonObject json = result.Json();
    QCOMPARE(json.keys().join(QLatin1Char(' ')),
        S("bytes first height hi in last lo metres_per_pixel metres_per_row out pings slant_corrected "
          "speed_corrected width"));
    QCOMPARE(json.value(S("in")).toString(), m_in);
    QCOMPARE(json.value(S("out")).toString(), m_out);
    QCOMPARE(json.value(S("width")).toInt(), 400);
    QCOMPARE(json.value(S("height")).toInt(), QImage(m_out).height());
    QCOMPARE(json.value(S("pings")).toInt(), 100);
    QCOMPARE(json.value(S("first")).toInt(), 0);
    QCOMPARE(json.value(S("last")).toInt(), 99);
    QVERIFY(std::fabs(json.value(S("metres_per_pixel")).toDouble() - std::sqrt(800.0) / 200.0) < 1e-6);
    QCOMPARE(json.value(S("metres_per_row")), json.value(S("metres_per_pixel")));
    QCOMPARE(json.value(S("slant_corrected")), QJsonValue(true));
    QCOMPARE(json.value(S("speed_corrected")), QJsonValue(true));
    QVERIFY(json.value(S("lo")).toDouble() > 1000.0);
    QVERIFY(json.value(S("hi")).toDouble() > json.value(S("lo")).toDouble());
    QCOMPARE(json.value(S("bytes")).toInt(), ReadWhole(m_out).size());
}

void tst_zr_sonar_image::metadata()
{
    const QImage image = Drawn({S("--resolution"), S("0.125"), S("--slant")});
    QCOMPARE(image.dotsPerMeterX(), 8);
    QCOMPARE(image.dotsPerMeterY(), 8);
    QCOMPARE(image.text(S("Title")), S("Side-scan image of line ö"));
    QCOMPARE(image.text(S("Log")), S("line ö.log"));
    QCOMPARE(image.text(S("Metres per pixel")), S("0.125"));
    QCOMPARE(image.text(S("Metres per row")), S("0.125"));
    QCOMPARE(image.text(S("Range")), S("ground"));
    QCOMPARE(image.text(S("First ping")), S("2021-03-03T14:05:09.000Z"));
    QCOMPARE(image.text(S("Last ping")), S("2021-03-03T14:05:18.900Z"));
    QVERIFY(image.text(S("Software")).startsWith(S("zr ")));
    QVERIFY(!ReadWhole(m_out).contains(m_folder.Path().toUtf8()));
}

void tst_zr_sonar_image::metadataOfRows()
{
    const QImage image = Drawn({S("--resolution"), S("0.125"), S("--no-speed-correction")});
    QCOMPARE(image.height(), 100);
    QCOMPARE(image.dotsPerMeterX(), 8);
    QCOMPARE(image.dotsPerMeterY(), 2);
    QVERIFY(std::fabs(image.text(S("Metres per row")).toDouble() - 0.5) < 1e-3);
    QCOMPARE(image.text(S("Range")), S("slant"));
}

void tst_zr_sonar_image::options_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<QSize>("size");
    QTest::newRow("none") << QString() << QSize(600, 500);
    QTest::newRow("width") << S("--width 300") << QSize(300, 250);
    QTest::newRow("odd width") << S("--width 301") << QSize(301, 252);
    QTest::newRow("resolution") << S("--resolution 0.5") << QSize(120, 100);
    QTest::newRow("port") << S("--side port") << QSize(300, 500);
    QTest::newRow("starboard") << S("--side starboard --width 150") << QSize(150, 250);
    QTest::newRow("both") << S("--side both") << QSize(600, 500);
    QTest::newRow("rows are pings") << S("--no-speed-correction") << QSize(600, 100);
    QTest::newRow("ground") << S("--slant --resolution 0.1") << QSize(566, 500);
    QTest::newRow("law") << S("--gain law --spreading 20 --absorption 0.1") << QSize(600, 500);
    QTest::newRow("looks") << S("--gain none --palette thermal --gamma 0.6 --invert --contrast full --newest "
                                "bottom --bottom")
                           << QSize(600, 500);
    QTest::newRow("times") << S("--from 2021-03-03T14:05:10Z --to 2021-03-03T14:05:10.95Z --resolution 0.5")
                           << QSize(120, 10);
}

/// Every option has an effect on the picture, and each on its own.
void tst_zr_sonar_image::options()
{
    QFETCH(QString, options);
    const QStringList list = options.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const QImage plain = Drawn({});
    const QImage image = Drawn(list);
    QTEST(image.size(), "size");
    if (!list.isEmpty() && options != S("--side both"))
        QVERIFY(image != plain);
    if (!options.startsWith(S("--gain none")))
        return;
    // Leaving one of several out is to be seen.
    const QStringList groups[]
        = {{S("--gain"), S("none")}, {S("--palette"), S("thermal")}, {S("--gamma"), S("0.6")},
            {S("--invert")}, {S("--contrast"), S("full")}, {S("--newest"), S("bottom")}, {S("--bottom")}};
    for (const QStringList& group : groups) {
        QStringList without = list;
        for (const QString& word : group)
            without.removeOne(word);
        QVERIFY2(Drawn(without) != image, qPrintable(group.first()));
    }
}

void tst_zr_sonar_image::contrastByHand()
{
    m_line.seabed = [](double x, double) { return x < 0.0 ? 2000.0 : 3000.0; };
    QVERIFY(m_line.Write(m_in));
    const QImage image = Drawn({S("--contrast"), S("1000:5000"), S("--gain"), S("none"), S("--palette"),
        S("linear"), S("--gamma"), S("1")});
    QCOMPARE(image.pixel(50, 50), qRgb(64, 64, 64));
    QCOMPARE(image.pixel(550, 50), qRgb(128, 128, 128));
}

void tst_zr_sonar_image::palettes()
{
    QVector<QImage> images;
    for (const char* name : {"copper", "linear", "gray", "hot", "thermal", "green", "ice", "deep", "haline",
             "amp", "speed", "topo", "cool", "jet"}) {
        const QImage image = Drawn({S("--palette"), S(name), S("--width"), S("100")});
        QVERIFY2(image.width() == 100, name);
        for (const QImage& other : images)
            QVERIFY2(image != other || qstrcmp(name, "gray") == 0, name);
        images << image;
    }
}

void tst_zr_sonar_image::bottomIsMarked()
{
    const QImage without = Drawn({S("--width"), S("120")});
    const QImage with = Drawn({S("--width"), S("120"), S("--bottom")});
    for (int y = 0; y < with.height(); ++y) {
        for (int x = 0; x < with.width(); ++x)
            QCOMPARE(with.pixel(x, y) != without.pixel(x, y), x == 60 + 20 || x == 60 - 21);
    }
}

void tst_zr_sonar_image::formats_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("format");
    QTest::newRow("png") << S("a.png") << QByteArray("png");
    QTest::newRow("capitals") << S("a.PNG") << QByteArray("png");
    QTest::newRow("jpg") << S("a.jpg") << QByteArray("jpeg");
    QTest::newRow("bmp") << S("a.b.bmp") << QByteArray("bmp");
    QTest::newRow("ppm") << S("a.ppm") << QByteArray("ppm");
}

void tst_zr_sonar_image::formats()
{
    QFETCH(QString, name);
    const QImage png = Drawn({});
    m_out = m_folder.Path() + QLatin1Char('/') + name;
    const ToolResult result = Run({});
    QVERIFY2(result.code == 0, result.Text());
    QTEST(QImageReader(m_out).format(), "format");
    QImageReader reader(m_out);
    reader.setDecideFormatFromContent(true);
    const QImage image = reader.read();
    QCOMPARE(image.size(), png.size());
    if (name != S("a.jpg"))
        QVERIFY(image.convertToFormat(QImage::Format_RGB32) == png.convertToFormat(QImage::Format_RGB32));
}

void tst_zr_sonar_image::wrongUsage_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("palette") << S("--palette pink") << QByteArray("\"pink\" is not one of copper, linear");
    QTest::newRow("gain") << S("--gain much") << QByteArray("is not auto, law or none");
    QTest::newRow("spreading without law") << S("--spreading 20") << QByteArray("go with --gain law only");
    QTest::newRow("absorption without law")
        << S("--absorption 1 --gain auto") << QByteArray("go with --gain law only");
    QTest::newRow("spreading") << S("--gain law --spreading nan") << QByteArray("no number of decibels");
    QTest::newRow("absorption") << S("--gain law --absorption -1") << QByteArray("decibels per metre");
    QTest::newRow("side") << S("--side left") << QByteArray("is not port, starboard or both");
    QTest::newRow("newest") << S("--newest left") << QByteArray("is not top or bottom");
    QTest::newRow("from") << S("--from noon") << QByteArray("is no time");
    QTest::newRow("to") << S("--to noon") << QByteArray("is no time");
    QTest::newRow("to before from") << S("--from 20 --to 10") << QByteArray("--to lies before --from");
    for (const char* contrast : {"some", "5", "5:", ":5", "5:4", "5:5", "-1:5", "5:65536", "1:2:3", "nan:5"})
        QTest::newRow(contrast) << S("--contrast=") + S(contrast)
                                << QByteArray("is not auto, full, or LO:HI");
    QTest::newRow("gamma") << S("--gamma 0") << QByteArray("is not a number from 0.05 to 20");
    QTest::newRow("gamma no number") << S("--gamma inf") << QByteArray("is not a number from 0.05 to 20");
    for (const char* width : {"1", "30001", "-5", "12.5", "wide", "99999999999"})
        QTest::newRow(width) << S("--width=") + S(width) << QByteArray("is not a whole number of pixels");
    QTest::newRow("resolution") << S("--resolution 0") << QByteArray("is no number of metres");
    QTest::newRow("width and resolution") << S("--width 50 --resolution 1") << QByteArray("--resolution");
    QTest::newRow("bottom and slant") << S("--bottom --slant") << QByteArray("--slant");
    QTest::newRow("option") << S("--pretty") << QByteArray("--pretty");
    QTest::newRow("too many") << S("a third") << QByteArray("a");
}

void tst_zr_sonar_image::wrongUsage()
{
    QFETCH(QString, options);
    QFETCH(QByteArray, message);
    const ToolResult result = Run(options.split(QLatin1Char(' ')));
    QVERIFY2(result.code == 1, result.Text());
    QVERIFY2(result.err.startsWith("zr: ") && result.err.contains(message), result.Text());
    QCOMPARE(result.out, QByteArray());
    QCOMPARE(Names(m_folder.Path()), QStringList{S("line ö.log")});
}

void tst_zr_sonar_image::times_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    const QString from = S("--from");
    const QString to = S("--to");
    QTest::newRow("all") << QStringList() << 0 << 99;
    QTest::newRow("from") << QStringList{from, S("1614780311.95")} << 30 << 99;
    QTest::newRow("to") << QStringList{to, S("2021-03-03T14:05:11.95Z")} << 0 << 29;
    QTest::newRow("ends included") << QStringList{from, S("1614780309"), to, S("1614780309")} << 0 << 0;
    QTest::newRow("before and behind") << QStringList{from, S("0"), to, S("9999999999")} << 0 << 99;
    QTest::newRow("outside") << QStringList{from, S("1614780400")} << -1 << -1;
    QTest::newRow("between pings") << QStringList{from, S("1614780309.03"), to, S("1614780309.07")} << -1
                                   << -1;
}

void tst_zr_sonar_image::times()
{
    QFETCH(QStringList, options);
    QFETCH(int, first);
    QFETCH(int, last);
    const ToolResult result = Run(options + QStringList{S("--json")});
    if (first < 0) {
        QCOMPARE(result.code, 1);
        QCOMPARE(QString::fromUtf8(result.err),
            S("zr: There are no pings between these times; the log has some from 2021-03-03T14:05:09.000Z to "
              "2021-03-03T14:05:18.900Z\n"));
        return;
    }
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(result.Json().value(S("first")).toInt(), first);
    QCOMPARE(result.Json().value(S("last")).toInt(), last);
}

/// Every second ping is logged 0.25 s early, which is no reason to stop at the first one outside.
void tst_zr_sonar_image::timesOutOfOrder()
{
    for (std::size_t i = 1; i < m_line.pings.size(); i += 2)
        m_line.pings[i].time += 0.25;
    QVERIFY(m_line.Write(m_in));
    const auto range = [this](const char* from, const char* to) {
        const ToolResult result = Run({S("--json"), S("--force"), S("--from"), S(from), S("--to"), S(to)});
        const QJsonObject object = result.Json();
        return S("%1 to %2").arg(object.value(S("first")).toInt()).arg(object.value(S("last")).toInt());
    };
    QCOMPARE(range("1614780310.09", "1614780311.01"), S("9 to 20"));
    QCOMPARE(range("1614780311.93", "1614780399"), S("27 to 99"));
    // Set back: the second stretch is another one.
    for (std::size_t i = 50; i < m_line.pings.size(); ++i)
        m_line.pings[i].time -= 6.0;
    QVERIFY(m_line.Write(m_in));
    QCOMPARE(range("1614780310", "1614780399"), S("9 to 49"));
}

void tst_zr_sonar_image::noPings()
{
    const Sample sample(m_in);
    const ToolResult result = Run({});
    QCOMPARE(result.code, 2);
    QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: The log holds no side-scan pings\n").arg(m_in));
    QVERIFY(!QFile::exists(m_out));
}

void tst_zr_sonar_image::noPingsThatCanBeUsed()
{
    for (SonarLine::Ping& ping : m_line.pings)
        ping.range = 1e30;
    QVERIFY(m_line.Write(m_in));
    const QString reason = S("The log holds no side-scan pings that can be used; skipped: 200 items");
    const ToolResult result = Run({});
    QCOMPARE(result.code, 2);
    QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: %2\n").arg(m_in, reason));
    QVERIFY(QFile::resize(m_in, QFileInfo(m_in).size() - 10));
    const ToolResult damaged = Run({});
    QCOMPARE(damaged.code, 2);
    QVERIFY2(damaged.err.contains("skipped: 199 items before its damage: Unable to read item payload"),
        damaged.Text());
}

/// What the log lacks is no wrong usage.
void tst_zr_sonar_image::nothingToShow()
{
    for (SonarLine::Ping& ping : m_line.pings) {
        ping.sides[1] = false;
        ping.altitude = 40.0; // above a range of 30
    }
    QVERIFY(m_line.Write(m_in));
    const ToolResult side = Run({S("--side"), S("starboard")});
    QCOMPARE(side.code, 2);
    QCOMPARE(QString::fromUtf8(side.err),
        S("zr: %1: The side-scan lines have no samples on the sides shown\n").arg(m_in));
    const ToolResult water = Run({S("--slant"), S("--altitude"), S("recorded")});
    QCOMPARE(water.code, 2);
    QCOMPARE(QString::fromUtf8(water.err), S("zr: %1: No side-scan line reaches the seabed\n").arg(m_in));
    QCOMPARE(Names(m_folder.Path()), QStringList{S("line ö.log")});
}

void tst_zr_sonar_image::noAltitude()
{
    for (SonarLine::Ping& ping : m_line.pings)
        ping.altitude = 0.0; // the sensor found no bottom
    QVERIFY(m_line.Write(m_in));
    const ToolResult result = Run({S("--slant"), S("--altitude"), S("recorded")});
    QCOMPARE(result.code, 2);
    QCOMPARE(
        QString::fromUtf8(result.err), S("zr: %1: No altitude is known, which --slant needs\n").arg(m_in));
    QVERIFY(!QFile::exists(m_out));
    QCOMPARE(Drawn({}).width(), 600);
}

void tst_zr_sonar_image::noPositions()
{
    for (SonarLine::Ping& ping : m_line.pings)
        ping.north = std::numeric_limits<double>::quiet_NaN();
    m_line.seabed = [](double, double) { return 3000.0; };
    QVERIFY(m_line.Write(m_in));
    const ToolResult result = Run({});
    QCOMPARE(result.code, 0);
    QCOMPARE(
        QString::fromUtf8(result.err), S("zr: %1: The way is not known: one row for each ping\n").arg(m_in));
    QVERIFY(result.out.contains(" and - along"));
    QCOMPARE(QImage(m_out).height(), 100);
    QCOMPARE(Run({S("--force"), S("--no-speed-correction")}).err, QByteArray());
}

void tst_zr_sonar_image::damagedLog()
{
    const QByteArray whole = ReadWhole(m_in);
    QVERIFY(WriteWhole(m_in, whole.left(whole.size() / 2)));
    const ToolResult result = Run({S("--json")});
    QCOMPARE(result.code, 2);
    QVERIFY2(result.err.startsWith("zr: " + m_in.toUtf8() + ": "), result.Text());
    QVERIFY(result.Json().value(S("pings")).toInt() > 45 && result.Json().value(S("pings")).toInt() < 51);
    QVERIFY(!QImage(m_out).isNull());
}

void tst_zr_sonar_image::unreadableInput_data()
{
    QTest::addColumn<QString>("input");
    QTest::newRow("missing") << S("none.log");
    QTest::newRow("folder") << S(".");
    QTest::newRow("no log") << S("text.log");
    QTest::newRow("empty") << S("empty.log");
    QTest::newRow("device") << S("/dev/null");
}

void tst_zr_sonar_image::unreadableInput()
{
    QFETCH(QString, input);
    QVERIFY(WriteWhole(Path("text.log"), QByteArray(4000, 'x')));
    QVERIFY(WriteWhole(Path("empty.log"), QByteArray()));
    m_in = input.startsWith(QLatin1Char('/')) ? input : m_folder.Path() + QLatin1Char('/') + input;
    const ToolResult result = Run({});
    QVERIFY2(result.code == 2, result.Text());
    QVERIFY(result.err.startsWith("zr: " + m_in.toUtf8() + ": "));
    QVERIFY(!QFile::exists(m_out));
}

void tst_zr_sonar_image::existingFileStays()
{
    QVERIFY(WriteWhole(m_out, "precious"));
    const ToolResult result = Run({});
    QCOMPARE(result.code, 3);
    QCOMPARE(QString::fromUtf8(result.err),
        S("zr: %1: The file exists already; --force replaces it\n").arg(m_out));
    QCOMPARE(ReadWhole(m_out), QByteArray("precious"));
    QCOMPARE(Run({S("--force")}).code, 0);
    QVERIFY(!QImage(m_out).isNull());
    QCOMPARE(Names(m_folder.Path()).size(), 2);
    // A failure leaves the old picture.
    const QByteArray old = ReadWhole(m_out);
    QCOMPARE(Run({S("--force"), S("--from"), S("9999999999")}).code, 1);
    QCOMPARE(ReadWhole(m_out), old);
}

void tst_zr_sonar_image::unwritable_data()
{
    QTest::addColumn<QString>("out");
    QTest::addColumn<int>("code");
    QTest::newRow("no folder") << S("none/a.png") << 3;
    QTest::newRow("a file in place of the folder") << S("line ö.log/a.png") << 3;
    QTest::newRow("no ending") << S("picture") << 1;
    QTest::newRow("other ending") << S("picture.txt") << 1;
    QTest::newRow("ending of no pictures in colour") << S("picture.xbm") << 1;
    QTest::newRow("nothing") << QString() << 1;
    QTest::newRow("folder") << S("folder.png") << 3;
}

void tst_zr_sonar_image::unwritable()
{
    QFETCH(QString, out);
    QFETCH(int, code);
    QVERIFY(QDir(m_folder.Path()).mkdir(S("folder.png")));
    m_out = out.isEmpty() ? out : m_folder.Path() + QLatin1Char('/') + out;
    const ToolResult result = Run({S("--force")});
    QVERIFY2(result.code == code, result.Text());
    QVERIFY(result.err.startsWith("zr: " + m_out.toUtf8()));
    if (code == 1)
        QVERIFY(result.err.contains("The name of the output must end in .png, "));
    QCOMPARE(Names(m_folder.Path()).size(), 2);
}

void tst_zr_sonar_image::diskFull()
{
    for (const char* name : {"a.png", "a.bmp", "a.jpg"}) {
        m_out = Path(name);
        const ToolResult result = RunToolLimited({S("sonar"), S("image"), m_in, m_out}, 4096);
        QVERIFY2(result.code == 3, result.Text());
        QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: File too large\n").arg(m_out));
        QCOMPARE(Names(m_folder.Path()), QStringList{S("line ö.log")});
    }
}

void tst_zr_sonar_image::tooLarge()
{
    const ToolResult wide = Run({S("--resolution"), S("0.0015")});
    QCOMPARE(wide.code, 1);
    QCOMPARE(wide.err,
        QByteArray("zr: The image would be wider than 30000 pixels: choose a coarser resolution\n"));
    const ToolResult high = Run({S("--resolution"), S("0.0015"), S("--side"), S("port")});
    QCOMPARE(high.code, 1);
    QVERIFY2(high.err.contains("The image would be 20000 x 33"), high.Text());
    QCOMPARE(Names(m_folder.Path()), QStringList{S("line ö.log")});
}

/// A signal, at whatever moment, leaves no file behind, or the whole one.
void tst_zr_sonar_image::interrupted()
{
    int stopped = 0;
    for (int wait = 0; wait < 400; wait += 20) {
        QProcess process;
        process.start(ToolPath(),
            {S("sonar"), S("image"), m_in, m_out, S("--force"), S("--width"), S("4000"), S("--slant")});
        QVERIFY(process.waitForStarted());
        QTest::qWait(wait);
        if (process.state() == QProcess::Running)
            ::kill(static_cast<pid_t>(process.processId()), SIGINT);
        const ToolResult result = Finish(process);
        const QStringList names = Names(m_folder.Path());
        if (result.code == 130) {
            ++stopped;
            QCOMPARE(result.out, QByteArray());
        } else if (result.code == 0) {
            QVERIFY(!QImage(m_out).isNull());
        } else {
            // The signal came before its handler was there.
            QVERIFY2(
                process.exitStatus() == QProcess::CrashExit && process.exitCode() == SIGINT, result.Text());
        }
        for (const QString& name : names)
            QVERIFY2(name == S("line ö.log") || name == S("picture ö.png"), qPrintable(name));
    }
    QVERIFY2(stopped > 3, qPrintable(QString::number(stopped)));
}

/// From the foreign file to the picture, as a person goes.
void tst_zr_sonar_image::realLine()
{
    const QString log = Path("wreck.log");
    QCOMPARE(
        RunLog({S("import"), S(ZR_SOURCE_DIR "/data/sidescan-xtf/iver2-scotsman-pings0-299.xtf"), log}).code,
        0);
    m_in = log;
    const ToolResult result = Run({S("--json")});
    QVERIFY2(result.code == 0, result.Text());
    QCOMPARE(result.Json().value(S("pings")).toInt(), 300);
    QCOMPARE(result.Json().value(S("width")).toInt(), 2048);
    const QImage image(m_out);
    QCOMPARE(image.width(), 2048);
    QVERIFY(image.height() > 1150 && image.height() < 1300);
    // Echo and shadow of the wreck beside one another, and even seabed on the other side.
    const double shadow = MeanRed(image, QRect(1480, 120, 50, 100));
    const double rail = MeanRed(image, QRect(1428, 120, 20, 100));
    const double seabed = MeanRed(image, QRect(400, 500, 100, 100));
    QVERIFY2(shadow < 20.0 && rail > 180.0, qPrintable(S("%1, %2").arg(shadow).arg(rail)));
    QVERIFY2(seabed > 90.0 && seabed < 190.0, qPrintable(QString::number(seabed)));
}

QTEST_GUILESS_MAIN(tst_zr_sonar_image)
#include "tst_zr_sonar_image.moc"
