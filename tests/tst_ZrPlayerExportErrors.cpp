// The exports of ZrPlayer where input or output refuse, where both are one file, and the census of types.

#include "ZrLogFixture.h"
#include "ZrUtil/ZrSameFile.h"

#include <QDir>
#include <QtTest/QtTest>

#include <unistd.h>

namespace {

enum eExport
{
    Segment,
    SegmentFiltered,
    SegmentWithVideo,
    FilteredLog,
    FilteredPayloads
};

const eExport allExports[] = {Segment, SegmentFiltered, SegmentWithVideo, FilteredLog, FilteredPayloads};

/// Exports everything, in one of the ways there are. The video form takes the first item as its lead.
bool Export(eExport way, const QString& in, const QString& out, IZrProgress* progress = nullptr)
{
    u8 all[100];
    std::memset(all, 1, sizeof all);
    switch (way) {
    case Segment:
        return ZrPlayer::ExportFileSegment(in, out, 48, 100000, progress);
    case SegmentFiltered:
        return ZrPlayer::ExportFileSegment(in, out, all, sizeof all, 48, 100000, progress);
    case SegmentWithVideo:
        return ZrPlayer::ExportFileSegmentWithVideo(in, out, 48, 100000, 48, progress);
    case FilteredLog:
        return ZrPlayer::ExportFilteredFile(in, out, all, sizeof all, true, progress);
    case FilteredPayloads:
        return ZrPlayer::ExportFilteredFile(in, out, all, sizeof all, false, progress);
    }
    return false;
}

void AddExportRows(bool withPayloads = true)
{
    QTest::addColumn<int>("way");
    QTest::newRow("segment") << int(Segment);
    QTest::newRow("segment with filter") << int(SegmentFiltered);
    QTest::newRow("segment with video") << int(SegmentWithVideo);
    QTest::newRow("filtered log") << int(FilteredLog);
    if (withPayloads)
        QTest::newRow("filtered payloads") << int(FilteredPayloads);
}

LogBytes SampleLog()
{
    return LogBytes().Add(MakeItem(1, "first")).Add(MakeItem(2, "second")).Add(MakeItem(3, "third"));
}

} // namespace

class tst_ZrPlayerExportErrors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void inputThatIsNoLog_data();
    void inputThatIsNoLog();
    void damageLeavesTheOutputAsFarAsWritten_data();
    void damageLeavesTheOutputAsFarAsWritten();
    void damageBehindALeadItem();
    void sameFileIsRefused_data();
    void sameFileIsRefused();
    void sameFileSeesThroughLinks();
    void outputLogThatCannotBeOpened_data();
    void outputLogThatCannotBeOpened();
    void outputOfPayloadsThatCannotBeOpened();
    void fullDiskFails_data();
    void fullDiskFails();
    void fullDiskFailsWithNothingToCopy();

    void census();
    void censusOfTypesAtTheEdges();
    void censusOfWhatIsNoLog_data();
    void censusOfWhatIsNoLog();
    void censusOfADamagedLog();
    void censusThatCannotBeWritten();
    void censusOntoItselfIsRefused();

private:
    QString Path(const char* name) const { return m_dir->filePath(QString::fromUtf8(name)); }

    QScopedPointer<QTemporaryDir> m_dir;
    QScopedPointer<MessageCatcher> m_messages;
    QString m_in;
    QString m_out;
};

void tst_ZrPlayerExportErrors::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
    m_messages.reset(new MessageCatcher);
    m_in = Path("in.log");
    m_out = Path("out.log");
    QVERIFY(WriteWhole(m_in, SampleLog().Bytes()));
}

void tst_ZrPlayerExportErrors::cleanup()
{
    m_messages.reset();
    m_dir.reset();
}

void tst_ZrPlayerExportErrors::inputThatIsNoLog_data()
{
    QTest::addColumn<QByteArray>("bytes"); // null: no file at all
    const QByteArray good = SampleLog().Bytes();
    QTest::newRow("missing") << QByteArray();
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("47 bytes") << good.left(47);
    QTest::newRow("wrong magic") << Flipped(good, 0, 1);
    QTest::newRow("magic wrong in its last byte") << Flipped(good, 3, 0x80);
    QTest::newRow("header size 49") << Flipped(good, 4, 1);
}

