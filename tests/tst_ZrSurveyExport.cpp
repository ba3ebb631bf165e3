// Exports of a recording: every kind, what each refuses, full disks, cancels.

#include "SmallFiles.h"
#include "SurveyExportLine.h"
#include "ZrKit/review/ZrDatasetReader.h"
#include "ZrKit/review/ZrEventTable.h"
#include "ZrKit/review/ZrExportRange.h"
#include "ZrKit/sonar/ZrBottomFile.h"
#include "ZrKit/sonar/ZrMosaicFile.h"
#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrKit/survey/ZrTargetFile.h"

#include <QImage>
#include <QtTest>

#include <cmath>
#include <future>
#include <limits>
#include <thread>

using sonar_test::Log;
using sonar_test::SonarLine;
using survey_export::Percents;
using survey_export::S;
using survey_export::startTime;

namespace {

const double unknown = std::numeric_limits<double>::quiet_NaN();

} // namespace

class tst_ZrSurveyExport : public QObject, private survey_export::LineFolder
{
    Q_OBJECT

private Q_SLOTS:

    void initTestCase() { MakeOriginal(); }

    void init() { Begin(); }

    void namesOfKinds();
    void kinds_data();
    void kinds();
    void endsInEitherOrder();
    void refused_data();
    void refused();
    void ownFiles_data();
    void ownFiles();
    void ownFilesBesideIt_data();
    void ownFilesBesideIt();
    void withoutSonar();
    void unknownSuffix();
    void cannotBeWritten_data();
    void cannotBeWritten();
    void diskIsFull_data();
    void diskIsFull();
    void stoppedAtOnce_data();
    void stoppedAtOnce();
    void stoppedHalfWay_data();
    void stoppedHalfWay();
    void stoppedFromAnotherThread_data();
    void stoppedFromAnotherThread();

private:
    /// A recording whose exports are told in many steps.
    std::shared_ptr<ZrSurveyRecording> Longer() const
    {
        const QString log = File(S("longer.log"));
        SonarLine line;
        line.pings = 3000;
        line.samples = 60;
        return WriteLine(log, line) ? Opened(log) : nullptr;
    }

    /// Those of them that tell their progress.
    static void AddLongKinds()
    {
        QTest::addColumn<int>("kind");
        for (const int kind : {ZrSurveyExport::segment, ZrSurveyExport::track, ZrSurveyExport::records,
                 ZrSurveyExport::waterfall, ZrSurveyExport::mosaic})
            QTest::newRow(qPrintable(ZrSurveyExport::Name(kind))) << kind;
    }

    /// All kinds with the suffix of each.
    static void AddKinds()
    {
        QTest::addColumn<int>("kind");
        for (int kind = 0; kind < ZrSurveyExport::kindCount; ++kind)
            QTest::newRow(qPrintable(ZrSurveyExport::Name(kind))) << kind;
    }
};

void tst_ZrSurveyExport::namesOfKinds()
{
    QStringList names;
    for (int kind = 0; kind < ZrSurveyExport::kindCount; ++kind) {
        names << ZrSurveyExport::Name(kind);
        QVERIFY(!ZrSurveyExport::Suffixes(kind).isEmpty());
    }
    QCOMPARE(names.join(QLatin1Char(' ')), S("part track records events targets waterfall mosaic"));
    QCOMPARE(ZrSurveyExport::Suffixes(ZrSurveyExport::track),
        (QStringList{S("gpx"), S("kml"), S("geojson"), S("csv")}));
    for (const int kind : {-1, static_cast<int>(ZrSurveyExport::kindCount), 1000}) {
        QCOMPARE(ZrSurveyExport::Name(kind), QString());
        QVERIFY(ZrSurveyExport::Suffixes(kind).isEmpty());
    }
}

void tst_ZrSurveyExport::kinds_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("suffix");
    for (int kind = 0; kind < ZrSurveyExport::kindCount; ++kind) {
        for (const QString& suffix : ZrSurveyExport::Suffixes(kind)) {
            if (suffix != S("tif") || ZrMosaicFile::CanWriteGeoTiff())
                QTest::newRow(qPrintable(ZrSurveyExport::Name(kind) + QLatin1Char(' ') + suffix))
                    << kind << suffix;
        }
    }
}

