#include "RecordedLog.h"
#include "SmallFiles.h"
#include "ZrKit/recording/ZrRecorder.h"
#include "ZrKit/records/ZrFixRecord.h"
#include "ZrUtil/ZrLogEvt.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace {

ZrRecorder::Options In(const QTemporaryDir& dir)
{
    ZrRecorder::Options options;
    options.dir = dir.path();
    options.stopBelow = 0;
    options.warnBelow = 0;
    return options;
}

/// On a volume that has \p freeBytes, whatever that is when it is asked; it must outlive the recorder.
ZrRecorder::Options On(const QTemporaryDir& dir, const qint64& freeBytes, qint64 stopBelow)
{
    ZrRecorder::Options options = In(dir);
    options.stopBelow = stopBelow;
    options.freeSpace = [&freeBytes] { return freeBytes; };
    return options;
}

} // namespace

class tst_ZrRecorder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void logsTextAndDecodedPosition();
    void damagedLinesAreLoggedAndCounted();
    void textIsKeptByteForByte();
    void linesBeforeStartAndAfterStopAreIgnored();
    void refusesToStartOnAFullDisk();
    void refusesAFolderThatCannotBeMade();
    void stopsBeforeTheDiskIsFull();
    void asksTheDiskBetweenTicks();
    void warnsOnce();
    void tellsStatusEverySecond();
    void prefixNamesTheLog();
    void recordsKeepTheirTime();
    void recordsCountForTheDisk();
    void whyItEnded();
    void diskThatTakesNoMore();
};

void tst_ZrRecorder::logsTextAndDecodedPosition()
{
    const QTemporaryDir dir;
    ZrRecorder::Options options = In(dir);
    options.source = 7;
    ZrRecorder recorder(options, nullptr);
    QString error;
    QVERIFY2(recorder.Start(&error), qPrintable(error));
    const double before = QDateTime::currentMSecsSinceEpoch() / 1000.0;
    recorder.AddLine(fixLine);
    const ZrRecorder::Status status = recorder.CurrentStatus();
    recorder.Stop();

    const std::vector<Item> items = ReadLog(status.file);
    QCOMPARE(items.size(), std::size_t(2));
    QCOMPARE(items[0].inf.type, u16(2));
    QCOMPARE(items[0].inf.source, u16(7));
    QCOMPARE(items[0].payload, fixLine + QByteArray(1, '\0'));
    QVERIFY(items[0].inf.time >= before && items[0].inf.time <= before + 60.0);
    QCOMPARE(items[1].inf.type, u16(krtFix));
    QCOMPARE(items[1].inf.source, u16(7));
    ZrFixRecord fix;
    QVERIFY(ZrFixRecord::Decode(zr::bytes_of(items[1].payload), fix));
    // 48 degrees 28.734 minutes north, 68 degrees 30.882 minutes west
    QVERIFY(std::fabs(fix.latitude - 48.4789) < 1e-9);
    QVERIFY(std::fabs(fix.longitude + 68.5147) < 1e-9);
    QCOMPARE(status.items, u64(2));
    QCOMPARE(status.lines, u64(1));
    QCOMPARE(status.fixes, u64(1));
    QCOMPARE(status.damagedLines, u64(0));
    QCOMPARE(status.bytes, u64(48 + 40 + fixLine.size() + 1 + 40 + ZrFixRecord::Size));
    QCOMPARE(u64(QFileInfo(status.file).size()), status.bytes);
}

void tst_ZrRecorder::damagedLinesAreLoggedAndCounted()
{
    const QTemporaryDir dir;
    ZrRecorder recorder(In(dir), nullptr);
    QString error;
    QVERIFY(recorder.Start(&error));
    QByteArray wrong = fixLine;
    wrong[10] = '9';
    recorder.AddLine(wrong);
    recorder.AddLine("no sentence at all");
    recorder.AddLine("");
    recorder.Stop();
    const ZrRecorder::Status status = recorder.CurrentStatus();
    QCOMPARE(status.damagedLines, u64(3));
    QCOMPARE(status.fixes, u64(0));
    const std::vector<Item> items = ReadLog(status.file);
    QCOMPARE(items.size(), std::size_t(3));
    QCOMPARE(items[0].payload, wrong + QByteArray(1, '\0'));
    QCOMPARE(items[2].payload, QByteArray(1, '\0'));
}