void tst_ZrPlayerExportErrors::inputThatIsNoLog()
{
    QFETCH(QByteArray, bytes);
    QFile::remove(m_in);
    if (!bytes.isNull())
        QVERIFY(WriteWhole(m_in, bytes));
    for (eExport way : allExports) {
        ProgressList progress;
        QVERIFY(!Export(way, m_in, m_out, &progress));
        QCOMPARE(progress.values, QVector<int>{0}); // told before anything is looked at
        QVERIFY(!QFile::exists(m_out));
    }
    QCOMPARE(m_messages->Take(), QStringList());
}

void tst_ZrPlayerExportErrors::damageLeavesTheOutputAsFarAsWritten_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray good = SampleLog().Bytes();
    const int third = static_cast<int>(SampleLog().Start(2));
    QTest::newRow("wrong magic") << Flipped(good, third, 1);
    QTest::newRow("wrong header size") << Flipped(good, third + 4, 1);
    QTest::newRow("payload one byte short") << good.left(good.size() - 1);
    QTest::newRow("payload gone but for one byte") << good.left(third + 41);
    QTest::newRow("size far too large") << Flipped(good, third + 35, 0xFF);
}

void tst_ZrPlayerExportErrors::damageLeavesTheOutputAsFarAsWritten()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(WriteWhole(m_in, bytes));
    const QByteArray items = SampleLog().Bytes().mid(48, 45 + 46);
    for (eExport way : {Segment, SegmentFiltered, FilteredLog, FilteredPayloads}) {
        m_messages->Take();
        QVERIFY(!Export(way, m_in, m_out));
        QCOMPARE(m_messages->Take().filter(QStringLiteral("Exported")), QStringList());
        if (way == FilteredPayloads)
            QCOMPARE(ReadWhole(m_out), QByteArray("firstsecond"));
        else
            QCOMPARE(ReadWhole(m_out).mid(48), items);
    }
}

void tst_ZrPlayerExportErrors::damageBehindALeadItem()
{
    // A long item at the end: the form with a lead item stops short of the end of the file.
    LogBytes log = SampleLog();
    log.Add(MakeItem(4, QByteArray(100, 'f')));
    const QByteArray items = log.Bytes().mid(48, 45 + 46);
    QVERIFY(WriteWhole(m_in, Flipped(log.Bytes(), static_cast<int>(log.Start(2)), 1)));
    QVERIFY(!Export(SegmentWithVideo, m_in, m_out));
    QCOMPARE(ReadWhole(m_out).mid(48), items.left(45) + items); // led by the first item once more
    QVERIFY(WriteWhole(m_in, log.Bytes().left(log.Bytes().size() - 1)));
    QVERIFY(!Export(SegmentWithVideo, m_in, m_out));
    QCOMPARE(ReadWhole(m_out).mid(48), items.left(45) + log.Bytes().mid(48, 45 + 46 + 45));
}

void tst_ZrPlayerExportErrors::sameFileIsRefused_data()
{
    AddExportRows();
}

void tst_ZrPlayerExportErrors::sameFileIsRefused()
{
    QFETCH(int, way);
    const QByteArray before = ReadWhole(m_in);
    QVERIFY(QDir(m_dir->path()).mkdir(QStringLiteral("sub")));
    QVERIFY(QFile::link(m_in, Path("symbolic.log")));
    QVERIFY(link(QFile::encodeName(m_in).constData(), QFile::encodeName(Path("hard.log")).constData()) == 0);
    const QStringList names
        = {m_in, Path("./in.log"), Path("sub/../in.log"), Path("symbolic.log"), Path("hard.log")};
    for (const QString& name : names) {
        QVERIFY2(!Export(eExport(way), m_in, name), qUtf8Printable(name));
        QVERIFY2(!Export(eExport(way), name, m_in), qUtf8Printable(name));
        QCOMPARE(ReadWhole(m_in), before);
    }
    QCOMPARE(m_messages->Take(), QStringList());
}

