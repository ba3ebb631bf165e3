// The map of a recording, run as a person runs it: its pictures, what it says of its frames, wrong options.
//
// The pictures are held against tests/golden/gl-map-*.png. After an intended change of the look, with the
// fonts of fonts-liberation installed:
//
//     ZR_GOLDEN_UPDATE=1 xvfb-run -a -s "-screen 0 1920x1080x24" build/dev/bin/tst_GlMap
//
// and look at every one of them before it is committed.

#include "GlTest.h"
#include "GoldenImage.h"
#include "SimPlan.h"
#include "ZrKit/sim/ZrSimLog.h"
#include "ZrKit/sim/ZrSimSurvey.h"
#include "ZrSurveyLog.h"

#include <QApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

namespace {

using survey::S;

/// A line of the grid in another column is more than this.
constexpr golden::Tolerance tolerance{24, 0.0005};

} // namespace

class tst_GlMap : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void pictures_data();
    void pictures();
    void statistics();
    void noStatistics();
    void samePictureEachTime();
    void help();
    void wrongOptions_data();
    void wrongOptions();
    void noTrack_data();
    void noTrack();
    void onePosition();
    void pictureCannotBeWritten();

private:
    int Start(const QStringList& arguments);

    QString Path(const char* name) const { return m_dir.filePath(S(name)); }

    QTemporaryDir m_dir;
    QString m_log;
    QString m_output;
    QString m_errors;
};

void tst_GlMap::initTestCase()
{
    m_log = Path("Fahrt äß.log");
    ZrWpts plan = MakePlan({{0, 0, 15}, {0, 120, 15}, {50, 120, 15}, {50, 0, 15}}, 2.0);
    ZrSimSettings settings = PlainSettings();
    settings.sonar.samples = 16;
    settings.sonar.rate = 1.0;
    ZrSimSurvey survey(plan, settings);
    ZrSimLog log;
    QCOMPARE(log.Write(survey, m_log, nullptr), ZrSimLog::Done);
}

int tst_GlMap::Start(const QStringList& arguments)
{
    QProcess process;
    process.setWorkingDirectory(m_dir.path());
    process.start(S(ZR_BIN_DIR "/gl_map"), arguments);
    const bool ok = process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit;
    m_output = QString::fromUtf8(process.readAllStandardOutput());
    m_errors = QString::fromUtf8(process.readAllStandardError());
    return ok ? process.exitCode() : -1;
}

void tst_GlMap::pictures_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("name");
    QTest::newRow("recording") << QStringList() << S("gl-map-recording.png");
    QTest::newRow("all, turned") << QStringList({S("--all"), S("--turn"), S("30")}) << S("gl-map-all.png");
}

void tst_GlMap::pictures()
{
    QFETCH(QStringList, options);
    QFETCH(QString, name);
    QFile::remove(Path("picture.png"));
    const QStringList arguments{m_log, S("--points"), S("20000"), S("--screenshot"), S("picture.png")};
    QCOMPARE(Start(arguments + options), 0);
    QVERIFY2(!m_errors.contains(S("error")) && !m_errors.contains(S("cannot")), qPrintable(m_errors));
    QCOMPARE(m_output, QString());
    const QImage image(Path("picture.png"));
    QCOMPARE(image.size(), QSize(1280, 800));
    // Nothing of the window shows through.
    bool isOpaque = true;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            isOpaque = isOpaque && qAlpha(image.pixel(x, y)) == 255;
    }
    QVERIFY(isOpaque);
    const QString error = golden::Compare(image, name, tolerance);
    QVERIFY2(error.isEmpty(), qPrintable(error));
}

void tst_GlMap::statistics()
{
    QCOMPARE(
        Start({m_log, S("--points"), S("20000"), S("--statistics"), S("--screenshot"), S("picture.png")}), 0);
    const QRegularExpression line(S("^(\\d+) frames?, mean (\\d+\\.\\d\\d) ms, longest (\\d+\\.\\d\\d) ms; "
                                    "(\\d+) vertices of (\\d+) positions\n$"));
    const QRegularExpressionMatch match = line.match(m_output);
    QVERIFY2(match.hasMatch(), qPrintable(m_output));
    QVERIFY(match.captured(1).toInt() >= 1);
    QVERIFY(match.captured(2).toDouble() > 0.0);
    QVERIFY(match.captured(3).toDouble() >= match.captured(2).toDouble());
    // What is beyond the view or within a pixel is not drawn.
    QVERIFY(match.captured(4).toInt() >= 2);
    QVERIFY(match.captured(4).toInt() < match.captured(5).toInt() / 4);
    QVERIFY(match.captured(5).toInt() > 20000);
}

