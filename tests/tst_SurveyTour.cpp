// The tour of ZrSurvey, run as ./run.sh runs it: the whole main job by mouse, fingers and keys.
//
// Pictures are held against tests/data/tour/*.png, at half their size, but for the parts that the tour notes
// as not the same every time: see apps/ZrSurvey/tour/TourChanging.h. The keyboard on the screen is placed by
// the size of the screen, here 1920 x 1080. After an intended change of the look, with the fonts of
// fonts-liberation installed:
//
//     ZR_TOUR_UPDATE=1 xvfb-run -a -s "-screen 0 1920x1080x24" build/dev/bin/tst_SurveyTour
//
// and look at every one of them before it is committed.

#include "GlTest.h"

#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>
#include <QProcess>
#include <QRegion>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

constexpr int tourMs = 700000; ///< on a machine that is busy with much else

/// A picture, and how much of it may be not the same every time, percent of the window. The tour notes beside
/// each picture which parts are; they are blackened before it is compared.
struct Golden
{
    const char* name;
    int mostChanging = 0;
};

/// All stations.
const QVector<Golden>& goldens()
{
    static const QVector<Golden> all{
        {"home", 7}, // free space; the folder
        {"open", 50}, // the machine's drives; when the line was put there
        {"line"}, {"track"}, {"plan-track"}, {"plan-area"}, {"plan-pattern"}, {"plan-lines"}, {"plan-edit"},
        {"plan-keyboard"}, {"plan-property"}, {"plan-checks"}, {"plan-export"}, {"sources"},
        {"record", 80}, // all that moves while it is recorded
        {"recorded", 25}, // the figures of the recording; a message with its name
        {"review-recording", 65}, // its time line, which begins when the button is pressed; its events
        {"review-play", 65}, // likewise
        {"recording-part", 65}, // likewise
        {"recording-exports", 65}, // likewise
        {"review-line"}, {"sonar-look"}, {"sonar-slant"}, {"sonar-bottom"}, {"sonar-measure"}, {"events"},
        {"export-choice"}, {"exports"}, {"scene-orbit"}, {"scene-follow"}, {"settings"}, {"imperial"},
        {"metric"}, {"scale"}, {"day"}, {"night"}, {"dusk"},
        {"about", 15}, // the machine's libraries; the folder
        {"settings-closed"}, {"home-recordings", 25}, // likewise home; ages; the name of the recording
    };
    return all;
}

/// What the tour notes beside a picture, pixels of the window.
struct Notes
{
    struct Control
    {
        QString name;
        QRect rect;
        bool isEnabled = true;
    };

    QVector<QRect> changing;
    QVector<Control> controls;

    /// Percent of a window of that size.
    double Changing(const QSize& size) const
    {
        QRegion region;
        for (const QRect& rect : changing)
            region += rect & QRect(QPoint(), size);
        double pixels = 0.0;
        for (const QRect& rect : region)
            pixels += double(rect.width()) * rect.height();
        return 100.0 * pixels / (double(size.width()) * size.height());
    }
};

QRect RectOf(const QJsonValue& value)
{
    const QJsonArray numbers = value.toArray();
    return {numbers.at(0).toInt(), numbers.at(1).toInt(), numbers.at(2).toInt(), numbers.at(3).toInt()};
}

Notes ReadNotes(const QString& path)
{
    QFile file(path);
    Notes notes;
    if (!file.open(QIODevice::ReadOnly))
        return notes;
    const QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
    for (const QJsonValue& rect : object.value(S("changing")).toArray())
        notes.changing.append(RectOf(rect));
    for (const QJsonValue& control : object.value(S("controls")).toArray())
        notes.controls.append({control.toObject().value(S("name")).toString(),
            RectOf(control.toObject().value(S("rect"))), control.toObject().value(S("enabled")).toBool()});
    return notes;
}

