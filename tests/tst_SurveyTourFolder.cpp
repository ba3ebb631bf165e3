// The folder of the tour of ZrSurvey: what it may take, and what stays as it was.

#include "GlTest.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

constexpr int startMs = 60000; ///< on a machine that is busy with much else

} // namespace

class tst_SurveyTourFolder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void badFolder_data();
    void badFolder();
    void endedBefore();
    void noLine();

private:
    int Start(const QStringList& arguments);

    QString m_errors;
};

/// \returns its exit code
int tst_SurveyTourFolder::Start(const QStringList& arguments)
{
    QProcess process;
    process.start(S(ZR_BIN_DIR "/ZrSurvey"), arguments);
    const bool ok = process.waitForFinished(startMs) && process.exitStatus() == QProcess::NormalExit;
    m_errors = QString::fromUtf8(process.readAllStandardError());
    return ok ? process.exitCode() : -1;
}

void tst_SurveyTourFolder::badFolder_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("said");
    QTest::newRow("a file") << S("file") << S("is no folder");
    QTest::newRow("below a file") << S("file/tour") << S("cannot be made");
    QTest::newRow("not writable") << S("/proc/tour") << S("cannot be made");
    QTest::newRow("of somebody else") << S("other") << S("not empty");
    QTest::newRow("with a report of something else") << S("report") << S("not empty");
    QTest::newRow("with an empty file for a report") << S("blank") << S("not empty");
    QTest::newRow("data elsewhere") << S("linked") << S("data is a link");
    QTest::newRow("exports elsewhere") << S("sent") << S("exports is a link");
    QTest::newRow("report elsewhere") << S("told") << S("tour.txt is a link");
}

void tst_SurveyTourFolder::badFolder()
{
    QFETCH(QString, folder);
    QFETCH(QString, said);
    QTemporaryDir dir;
    QFile file(dir.filePath(S("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(QDir(dir.path()).mkpath(S("other/data/kept")));
    const auto write = [&dir](const QString& name, const char* text) {
        QFile report(dir.filePath(name));
        return report.open(QIODevice::WriteOnly) && report.write(text) >= 0;
    };
    QVERIFY(QDir(dir.path()).mkpath(S("report/exports")));
    QVERIFY(write(S("report/tour.txt"), "Tuesday: down the river\n"));
    QVERIFY(write(S("report/exports/mine.txt"), "mine"));
    QVERIFY(QDir(dir.path()).mkpath(S("blank/exports")));
    QVERIFY(write(S("blank/tour.txt"), ""));
    QVERIFY(write(S("blank/exports/mine.txt"), "mine"));
    const QByteArray line("ok   01 home\n");
    const QByteArray notes(R"({"changing": [], "controls": []})");
    for (const QString& linked : {S("linked"), S("sent"), S("told")}) {
        QVERIFY(QDir(dir.path()).mkpath(linked));
        QVERIFY(write(linked + S("/01-home.json"), notes));
        QVERIFY(write(linked + S("/01-home.png"), "picture"));
    }
    QVERIFY(write(S("linked/tour.txt"), line));
    QVERIFY(QFile::link(dir.filePath(S("other/data")), dir.filePath(S("linked/data"))));
    QVERIFY(write(S("sent/tour.txt"), line));
    QVERIFY(QDir(dir.path()).mkpath(S("sent/data/kept")));
    QVERIFY(QFile::link(dir.filePath(S("other/data")), dir.filePath(S("sent/exports"))));
    QVERIFY(write(S("other/line.txt"), line));
    QVERIFY(QFile::link(dir.filePath(S("other/line.txt")), dir.filePath(S("told/tour.txt"))));
    const QString path = folder.startsWith(QLatin1Char('/')) ? folder : dir.filePath(folder);
    QCOMPARE(Start({S("--tour"), path}), 1);
    QVERIFY2(m_errors.contains(said), qPrintable(m_errors));
    QVERIFY(QDir(dir.filePath(S("other/data/kept"))).exists());
    for (const char* kept : {"report/exports/mine.txt", "blank/exports/mine.txt", "sent/data/kept",
             "linked/01-home.png", "sent/01-home.png", "told/01-home.png"})
        QVERIFY2(QFile::exists(dir.filePath(S(kept))), kept);
    for (const char* told : {"linked/tour.txt", "sent/tour.txt", "other/line.txt"}) {
        QFile report(dir.filePath(S(told)));
        QVERIFY2(report.open(QIODevice::ReadOnly) && report.readAll() == line, told);
    }
}

/// The next one has its folder.
void tst_SurveyTourFolder::endedBefore()
{
    QTemporaryDir dir;
    const QString tour = dir.filePath(S("tour"));
    QProcess process;
    process.start(S(ZR_BIN_DIR "/ZrSurvey"), {S("--tour"), tour});
    QTRY_VERIFY_WITH_TIMEOUT(QDir(tour + S("/exports")).exists(), startMs);
    process.kill();
    QVERIFY(process.waitForFinished());
    QVERIFY(QFileInfo(tour + S("/tour.txt")).size() > 0);
    QCOMPARE(Start({S("--tour"), tour, S("--tour-line"), dir.filePath(S("none.xtf"))}), 1);
    QVERIFY2(m_errors.contains(S("none.xtf cannot be read")), qPrintable(m_errors));
}

void tst_SurveyTourFolder::noLine()
{
    QTemporaryDir dir;
    QCOMPARE(Start({S("--tour"), dir.filePath(S("tour")), S("--tour-line"), dir.filePath(S("none.xtf"))}), 1);
    QVERIFY2(m_errors.contains(S("none.xtf cannot be read")), qPrintable(m_errors));
}

GL_TEST_MAIN(tst_SurveyTourFolder)
#include "tst_SurveyTourFolder.moc"