void tst_ZrRecorder::textIsKeptByteForByte()
{
    const QTemporaryDir dir;
    ZrRecorder recorder(In(dir), nullptr);
    QString error;
    QVERIFY(recorder.Start(&error));
    QByteArray all;
    for (int c = 1; c < 256; ++c)
        all += static_cast<char>(c);
    // The buffer behind the view has no zero byte at its end.
    recorder.AddLine(QByteArray::fromRawData(all.constData(), 100));
    recorder.AddLine(all);
    recorder.Stop();
    const std::vector<Item> items = ReadLog(recorder.CurrentStatus().file);
    QCOMPARE(items.size(), std::size_t(2));
    QCOMPARE(items[0].payload, all.left(100) + QByteArray(1, '\0'));
    QCOMPARE(items[1].payload, all + QByteArray(1, '\0'));
}

void tst_ZrRecorder::linesBeforeStartAndAfterStopAreIgnored()
{
    const QTemporaryDir dir;
    ZrRecorder recorder(In(dir), nullptr);
    recorder.AddLine(fixLine);
    QCOMPARE(recorder.CurrentStatus().lines, u64(0));
    QString error;
    QVERIFY(recorder.Start(&error));
    QVERIFY(recorder.IsRecording());
    recorder.Stop();
    recorder.Stop();
    QVERIFY(!recorder.IsRecording());
    recorder.AddLine(fixLine);
    QCOMPARE(ReadLog(recorder.CurrentStatus().file).size(), std::size_t(0));
    QCOMPARE(QFileInfo(recorder.CurrentStatus().file).size(), qint64(48));
}

void tst_ZrRecorder::refusesToStartOnAFullDisk()
{
    const QTemporaryDir dir;
    ZrRecorder::Options options = In(dir);
    options.stopBelow = 2048;
    options.freeSpace = [] { return qint64(2047); };
    ZrRecorder recorder(options, nullptr);
    QString error;
    QVERIFY(!recorder.Start(&error));
    QCOMPARE(
        error, QStringLiteral("Only 2.05 kB free in %1; recording needs at least 2.05 kB").arg(dir.path()));
    QVERIFY(QDir(dir.path()).isEmpty());
    // A limit is told as it was set.
    options.stopBelow = 500000000;
    options.freeSpace = [] { return qint64(66400000); };
    ZrRecorder other(options, nullptr);
    QVERIFY(!other.Start(&error));
    QCOMPARE(
        error, QStringLiteral("Only 66.4 MB free in %1; recording needs at least 500 MB").arg(dir.path()));
}

void tst_ZrRecorder::refusesAFolderThatCannotBeMade()
{
    const QTemporaryDir dir;
    QFile blocker(dir.filePath(QStringLiteral("file")));
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    ZrRecorder::Options options = In(dir);
    options.dir = blocker.fileName() + QStringLiteral("/below");
    options.freeSpace = [] { return qint64(-1); };
    ZrRecorder recorder(options, nullptr);
    QString error;
    QVERIFY(!recorder.Start(&error));
    QVERIFY2(error.startsWith(QStringLiteral("Cannot create a log: ")), qPrintable(error));
    QVERIFY(!recorder.IsRecording());
}

void tst_ZrRecorder::stopsBeforeTheDiskIsFull()
{
    const QTemporaryDir dir;
    qint64 freeBytes = 10000;
    ZrRecorder recorder(On(dir, freeBytes, 5000), nullptr);
    QSignalSpy failed(&recorder, &ZrRecorder::Failed);
    QString error;
    QVERIFY(recorder.Start(&error));
    recorder.AddLine("before");
    freeBytes = 4999;
    QTRY_COMPARE(failed.size(), 1);
    QVERIFY(!recorder.IsRecording());
    QCOMPARE(failed.first().at(0).toString(),
        QStringLiteral("Recording stopped before the disk is full: 5.00 kB free in %1").arg(dir.path()));
    recorder.AddLine("after");
    QCOMPARE(ReadLog(recorder.CurrentStatus().file).size(), std::size_t(1));
}