void tst_ZrPlayerExportErrors::sameFileSeesThroughLinks()
{
    QVERIFY(QFile::link(m_in, Path("symbolic.log")));
    QVERIFY(QFile::link(Path("gone.log"), Path("dangling.log")));
    QVERIFY(QFile::copy(m_in, Path("copy.log")));
    QVERIFY(zr::is_same_file(m_in, m_in));
    QVERIFY(zr::is_same_file(Path("symbolic.log"), m_in));
    QVERIFY(!zr::is_same_file(m_in, Path("copy.log")));
    QVERIFY(!zr::is_same_file(m_in, Path("gone.log")));
    QVERIFY(!zr::is_same_file(m_in, Path("dangling.log")));
    QVERIFY(!zr::is_same_file(Path("gone.log"), Path("gone.log")));
    QVERIFY(!zr::is_same_file(QString(), QString()));
    const QString umlaut = Path(u8"l\u00F6g \u6DF1.log");
    QVERIFY(QFile::copy(m_in, umlaut));
    QVERIFY(zr::is_same_file(umlaut, umlaut));
}

void tst_ZrPlayerExportErrors::outputLogThatCannotBeOpened_data()
{
    AddExportRows(false);
}

/// Nobody asks whether the log could be opened: the export runs to its end and succeeds.
void tst_ZrPlayerExportErrors::outputLogThatCannotBeOpened()
{
    QFETCH(int, way);
    const QString out = Path("missing/out.log");
    ProgressList progress;
    QVERIFY(Export(eExport(way), m_in, out, &progress));
    // With a lead item: that one, which reports nothing, and two of the three.
    QCOMPARE(progress.values.size(), way == SegmentWithVideo ? 3 : 4);
    QCOMPARE(m_messages->Take(),
        (QStringList{Line("Cannot open file: ", out), QStringLiteral("Exported 3 Items")}));
}

void tst_ZrPlayerExportErrors::outputOfPayloadsThatCannotBeOpened()
{
    const QString out = Path("missing/out.bin");
    ProgressList progress;
    QVERIFY(!Export(FilteredPayloads, m_in, out, &progress));
    QCOMPARE(progress.values, QVector<int>{0});
    QCOMPARE(m_messages->Take(), QStringList(Line("Failed to open output file: ", out)));
}

void tst_ZrPlayerExportErrors::fullDiskFails_data()
{
    AddExportRows();
}

void tst_ZrPlayerExportErrors::fullDiskFails()
{
    QFETCH(int, way);
    if (!QFile::exists(QStringLiteral("/dev/full")))
        QSKIP("no /dev/full on this system");
    QVERIFY(!Export(eExport(way), m_in, QStringLiteral("/dev/full")));
    QCOMPARE(m_messages->Take().filter(QStringLiteral("Exported")), QStringList());

    LogBytes large; // more than is gathered before writing
    for (int i = 0; i < 30; ++i)
        large.Add(MakeItem(1, QByteArray(100000, 'x')));
    QVERIFY(WriteWhole(m_in, large.Bytes()));
    QVERIFY(!Export(eExport(way), m_in, QStringLiteral("/dev/full")));
}

void tst_ZrPlayerExportErrors::fullDiskFailsWithNothingToCopy()
{
    if (!QFile::exists(QStringLiteral("/dev/full")))
        QSKIP("no /dev/full on this system");
    QVERIFY(WriteWhole(m_in, FileHeader()));
    // Not even the header of the new log finds room.
    QVERIFY(!Export(Segment, m_in, QStringLiteral("/dev/full")));
    QVERIFY(!Export(SegmentFiltered, m_in, QStringLiteral("/dev/full")));
    QVERIFY(!Export(FilteredLog, m_in, QStringLiteral("/dev/full")));
    QVERIFY(Export(FilteredPayloads, m_in, QStringLiteral("/dev/full"))); // nothing had to be written
}