QImage Half(const QImage& image, const QVector<QRect>& changing)
{
    QImage picture = image.convertToFormat(QImage::Format_RGB32);
    QPainter painter(&picture);
    for (const QRect& rect : changing)
        painter.fillRect(rect, Qt::black);
    painter.end();
    return picture.scaled(picture.size() / 2, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

/// How far the pictures are from one another, 0 to 255: the worst of all squares of 16 pixels by the mean
/// over each, which anything moved, missing or of another colour shows in, and the rounding of a sample does
/// not.
double WorstSquare(const QImage& a, const QImage& b, QPoint* where = nullptr)
{
    constexpr int side = 16;
    double worst = 0.0;
    for (int y = 0; y < a.height(); y += side) {
        for (int x = 0; x < a.width(); x += side) {
            const int right = std::min(x + side, a.width());
            const int bottom = std::min(y + side, a.height());
            double sum = 0.0;
            for (int py = y; py < bottom; ++py) {
                for (int px = x; px < right; ++px) {
                    const QRgb one = a.pixel(px, py);
                    const QRgb other = b.pixel(px, py);
                    sum += std::max({std::abs(qRed(one) - qRed(other)), std::abs(qGreen(one) - qGreen(other)),
                        std::abs(qBlue(one) - qBlue(other))});
                }
            }
            const double mean = sum / ((right - x) * (bottom - y));
            if (mean > worst && where)
                *where = QPoint(x, y);
            worst = std::max(worst, mean);
        }
    }
    return worst;
}

constexpr double mostDifference = 6.0; ///< of 255, mean over a square

QString Difference(const QImage& found, const QImage& golden)
{
    if (found.size() != golden.size())
        return S("%1 x %2 pixels, not %3 x %4")
            .arg(found.width())
            .arg(found.height())
            .arg(golden.width())
            .arg(golden.height());
    QPoint where;
    const double worst = WorstSquare(found, golden, &where);
    return worst <= mostDifference ? QString()
                                   : S("%1 of 255 at %2, %3").arg(worst).arg(where.x()).arg(where.y());
}

} // namespace

class tst_SurveyTour : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void comparison();
    void goesThrough();
    void pictures_data();
    void pictures();
    void allStationsAreGolden();
    void missingControls_data();
    void missingControls();
    void exports();
    void goesAgain();
    void badOptions_data();
    void badOptions();
    void damagedLine();

private:
    int Start(const QStringList& arguments, int milliseconds = tourMs);
    QString Picture(const QString& name) const;
    Notes NotesOf(const QString& name) const;

    QTemporaryDir m_folder;
    QString m_tour;
    QString m_out;
    QString m_errors;
};

int tst_SurveyTour::Start(const QStringList& arguments, int milliseconds)
{
    QProcess process;
    process.start(S(ZR_BIN_DIR "/ZrSurvey"), arguments);
    const bool ok = process.waitForFinished(milliseconds) && process.exitStatus() == QProcess::NormalExit;
    m_out = QString::fromUtf8(process.readAllStandardOutput());
    m_errors = QString::fromUtf8(process.readAllStandardError());
    return ok ? process.exitCode() : -1;
}

QString tst_SurveyTour::Picture(const QString& name) const
{
    const QDir dir(m_tour);
    const QStringList found = dir.entryList({S("[0-9][0-9]-%1.png").arg(name)}, QDir::Files);
    return found.size() == 1 ? dir.filePath(found.front()) : QString();
}

Notes tst_SurveyTour::NotesOf(const QString& name) const
{
    return ReadNotes(Picture(name).chopped(4) + S(".json"));
}

/// It tells a control that has moved by 8 pixels of the window, a text that is another one, and another
/// colour scheme, and is not disturbed by a rounded sample.
void tst_SurveyTour::comparison()
{
    const auto draw = [](int x, const QString& text, const QColor& back) {
        QImage image(640, 400, QImage::Format_RGB32);
        image.fill(back);
        QPainter painter(&image);
        painter.fillRect(x, 104, 144, 64, QColor(20, 75, 110));
        painter.setPen(QColor(235, 240, 245));
        QFont font(S("Liberation Sans"));
        font.setPixelSize(20);
        painter.setFont(font);
        painter.drawText(QRect(x, 104, 144, 64), Qt::AlignCenter, text);
        painter.end();
        return Half(image, {});
    };
    const QColor dusk(14, 22, 32);
    const QImage golden = draw(200, S("Apply"), dusk);
    QVERIFY(Difference(golden, golden).isEmpty());
    QImage rounded = golden;
    for (int y = 0; y < rounded.height(); ++y) {
        for (int x = 0; x < rounded.width(); ++x) {
            const QRgb was = rounded.pixel(x, y);
            if ((x + y) % 2 == 0)
                rounded.setPixel(
                    x, y, qRgb(std::min(qRed(was) + 4, 255), qGreen(was), std::max(qBlue(was) - 4, 0)));
        }
    }
    QVERIFY(Difference(rounded, golden).isEmpty());
    QVERIFY(!Difference(draw(208, S("Apply"), dusk), golden).isEmpty());
    QVERIFY(!Difference(draw(200, S("Cancel"), dusk), golden).isEmpty());
    QVERIFY(!Difference(draw(200, S("Apply"), QColor(30, 8, 8)), golden).isEmpty());
    QVERIFY(!Difference(draw(200, S("Apply"), dusk).scaled(300, 200), golden).isEmpty());
}