/// The same bytes as the classes write that the records, the targets and the pictures are handed to.
void tst_ZrSurveyExport::kinds()
{
    QFETCH(int, kind);
    QFETCH(QString, suffix);
    const QString out = File(S("Außen 沈.") + suffix);
    QVERIFY(Write(out, "old"));
    ZrSurveyExport part(m_recording, m_begin + 10.0, m_begin + 20.0);
    Percents percents;
    QCOMPARE(part.Run(kind, out, &percents), ZrSurveyExport::Done);
    QCOMPARE(part.Error(), QString());
    QCOMPARE(part.Remark(), QString());
    QVERIFY(std::is_sorted(percents.told.begin(), percents.told.end()));
    QVERIFY(kind == ZrSurveyExport::targets || percents.GetProgress() == 100);
    QVERIFY(Content(out) != QByteArray("old"));

    ZrSurveyDataset whole;
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(m_log, whole), ZrDatasetReader::FromIndex);
    ZrExportRange range(whole, 100, 201); // ten records in a second
    const QString expected = File(S("expected.") + suffix);
    switch (kind) {
    case ZrSurveyExport::segment:
        QCOMPARE(range.WriteLog(expected), ZrExportRange::Done);
        QVERIFY(Content(expected + S(".evt")) == Content(out + S(".evt")));
        break;
    case ZrSurveyExport::track:
        QCOMPARE(range.WriteTrack(expected), ZrExportRange::Done);
        break;
    case ZrSurveyExport::records:
        QCOMPARE(range.WriteRecords(expected), ZrExportRange::Done);
        break;
    case ZrSurveyExport::events:
        QCOMPARE(range.WriteEvents(expected), ZrExportRange::Done);
        break;
    case ZrSurveyExport::targets: {
        ZrTargetFile file;
        QVERIFY(file.Write({m_recording->Targets()[1]}, expected));
        QCOMPARE(part.Items(), u64(1));
        break;
    }
    default: {
        QCOMPARE(part.Items(), u64(101));
        if (suffix == S("tif")) { // which Qt need not read
            QVERIFY(Content(out).startsWith("II*"));
            return;
        }
        const QImage image(out);
        QVERIFY(image.width() > 50 && image.height() > 50);
        if (kind == ZrSurveyExport::mosaic && suffix == S("png"))
            QVERIFY(QFile::exists(ZrMosaicFile::WorldFileName(out)));
        return;
    }
    }
    if (kind < ZrSurveyExport::targets)
        QCOMPARE(part.Items(), range.Items());
    QVERIFY(!Content(expected).isEmpty());
    QVERIFY(Content(out) == Content(expected));
}

void tst_ZrSurveyExport::endsInEitherOrder()
{
    const QString a = File(S("a.csv"));
    const QString b = File(S("b.csv"));
    QCOMPARE(ZrSurveyExport(m_recording, m_begin + 3.0, m_begin + 7.0).Run(ZrSurveyExport::records, a),
        ZrSurveyExport::Done);
    QCOMPARE(ZrSurveyExport(m_recording, m_begin + 7.0, m_begin + 3.0).Run(ZrSurveyExport::records, b),
        ZrSurveyExport::Done);
    QCOMPARE(Content(a).count('\n'), 42);
    QVERIFY(Content(a) == Content(b));
}

void tst_ZrSurveyExport::refused_data()
{
    AddKinds();
}

void tst_ZrSurveyExport::refused()
{
    QFETCH(int, kind);
    const QString out = OutOf(kind);
    const auto why = [&](double from, double to, const QString& path) {
        ZrSurveyExport part(m_recording, from, to);
        return part.Run(kind, path) == ZrSurveyExport::Failed ? part.Error() : S("not refused");
    };
    const QString nothing = S("There is nothing to export");
    QCOMPARE(why(unknown, m_begin, out), nothing);
    QCOMPARE(why(m_begin, unknown, out), nothing);
    QCOMPARE(why(m_begin - 20.0, m_begin - 10.0, out), nothing);
    QCOMPARE(why(m_begin + 31.0, m_begin + 40.0, out), nothing);
    QCOMPARE(why(m_begin, m_begin + 9.0, QString()), S("The export needs a name for its file"));
    QCOMPARE(why(m_begin, m_begin + 9.0, out + QChar(0)), S("The export needs a name for its file"));
    QVERIFY(!QFile::exists(out));
    ZrSurveyExport part(m_recording, m_begin, m_begin + 9.0);
    for (const int none : {-1, static_cast<int>(ZrSurveyExport::kindCount), 1 << 30}) {
        QCOMPARE(part.Run(none, out), ZrSurveyExport::Failed);
        QCOMPARE(part.Error(), S("There is no export of this kind"));
    }
    // What was refused does not stay.
    QCOMPARE(part.Run(kind, out), ZrSurveyExport::Done);
    QCOMPARE(part.Error(), QString());
}

void tst_ZrSurveyExport::ownFiles_data()
{
    AddKinds();
}