void tst_GlMap::noStatistics()
{
    QCOMPARE(Start({m_log, S("--points"), S("1"), S("--screenshot"), S("picture.png")}), 0);
    QCOMPARE(m_output, QString());
}

void tst_GlMap::samePictureEachTime()
{
    const QStringList arguments{m_log, S("--points"), S("1000"), S("--all"), S("--screenshot")};
    QCOMPARE(Start(arguments + QStringList{S("first.png")}), 0);
    QCOMPARE(Start(arguments + QStringList{S("second.png")}), 0);
    QCOMPARE(QImage(Path("first.png")), QImage(Path("second.png")));
}

void tst_GlMap::help()
{
    QCOMPARE(Start({S("--help")}), 0);
    for (const char* text : {"--points <N>", "--statistics", "--screenshot <FILE>", "--all",
             "--turn <DEGREES>", "LOG", "The recording."})
        QVERIFY2(m_output.contains(S(text)), text);
}

void tst_GlMap::wrongOptions_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::newRow("unknown") << QStringList({m_log, S("--bogus")});
    QTest::newRow("no log") << QStringList();
    QTest::newRow("two logs") << QStringList({m_log, m_log});
    QTest::newRow("no positions") << QStringList({m_log, S("--points"), S("0")});
    QTest::newRow("too many positions") << QStringList({m_log, S("--points"), S("10000001")});
    QTest::newRow("negative") << QStringList({m_log, S("--points"), S("-5")});
    QTest::newRow("no number") << QStringList({m_log, S("--points"), S("many")});
    QTest::newRow("no angle") << QStringList({m_log, S("--turn"), S("left")});
    QTest::newRow("endless angle") << QStringList({m_log, S("--turn"), S("inf")});
    QTest::newRow("value missing") << QStringList({m_log, S("--screenshot")});
}

void tst_GlMap::wrongOptions()
{
    QFETCH(QStringList, options);
    QCOMPARE(Start(options), 1);
    QVERIFY(!m_errors.isEmpty());
    QCOMPARE(m_output, QString());
}

void tst_GlMap::noTrack_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("text");
    QVERIFY(WriteWhole(Path("empty.log"), QByteArray()));
    QVERIFY(WriteWhole(Path("garbage.log"), QByteArray(5000, '\x7f')));
    survey::Nav lost;
    QVERIFY(WriteWhole(Path("lost.log"), LogBytes().Add(survey::NavItem(survey::startTime, lost)).Bytes()));
    QTest::newRow("no positions") << Path("lost.log") << S("lost.log");
    QTest::newRow("empty") << Path("empty.log") << S("empty.log");
    QTest::newRow("garbage") << Path("garbage.log") << S("garbage.log");
    QTest::newRow("not there") << Path("none.log") << S("none.log");
    QTest::newRow("a folder") << m_dir.path() << m_dir.path();
}

void tst_GlMap::noTrack()
{
    QFETCH(QString, path);
    QFETCH(QString, text);
    QCOMPARE(Start({path, S("--screenshot"), S("none.png")}), 2);
    QVERIFY2(m_errors.contains(text), qPrintable(m_errors));
    QVERIFY(!QFile::exists(Path("none.png")));
}

/// A track that is a point has no size to fit.
void tst_GlMap::onePosition()
{
    QVERIFY(WriteWhole(Path("point.log"), LogBytes().Add(survey::NavItem(0)).Bytes()));
    QCOMPARE(Start({Path("point.log"), S("--points"), S("1"), S("--screenshot"), S("picture.png")}), 0);
    const QImage image(Path("picture.png"));
    QCOMPARE(image.size(), QSize(1280, 800));
    QVERIFY(image.pixelColor(640, 400 - 12) != image.pixelColor(300, 300)
        || image.pixelColor(640 + 9, 400) != image.pixelColor(300, 300));
}

void tst_GlMap::pictureCannotBeWritten()
{
    QCOMPARE(Start({m_log, S("--points"), S("1"), S("--screenshot"), S("none/picture.png")}), 3);
    QVERIFY2(m_errors.endsWith(S("none/picture.png cannot be written\n")), qPrintable(m_errors));
    QCOMPARE(m_errors.count(S("cannot be written")), 1);
    QCOMPARE(Start({m_log, S("--points"), S("1"), S("--screenshot"), m_dir.path()}), 3);
}

GL_TEST_MAIN(tst_GlMap)
#include "tst_GlMap.moc"