void tst_SurveyTour::goesThrough()
{
    QVERIFY(m_folder.isValid());
    m_tour = m_folder.filePath(S("tour äß"));
    const int code = Start({S("--tour"), m_tour});
    if (code != 0)
        qWarning().noquote() << m_out << m_errors.right(4000);
    QCOMPARE(code, 0);
    const QStringList lines = m_out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    const QStringList taken = QDir(m_tour).entryList({S("*.png")}, QDir::Files, QDir::Name);
    QCOMPARE(lines.size(), taken.size() + 1);
    QVERIFY(taken.size() >= 30);
    for (int i = 0; i < taken.size(); ++i) {
        QVERIFY2(lines[i].startsWith(S("ok   %1").arg(taken[i].section(QLatin1Char('-'), 0, 0))),
            qPrintable(lines[i]));
        QCOMPARE(QImage(QDir(m_tour).filePath(taken[i])).size(), QSize(1280, 800));
        QVERIFY(QFile::exists(QDir(m_tour).filePath(taken[i].chopped(4) + S(".json"))));
    }
    QVERIFY(lines.last().startsWith(S("ok")));
    QFile report(m_tour + S("/tour.txt"));
    QVERIFY(report.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(report.readAll()), m_out);
}

void tst_SurveyTour::pictures_data()
{
    QTest::addColumn<int>("row");
    for (int row = 0; row < goldens().size(); ++row)
        QTest::newRow(goldens()[row].name) << row;
}

void tst_SurveyTour::pictures()
{
    QFETCH(int, row);
    const Golden& golden = goldens()[row];
    const QString name = S(golden.name);
    const QString path = Picture(name);
    QVERIFY2(!path.isEmpty(), golden.name);
    const QImage whole(path);
    const Notes notes = NotesOf(name);
    // A picture of which nothing is compared would always be right.
    const double changing = notes.Changing(whole.size());
    QVERIFY2(changing <= golden.mostChanging, qPrintable(S("%1 % of it changes").arg(changing)));
    const QImage found = Half(whole, notes.changing);
    const QString kept = S(ZR_SOURCE_DIR "/tests/data/tour/%1.png").arg(name);
    if (qEnvironmentVariableIsSet("ZR_TOUR_UPDATE")) {
        QVERIFY(found.save(kept));
        QSKIP("written anew");
    }
    const QImage expected(kept);
    QVERIFY2(!expected.isNull(), qPrintable(kept));
    const QString difference = Difference(found, expected);
    if (!difference.isEmpty()) {
        const QDir folder(S(ZR_BIN_DIR "/golden"));
        folder.mkpath(S("."));
        found.save(folder.filePath(S("tour-%1.png").arg(name)));
    }
    QVERIFY2(difference.isEmpty(),
        qPrintable(S("%1; see %2/golden/tour-%3.png").arg(difference, S(ZR_BIN_DIR), name)));
}

void tst_SurveyTour::allStationsAreGolden()
{
    QStringList stations;
    for (const QString& picture : QDir(m_tour).entryList({S("*.png")}, QDir::Files, QDir::Name))
        stations.append(picture.mid(3).chopped(4));
    QStringList names;
    for (const Golden& golden : goldens())
        names.append(S(golden.name));
    QCOMPARE(names, stations);
}

void tst_SurveyTour::missingControls_data()
{
    pictures_data();
}

/// The comparison tells of each control of each picture that it is missing: what surrounds it is in its
/// place.
void tst_SurveyTour::missingControls()
{
    QFETCH(int, row);
    const QString name = S(goldens()[row].name);
    const QImage whole = QImage(Picture(name)).convertToFormat(QImage::Format_RGB32);
    QVERIFY(!whole.isNull());
    const Notes notes = NotesOf(name);
    const QImage all = Half(whole, notes.changing);
    QVERIFY(Difference(all, all).isEmpty());
    QRegion changing;
    for (const QRect& rect : notes.changing)
        changing += rect;
    int count = 0;
    for (const Notes::Control& control : notes.controls) {
        QVERIFY2(whole.rect().contains(control.rect), qPrintable(control.name));
        if (!control.isEnabled || changing.contains(control.rect.center()))
            continue;
        ++count;
        QImage without = whole;
        const QPoint beside(std::max(control.rect.left() - 2, 0), std::max(control.rect.top() - 2, 0));
        QPainter painter(&without);
        painter.fillRect(control.rect, whole.pixelColor(beside));
        painter.end();
        QVERIFY2(!Difference(Half(without, notes.changing), all).isEmpty(), qPrintable(control.name));
    }
    QVERIFY(count > 0);
}