/// By another name too.
void tst_ZrSurveyExport::ownFiles()
{
    QFETCH(int, kind);
    QVERIFY(ZrBottomFile(m_log).Save(m_recording->Pings(), m_recording->Bottom()));
    QVERIFY(Write(m_log + S(".xml"), "plan"));
    ZrSurveyExport part(m_recording, m_begin, m_begin + 9.0);
    for (const char* suffix : {"", ".evt", ".zri", ".zri.json", ".xml", ".bottom.json"}) {
        const QString own = m_log + S(suffix);
        const QByteArray before = Content(own);
        QVERIFY2(!before.isEmpty(), suffix);
        const QString link = OutOf(kind);
        QVERIFY(QFile::link(own, link));
        for (const QString& out : {own, link}) {
            QCOMPARE(part.Run(kind, out), ZrSurveyExport::Failed);
            QCOMPARE(part.Error(), out + S(" belongs to the recording itself; choose another name"));
        }
        QVERIFY(QFile::remove(link));
        QCOMPARE(Content(own), before);
    }
}

void tst_ZrSurveyExport::ownFilesBesideIt_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("beside");
    QTest::newRow("world file") << int(ZrSurveyExport::mosaic) << S("out.png") << S("out.pgw");
    QTest::newRow("world file of a JPEG") << int(ZrSurveyExport::mosaic) << S("out.jpg") << S("out.jgw");
    QTest::newRow("projection") << int(ZrSurveyExport::mosaic) << S("out.png") << S("out.prj");
    QTest::newRow("events") << int(ZrSurveyExport::segment) << S("out.log") << S("out.log.evt");
}

/// Links to them where something is written beside the file that was asked for.
void tst_ZrSurveyExport::ownFilesBesideIt()
{
    QFETCH(int, kind);
    QFETCH(QString, name);
    QFETCH(QString, beside);
    QVERIFY(ZrBottomFile(m_log).Save(m_recording->Pings(), m_recording->Bottom()));
    ZrSurveyExport part(m_recording, m_begin, m_begin + 9.0);
    const QString link = File(beside);
    for (const char* suffix : {"", ".evt", ".zri", ".zri.json", ".bottom.json"}) {
        const QString own = m_log + S(suffix);
        const QByteArray before = Content(own);
        QVERIFY2(!before.isEmpty(), suffix);
        QVERIFY(QFile::link(own, link));
        QCOMPARE(part.Run(kind, File(name)), ZrSurveyExport::Failed);
        QCOMPARE(part.Error(), link + S(" belongs to the recording itself; choose another name"));
        QVERIFY(QFile::remove(link));
        QVERIFY2(Content(own) == before, suffix);
        QVERIFY(!QFile::exists(File(name)));
    }
    QCOMPARE(part.Run(kind, File(name)), ZrSurveyExport::Done);
    QVERIFY(QFile::exists(link));
}

void tst_ZrSurveyExport::withoutSonar()
{
    const QString log = File(S("nav.log"));
    Log nav(log);
    for (int i = 0; i < 50; ++i)
        nav.AddNav(startTime + i, SonarLine().NavOf(i));
    QVERIFY(nav.Commit());
    const auto recording = Opened(log);
    QVERIFY(recording);
    ZrSurveyExport part(recording, recording->Times()->Begin(), recording->Times()->End());
    for (int kind = 0; kind < ZrSurveyExport::kindCount; ++kind) {
        const bool isDone = part.Run(kind, OutOf(kind)) == ZrSurveyExport::Done;
        QCOMPARE(isDone, kind < ZrSurveyExport::targets);
        QCOMPARE(part.Error(), isDone ? QString() : S("The recording holds no side-scan sonar"));
    }
}

void tst_ZrSurveyExport::unknownSuffix()
{
    ZrSurveyExport part(m_recording, m_begin, m_begin + 9.0);
    for (const int kind : {ZrSurveyExport::targets, ZrSurveyExport::waterfall, ZrSurveyExport::mosaic}) {
        for (const char* name : {"picture.xyz", "picture"}) {
            QCOMPARE(part.Run(kind, File(S(name))), ZrSurveyExport::Failed);
            QVERIFY2(!part.Error().isEmpty(), name);
            QVERIFY(!QFile::exists(File(S(name))));
        }
    }
}

void tst_ZrSurveyExport::cannotBeWritten_data()
{
    AddKinds();
}