void tst_ZrRecorder::asksTheDiskBetweenTicks()
{
    const QTemporaryDir dir;
    bool asked = false;
    ZrRecorder::Options options = In(dir);
    options.stopBelow = 1;
    options.freeSpace = [&asked] { return asked ? qint64(0) : qint64(1000000); };
    ZrRecorder recorder(options, nullptr);
    QSignalSpy failed(&recorder, &ZrRecorder::Failed);
    QString error;
    QVERIFY(recorder.Start(&error));
    asked = true;
    // No event loop runs here, so only the bytes written can make the recorder ask.
    const QByteArray line(4000, 'x');
    for (int i = 0; i < 5000 && recorder.IsRecording(); ++i)
        recorder.AddLine(line);
    QVERIFY(!recorder.IsRecording());
    QCOMPARE(failed.size(), 1);
    QVERIFY(recorder.CurrentStatus().bytes < u64(9) * 1024 * 1024);
}

void tst_ZrRecorder::warnsOnce()
{
    const QTemporaryDir dir;
    ZrRecorder::Options options = In(dir);
    options.warnBelow = 2000;
    options.freeSpace = [] { return qint64(1500); };
    ZrRecorder recorder(options, nullptr);
    QSignalSpy warning(&recorder, &ZrRecorder::Warning);
    QSignalSpy status(&recorder, &ZrRecorder::StatusChanged);
    QString error;
    QVERIFY(recorder.Start(&error));
    QTRY_VERIFY_WITH_TIMEOUT(status.size() >= 2, 10000);
    QCOMPARE(warning.size(), 1);
    QCOMPARE(warning.first().at(0).toString(),
        QStringLiteral("The disk is getting full: 1.50 kB free in %1").arg(dir.path()));
    QVERIFY(recorder.IsRecording());
}

void tst_ZrRecorder::tellsStatusEverySecond()
{
    const QTemporaryDir dir;
    ZrRecorder::Options options = In(dir);
    options.freeSpace = [] { return qint64(1000000); };
    ZrRecorder recorder(options, nullptr);
    QSignalSpy changed(&recorder, &ZrRecorder::StatusChanged);
    QString error;
    QVERIFY(recorder.Start(&error));
    for (int i = 0; i < 100; ++i)
        recorder.AddLine(fixLine);
    QTRY_VERIFY_WITH_TIMEOUT(changed.size() >= 1, 10000);
    const ZrRecorder::Status status = recorder.CurrentStatus();
    QVERIFY(status.bytesPerSecond > 0.0);
    QVERIFY(status.itemsPerSecond > 0.0);
    QCOMPARE(status.items, u64(200));
    QCOMPARE(status.freeBytes, qint64(1000000));
    QVERIFY(std::fabs(status.secondsLeft - 1000000.0 / status.bytesPerSecond) < 1e-6);
}

void tst_ZrRecorder::prefixNamesTheLog()
{
    const QTemporaryDir dir;
    ZrRecorder::Options options = In(dir);
    options.prefix = QStringLiteral("dive");
    ZrRecorder recorder(options, nullptr);
    QString error;
    QVERIFY(recorder.Start(&error));
    const QString name = QFileInfo(recorder.CurrentStatus().file).fileName();
    QVERIFY2(QRegularExpression(QStringLiteral("^dive_\\d{8}_\\d{6}\\.log$")).match(name).hasMatch(),
        qPrintable(name));
}

void tst_ZrRecorder::recordsKeepTheirTime()
{
    const QTemporaryDir dir;
    ZrRecorder::Options options = In(dir);
    options.source = 9;
    ZrRecorder recorder(options, nullptr);
    recorder.AddRecord(CRecType(0, 16), 1, 5.0, "before");
    QString error;
    QVERIFY(recorder.Start(&error));
    recorder.AddRecord(CRecType(1, 17), 3, 1000.5, QByteArray("\0ping\0", 6));
    recorder.AddLine(fixLine);
    recorder.AddRecord(CRecType(0, 18), ZrFixRecord::Format, 1001.5, ZrFixRecord().Encode());
    recorder.AddRecord(CRecType(0, 200), 0, 999.0, QByteArray());
    const ZrRecorder::Status status = recorder.CurrentStatus();
    recorder.Stop();
    recorder.AddRecord(CRecType(0, 16), 1, 5.0, "after");

    const std::vector<Item> items = ReadLog(status.file);
    QCOMPARE(items.size(), std::size_t(5));
    QCOMPARE(items[0].inf.type, u16(17));
    QCOMPARE(items[0].inf.sub, u16(1));
    QCOMPARE(items[0].inf.format, u16(3));
    QCOMPARE(items[0].inf.source, u16(9));
    QCOMPARE(items[0].inf.time, 1000.5);
    QCOMPARE(items[0].payload, QByteArray("\0ping\0", 6));
    QCOMPARE(items[1].payload, fixLine + QByteArray(1, '\0'));
    QCOMPARE(items[3].inf.time, 1001.5);
    QCOMPARE(items[4].inf.time, 999.0);
    QCOMPARE(items[4].payload, QByteArray());
    QCOMPARE(status.items, u64(5));
    QCOMPARE(status.fixes, u64(2));
    QCOMPARE(status.bytes, u64(QFileInfo(status.file).size()));
}