void tst_SurveyTour::exports()
{
    const QDir dir(m_tour + S("/exports"));
    for (const char* name :
        {"survey.json", "survey.gpx", "survey.kml", "survey.geojson", "survey.xml", "survey.txt",
            "line-track.gpx", "line.kml", "line.geojson", "line.csv", "line-part.log", "line-records.csv",
            "line-events.csv", "line-targets.geojson", "line-waterfall.png", "line-mosaic.png",
            "line-mosaic.pgw", "recording-part.log", "recording.gpx", "recording.kml", "recording.geojson",
            "recording.csv", "recording-records.csv", "recording-events.csv", "recording-waterfall.png",
            "recording-mosaic.png", "recording-mosaic.pgw", "recording-mosaic.prj"})
        QVERIFY2(QFileInfo(dir.filePath(S(name))).size() > 50, name);
    // What was recorded lies with the tour, and nowhere else.
    QVERIFY(QDir(m_tour + S("/data/recordings")).entryList({S("*.log")}, QDir::Files).size() == 2);
    QVERIFY(QFile::exists(m_tour + S("/data/settings.json")));
}

/// The folder of an earlier tour is used again; what is not from a tour stays.
void tst_SurveyTour::goesAgain()
{
    const QString line = m_folder.filePath(S("short.xtf"));
    QFile file(line);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("no line at all");
    file.close();
    QVERIFY(QFile::exists(m_tour + S("/exports/survey.gpx")));
    const QString last = Picture(S("home-recordings"));
    QVERIFY(!last.isEmpty());
    // Of whoever keeps something of his own there.
    const QStringList own{
        S("holiday.png"), S("07-cat.png"), S("08-cat.json"), S("08-cat.png"), S("notes.txt")};
    for (const QString& name : own) {
        QFile mine(m_tour + QLatin1Char('/') + name);
        QVERIFY(mine.open(QIODevice::WriteOnly));
        mine.write(name.endsWith(S("json")) ? "{\"cat\": []}" : "mine");
    }
    QVERIFY(Start({S("--tour"), m_tour, S("--tour-line"), line}, 120000) == 2);
    QVERIFY(!QFile::exists(m_tour + S("/exports/survey.gpx")));
    QVERIFY(!QFile::exists(last));
    QVERIFY(!QFile::exists(last.chopped(4) + S(".json")));
    for (const QString& name : own)
        QVERIFY2(QFile::exists(m_tour + QLatin1Char('/') + name), qPrintable(name));
}

/// Options that a tour has no use for are not passed over in silence: nothing begins.
void tst_SurveyTour::badOptions_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("data") << QStringList{S("--data"), S("there")};
    QTest::newRow("page") << QStringList{S("--page"), S("Plan")};
    QTest::newRow("screenshot") << QStringList{S("--screenshot"), S("a.png")};
    QTest::newRow("file") << QStringList{S("dive.log")};
}

void tst_SurveyTour::badOptions()
{
    QFETCH(QStringList, arguments);
    QTemporaryDir dir;
    const QString folder = dir.filePath(S("tour"));
    QCOMPARE(Start(QStringList{S("--tour"), folder} + arguments, 60000), 1);
    QVERIFY2(
        m_errors.contains(arguments.front()) && m_errors.contains(S("with --tour")), qPrintable(m_errors));
    QVERIFY(!QFile::exists(folder));
}

/// A line that ends too early is told, with a picture of what there is.
void tst_SurveyTour::damagedLine()
{
    QTemporaryDir dir;
    const QString line = dir.filePath(S("damaged.xtf"));
    QFile whole(S(ZR_SOURCE_DIR "/data/sidescan-xtf/iver2-scotsman-pings0-299.xtf"));
    QVERIFY(whole.open(QIODevice::ReadOnly));
    QFile damaged(line);
    QVERIFY(damaged.open(QIODevice::WriteOnly));
    damaged.write(whole.read(1024 + 4480 * 100 + 77));
    damaged.close();
    const QString tour = dir.filePath(S("tour"));
    QCOMPARE(Start({S("--tour"), tour, S("--tour-line"), line}), 2);
    QVERIFY2(m_out.contains(S("pings: 300; found: 100")), qPrintable(m_out));
    QVERIFY2(m_out.contains(S("flaws of the file")), qPrintable(m_out));
    QVERIFY(m_out.contains(S("NOT AS EXPECTED")));
    QCOMPARE(QDir(tour).entryList({S("03-line-failed.png")}).size(), 1);
}

int main(int argc, char* argv[])
{
    // The test library ends a function after five minutes, which is less than a tour may take.
    qputenv("QTEST_FUNCTION_TIMEOUT", QByteArray::number(tourMs + 100000));
    return gl::Main<QApplication, tst_SurveyTour>(argc, argv);
}

#include "tst_SurveyTour.moc"