void tst_ZrPlayerExportErrors::census()
{
    LogBytes log;
    log.Add(MakeItem(4, "a")).Add(MakeItem(65535, "b")).Add(MakeItem(4, "")).Add(MakeItem(4, "c", 7));
    QVERIFY(WriteWhole(m_in, log.Bytes()));
    QVERIFY(WriteWhole(m_out, QByteArray(500, 'z')));
    ZrPlayer::ExportIndexInf(m_in, m_out);
    QCOMPARE(ReadWhole(m_out), QByteArray("Index, Count\r\nTotal, 4\r\n4, 3\r\n"));
    QCOMPARE(m_messages->Take(), QStringList(QStringLiteral("Number of items read: 4")));
}

void tst_ZrPlayerExportErrors::censusOfTypesAtTheEdges()
{
    LogBytes log;
    for (quint16 type : {65534, 10, 9, 0, 10, 65535, 1000}) {
        log.Add(MakeItem(type, "x"));
        Item other = MakeItem(type, "y"); // a sub-type does not make another row
        other.sub = 5;
        log.Add(other);
    }
    QVERIFY(WriteWhole(m_in, log.Bytes()));
    ZrPlayer::ExportIndexInf(m_in, m_out);
    QCOMPARE(ReadWhole(m_out),
        QByteArray("Index, Count\r\nTotal, 14\r\n0, 2\r\n9, 2\r\n10, 4\r\n1000, 2\r\n65534, 2\r\n"));
}

void tst_ZrPlayerExportErrors::censusOfWhatIsNoLog_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray good = SampleLog().Bytes();
    QTest::newRow("missing") << QByteArray();
    QTest::newRow("short") << good.left(20);
    QTest::newRow("wrong magic") << Flipped(good, 0, 1);
    QTest::newRow("header only") << good.left(48);
}

void tst_ZrPlayerExportErrors::censusOfWhatIsNoLog()
{
    QFETCH(QByteArray, bytes);
    QFile::remove(m_in);
    if (!bytes.isNull())
        QVERIFY(WriteWhole(m_in, bytes));
    ZrPlayer::ExportIndexInf(m_in, m_out);
    QCOMPARE(ReadWhole(m_out), QByteArray("Index, Count\r\nTotal, 0\r\n"));
}

void tst_ZrPlayerExportErrors::censusOfADamagedLog()
{
    QVERIFY(WriteWhole(m_in, Flipped(SampleLog().Bytes(), static_cast<int>(SampleLog().Start(2)), 1)));
    ZrPlayer::ExportIndexInf(m_in, m_out);
    QCOMPARE(ReadWhole(m_out), QByteArray("Index, Count\r\nTotal, 2\r\n1, 1\r\n2, 1\r\n"));
    QCOMPARE(m_messages->Take(),
        (QStringList{
            QStringLiteral("Not a valid item header:aabbccdc"), QStringLiteral("Number of items read: 2")}));
}

void tst_ZrPlayerExportErrors::censusThatCannotBeWritten()
{
    const QString out = Path(u8"missing/t\u00EDpos \u6DF1.csv");
    ZrPlayer::ExportIndexInf(m_in, out);
    const QStringList messages = m_messages->Take();
    QCOMPARE(messages.size(), 2);
    QCOMPARE(messages[0], QStringLiteral("Number of items read: 3"));
    QVERIFY2(messages[1].contains(QStringLiteral("Cannot open index information file: ") + out),
        qUtf8Printable(messages[1]));
}

void tst_ZrPlayerExportErrors::censusOntoItselfIsRefused()
{
    const QByteArray before = ReadWhole(m_in);
    QVERIFY(QFile::link(m_in, Path("symbolic.log")));
    for (const QString& out : {m_in, Path("symbolic.log")}) {
        m_messages->Take();
        ZrPlayer::ExportIndexInf(m_in, out);
        QCOMPARE(ReadWhole(m_in), before);
        QVERIFY(
            m_messages->Take().last().contains(QStringLiteral("Cannot open index information file: ") + out));
    }
}

QTEST_GUILESS_MAIN(tst_ZrPlayerExportErrors)
#include "tst_ZrPlayerExportErrors.moc"