void tst_ZrSurveyExport::cannotBeWritten()
{
    QFETCH(int, kind);
    const QString suffix = QLatin1Char('.') + ZrSurveyExport::Suffixes(kind).first();
    const QString folder = File(S("folder") + suffix);
    QVERIFY(QDir().mkpath(folder + S("/inside")));
    const QString full = File(S("full") + suffix);
    QVERIFY(QFile::link(S("/dev/full"), full));
    ZrSurveyExport part(m_recording, m_begin, m_begin + 9.0);
    for (const QString& out : {folder, full, File(S("none/out") + suffix), S("/proc/out") + suffix}) {
        QCOMPARE(part.Run(kind, out), ZrSurveyExport::Failed);
        // The picture, or the file that tells its place.
        const QFileInfo info(out);
        QVERIFY2(part.Error().contains(info.path() + QLatin1Char('/') + info.completeBaseName()),
            qPrintable(part.Error()));
        QCOMPARE(part.Items(), u64(0));
    }
    QVERIFY(QFileInfo(folder + S("/inside")).isDir());
    QVERIFY(!QFileInfo(S("/dev/full")).isFile());
}

void tst_ZrSurveyExport::diskIsFull_data()
{
    AddKinds();
}

void tst_ZrSurveyExport::diskIsFull()
{
    QFETCH(int, kind);
    const QString out = OutOf(kind);
    QVERIFY(Write(out, "old"));
    const QStringList before
        = QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System);
    ZrSurveyExport part(m_recording, m_begin, m_begin + 29.0);
    {
        const SmallFiles full(60);
        QCOMPARE(part.Run(kind, out), ZrSurveyExport::Failed);
    }
    QVERIFY2(part.Error().contains(QFileInfo(out).completeBaseName()), qPrintable(part.Error()));
    QCOMPARE(Content(out), QByteArray("old"));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System), before);
    QCOMPARE(part.Run(kind, out), ZrSurveyExport::Done);
}

void tst_ZrSurveyExport::stoppedAtOnce_data()
{
    AddKinds();
}

void tst_ZrSurveyExport::stoppedAtOnce()
{
    QFETCH(int, kind);
    const QString out = OutOf(kind);
    QVERIFY(Write(out, "old"));
    ZrSurveyExport part(m_recording, m_begin, m_begin + 29.0);
    part.Stop();
    part.Stop();
    QCOMPARE(part.Run(kind, out), ZrSurveyExport::Cancelled);
    QCOMPARE(part.Error(), QString());
    QCOMPARE(Content(out), QByteArray("old"));
}

void tst_ZrSurveyExport::stoppedHalfWay_data()
{
    AddLongKinds();
}

void tst_ZrSurveyExport::stoppedHalfWay()
{
    QFETCH(int, kind);
    const auto recording = Longer();
    QVERIFY(recording);
    const QString out = OutOf(kind);
    QVERIFY(Write(out, "old"));
    for (const bool isIndexed : {true, false}) {
        if (!isIndexed)
            QVERIFY(QFile::remove(recording->Path() + S(".zri")));
        ZrSurveyExport part(recording, recording->Times()->Begin(), recording->Times()->End());
        Percents percents;
        percents.then = [&](int percent) {
            if (percent >= 20)
                part.Stop();
        };
        QCOMPARE(part.Run(kind, out, &percents), ZrSurveyExport::Cancelled);
        QVERIFY2(percents.GetProgress() < 60, qPrintable(QString::number(percents.GetProgress())));
        QCOMPARE(part.Error(), QString());
        QCOMPARE(part.Items(), u64(0));
        QCOMPARE(Content(out), QByteArray("old"));
    }
}

void tst_ZrSurveyExport::stoppedFromAnotherThread_data()
{
    AddLongKinds();
}

/// While it runs: what it tells its progress to waits until the other thread has stopped it.
void tst_ZrSurveyExport::stoppedFromAnotherThread()
{
    QFETCH(int, kind);
    const auto recording = Longer();
    QVERIFY(recording);
    const QString out = OutOf(kind);
    QVERIFY(Write(out, "old"));
    ZrSurveyExport part(recording, recording->Times()->Begin(), recording->Times()->End());
    std::promise<void> isUnderWay;
    std::promise<void> isStopped;
    std::thread other([&] {
        isUnderWay.get_future().wait();
        part.Stop();
        isStopped.set_value();
    });
    int at = -1;
    Percents percents;
    percents.then = [&](int percent) {
        if (percent < 20 || at >= 0)
            return;
        at = percent;
        isUnderWay.set_value();
        isStopped.get_future().wait();
    };
    const ZrSurveyExport::eResult result = part.Run(kind, out, &percents);
    if (at < 0)
        isUnderWay.set_value();
    other.join();
    QVERIFY2(at >= 20 && at < 60, qPrintable(QString::number(at)));
    QCOMPARE(result, ZrSurveyExport::Cancelled);
    QVERIFY2(percents.GetProgress() < 60, qPrintable(QString::number(percents.GetProgress())));
    QCOMPARE(part.Error(), QString());
    QCOMPARE(Content(out), QByteArray("old"));
}

QTEST_MAIN(tst_ZrSurveyExport)
#include "tst_ZrSurveyExport.moc"