void tst_ZrRecorder::recordsCountForTheDisk()
{
    const QTemporaryDir dir;
    qint64 freeBytes = 1000000;
    ZrRecorder recorder(On(dir, freeBytes, 1000), nullptr);
    QSignalSpy failed(&recorder, &ZrRecorder::Failed);
    QString error;
    QVERIFY(recorder.Start(&error));
    freeBytes = 10;
    recorder.AddRecord(CRecType(0, 17), 1, 1.0, QByteArray(9 * 1024 * 1024, 'x'));
    QCOMPARE(failed.size(), 1);
    QVERIFY(!recorder.IsRecording());
    QCOMPARE(ReadLog(recorder.CurrentStatus().file).size(), std::size_t(1));
}

void tst_ZrRecorder::whyItEnded()
{
    const QTemporaryDir dir;
    qint64 freeBytes = 10000;
    ZrRecorder::Options options = On(dir, freeBytes, 5000);
    ZrRecorder recorder(options, nullptr);
    QCOMPARE(recorder.Failure(), ZrRecorder::failureNone);
    QVERIFY(!recorder.AddEvent(ZrLogEvt(1.0, esUser, QStringLiteral("before"))));
    QString error;
    QVERIFY(recorder.Start(&error));
    QVERIFY(recorder.AddEvent(ZrLogEvt(2.0, esUser, QStringLiteral("there"))));
    // Of the last one is written, whatever is asked for then.
    freeBytes = 4999;
    QTRY_VERIFY(!recorder.IsRecording());
    QCOMPARE(recorder.Failure(), ZrRecorder::failureSpace);
    QVERIFY(!recorder.AddEvent(ZrLogEvt(3.0, esUser, QStringLiteral("after"))));
    QCOMPARE(ReadLog(recorder.CurrentStatus().file).size(), std::size_t(1));
    QVERIFY(!recorder.Start(&error));
    QCOMPARE(recorder.Failure(), ZrRecorder::failureSpace);
    freeBytes = 10000;
    QVERIFY(recorder.Start(&error));
    QCOMPARE(recorder.Failure(), ZrRecorder::failureNone);
    recorder.Stop();
    QCOMPARE(recorder.Failure(), ZrRecorder::failureNone);

    options.dir = QStringLiteral("/proc/none");
    ZrRecorder nowhere(options, nullptr);
    QVERIFY(!nowhere.Start(&error));
    QCOMPARE(nowhere.Failure(), ZrRecorder::failureCreate);
}

/// As a disk that fails: no file of this process may become larger.
void tst_ZrRecorder::diskThatTakesNoMore()
{
    const QTemporaryDir dir;
    ZrRecorder::Options options = In(dir);
    options.logsReason = true;
    ZrRecorder recorder(options, nullptr);
    QSignalSpy failed(&recorder, &ZrRecorder::Failed);
    QString error;
    QVERIFY(recorder.Start(&error));
    QVERIFY(recorder.AddEvent(ZrLogEvt(1.0, esUser, QStringLiteral("there"))));
    const QString file = recorder.CurrentStatus().file;
    bool isTaken = true;
    {
        const SmallFiles limit(QFileInfo(file).size() + 20); // within the next item
        isTaken = recorder.AddEvent(ZrLogEvt(2.0, esUser, QStringLiteral("lost")));
    }
    QVERIFY(!isTaken);
    QVERIFY(!recorder.IsRecording());
    QCOMPARE(recorder.Failure(), ZrRecorder::failureWrite);
    QCOMPARE(failed.size(), 1);
    QVERIFY(failed[0][0].toString().contains(file));
    QCOMPARE(ReadLog(file).size(), std::size_t(1));
}

QTEST_GUILESS_MAIN(tst_ZrRecorder)
#include "tst_ZrRecorder.moc"
