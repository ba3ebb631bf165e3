// The event file beside a log: read, merged, changed, never lost.

#include "ZrKit/review/ZrEventFile.h"
#include "ZrKit/review/ZrSurveyDataset.h"
#include "ZrSurveyLog.h"

#include <atomic>
#include <csignal>
#include <memory>
#include <sys/resource.h>
#include <thread>

namespace {

using survey::Event;
using survey::EventFile;
using survey::EventTexts;
using survey::S;
using survey::Uid;

ZrLogEvt Evt(double time, const char* text, const QUuid& uid = QUuid())
{
    ZrLogEvt evt(time, esUser, S(text));
    evt.uid = uid;
    return evt;
}

QStringList Texts(const ZrEventFile& file)
{
    QStringList texts;
    for (const ZrLogEvt& evt : file.events)
        texts << evt.text;
    return texts;
}

} // namespace

class tst_ZrEventFile : public QObject, private survey::LogFolder
{
    Q_OBJECT

private Q_SLOTS:

    void init()
    {
        Begin();
        m_file = m_log + S(".evt");
    }

    void cleanup() { End(); }

    void missingFileIsEmpty();
    void everythingIsReadAndWritten();
    void unchangedFileIsNotTouched();
    void emptyListIsWrittenOnceThereIsAFile();
    void damagedFile_data();
    void damagedFile();
    void everyDamagedFileIsKept();
    void endlessCountEndsAtTheDamage();
    void unreadableFileIsNotReplaced();
    void failedWriteLeavesTheFile_data();
    void failedWriteLeavesTheFile();
    void addKeepsTheOrder();
    void mergeAddsWhatIsMissing();
    void mergeKeepsTheEditedEvent();
    void mergeWithoutUidsGoesByTimeAndText();
    void mergeKeepsAsManyAsThereAre();
    void mergeOrdersEqualTimesAsIfAdded();
    void mergeTakesTimesThatAreNoNumbers();
    void removeTakesAllOfOneUid();
    void fillReplacesTheListOfADataset();
    void updateThatIsRefusedWritesNothing();
    void updateInAFolderThatCannotBeWrittenFails();
    void updatesAtTheSameTimeAreAllKept();

private:
    QString m_file;
};

void tst_ZrEventFile::missingFileIsEmpty()
{
    ZrEventFile file;
    QCOMPARE(file.Read(m_log), ZrEventFile::Missing);
    QVERIFY(file.events.empty());
    QVERIFY(!file.IsChanged());
    QString error;
    QVERIFY(file.Write(&error));
    QCOMPARE(Names(), QStringList());
}

void tst_ZrEventFile::everythingIsReadAndWritten()
{
    const QByteArray bytes = EventFile({{100.5, S("erstes Ereignis ü"), Uid(1), S("a\nb"), 3, -7},
        {100.5, QString(), QUuid(), QString(), -2000000000, 0}, {300.0, S("x"), Uid(2)}});
    QVERIFY(WriteWhole(m_file, bytes));
    ZrEventFile file;
    QCOMPARE(file.Read(m_log), ZrEventFile::Whole);
    QCOMPARE(file.events.size(), std::size_t(3));
    const ZrLogEvt& evt = file.events[0];
    QCOMPARE(evt.time, 100.5);
    QCOMPARE(evt.text, S("erstes Ereignis ü"));
    QCOMPARE(evt.uid, Uid(1));
    QCOMPARE(evt.detail, S("a\nb"));
    QCOMPARE(static_cast<int>(evt.src), 3);
    QCOMPARE(int(evt.code), -7);
    QCOMPARE(static_cast<int>(file.events[1].src), -2000000000);
    // The bytes of the others stay as they are.
    file.Add(Evt(400.0, "last", Uid(3)));
    QVERIFY(file.IsChanged());
    QString error;
    QVERIFY2(file.Write(&error), qPrintable(error));
    QCOMPARE(ReadWhole(m_file),
        EventFile({{100.5, S("erstes Ereignis ü"), Uid(1), S("a\nb"), 3, -7},
            {100.5, QString(), QUuid(), QString(), -2000000000, 0}, {300.0, S("x"), Uid(2)},
            {400.0, S("last"), Uid(3), QString(), 2, 0}}));
    QVERIFY(!file.IsChanged());
}

void tst_ZrEventFile::unchangedFileIsNotTouched()
{
    QVERIFY(WriteWhole(m_file, EventFile({{1.0, S("a"), Uid(1)}})));
    QFile old(m_file);
    QVERIFY(old.open(QIODevice::ReadWrite));
    const QDateTime before = QDateTime::fromSecsSinceEpoch(1000000000);
    QVERIFY(old.setFileTime(before, QFileDevice::FileModificationTime));
    old.close();
    QString error;
    QVERIFY(ZrEventFile::Update(
        m_log, [](ZrEventFile& file) { return file.events.size() == 1; }, &error));
    QCOMPARE(QFileInfo(m_file).lastModified(), before);
    QCOMPARE(Names(), QStringList{S("dive äß.log.evt")});
}

void tst_ZrEventFile::emptyListIsWrittenOnceThereIsAFile()
{
    QVERIFY(WriteWhole(m_file, EventFile({{1.0, S("a"), Uid(1)}})));
    ZrEventFile file;
    file.Read(m_log);
    QCOMPARE(file.Remove(Uid(1)), 1);
    QString error;
    QVERIFY(file.Write(&error));
    QCOMPARE(ReadWhole(m_file), QByteArray(4, '\0'));
}

void tst_ZrEventFile::damagedFile_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("sound");
    const QByteArray whole = EventFile({{1.0, S("a"), Uid(1)}, {2.0, S("b"), Uid(2)}});
    QTest::newRow("nothing") << QByteArray("") << 0;
    QTest::newRow("half a count") << whole.left(2) << 0;
    QTest::newRow("count alone") << whole.left(4) << 0;
    QTest::newRow("first one cut") << whole.left(20) << 0;
    QTest::newRow("last one cut") << whole.left(whole.size() - 1) << 1;
    QTest::newRow("bytes behind the end") << whole + '\0' << 2;
    QTest::newRow("count too small") << Patched(whole, 0, QByteArray("\0\0\0\1", 4)) << 1;
    QTest::newRow("count too large") << Patched(whole, 0, QByteArray("\0\0\0\3", 4)) << 2;
    QTest::newRow("count negative") << Patched(whole, 0, QByteArray("\xFF\xFF\xFF\xFE", 4)) << 0;
    // Behind code, time and source: the length of the first text, now of an odd number of bytes.
    QTest::newRow("text length damaged") << Patched(whole, 18, QByteArray("\0\0\0\3", 4)) << 0;
}

void tst_ZrEventFile::damagedFile()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, sound);
    QVERIFY(WriteWhole(m_file, bytes));
    ZrEventFile file;
    QCOMPARE(file.Read(m_log), ZrEventFile::Damaged);
    QCOMPARE(Texts(file), (QStringList{S("a"), S("b")}.mid(0, sound)));
    file.Add(Evt(3.0, "c", Uid(3)));
    QString error;
    QVERIFY2(file.Write(&error), qPrintable(error));
    QCOMPARE(EventTexts(m_log), (QStringList{S("a"), S("b")}.mid(0, sound) + QStringList{S("c")}));
    QCOMPARE(ReadWhole(m_file + S(".damaged")), bytes);
    QCOMPARE(file.Read(m_log), ZrEventFile::Whole);
}

void tst_ZrEventFile::everyDamagedFileIsKept()
{
    QString error;
    for (const char c : {'1', '2', '3'}) {
        QVERIFY(WriteWhole(m_file, QByteArray(1, c)));
        ZrEventFile file;
        file.Read(m_log);
        QVERIFY(file.IsChanged());
        QVERIFY2(file.Write(&error), qPrintable(error));
    }
    QCOMPARE(ReadWhole(m_file + S(".damaged")), QByteArray("1"));
    QCOMPARE(ReadWhole(m_file + S(".damaged-2")), QByteArray("2"));
    QCOMPARE(ReadWhole(m_file + S(".damaged-3")), QByteArray("3"));
    QCOMPARE(Names().size(), 4);
}

void tst_ZrEventFile::endlessCountEndsAtTheDamage()
{
    QVERIFY(WriteWhole(
        m_file, Patched(EventFile({{1.0, S("a"), Uid(1)}}), 0, QByteArray("\x7F\xFF\xFF\xFF", 4))));
    ZrEventFile file;
    QCOMPARE(file.Read(m_log), ZrEventFile::Damaged);
    QCOMPARE(Texts(file), QStringList{S("a")});
}

void tst_ZrEventFile::unreadableFileIsNotReplaced()
{
    // A folder in its place cannot be opened by anybody, the superuser included.
    QVERIFY(QDir().mkdir(m_file));
    ZrEventFile file;
    QCOMPARE(file.Read(m_log), ZrEventFile::Unreadable);
    file.Add(Evt(1.0, "a"));
    QString error;
    QVERIFY(!file.Write(&error));
    QCOMPARE(error, m_file + S(": The event file cannot be read, so it is not replaced"));
    QVERIFY(QFileInfo(m_file).isDir());
}

void tst_ZrEventFile::failedWriteLeavesTheFile_data()
{
    // A file may grow to 4 KiB; some sizes stay in a buffer until the end.
    QTest::addColumn<int>("size");
    for (const int size : {2100, 5000, 8000, 8192, 100000})
        QTest::newRow(qPrintable(QString::number(size))) << size;
}

void tst_ZrEventFile::failedWriteLeavesTheFile()
{
    QFETCH(int, size);
    const QByteArray before = EventFile({{1.0, S("a"), Uid(1)}});
    QVERIFY(WriteWhole(m_file, before));
    const int code = RunInChild([this, size] {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{4096, 4096};
        setrlimit(RLIMIT_FSIZE, &limit);
        ZrEventFile file;
        file.Read(m_log);
        ZrLogEvt large = Evt(2.0, "b");
        large.detail = QString(size, QLatin1Char('x'));
        file.Add(large);
        QString error;
        if (file.Write(&error))
            return 1;
        return error == m_file + S(": File too large") ? 42 : 2;
    });
    QCOMPARE(code, 42);
    QCOMPARE(ReadWhole(m_file), before);
    QCOMPARE(Names(), QStringList{S("dive äß.log.evt")});
}

void tst_ZrEventFile::addKeepsTheOrder()
{
    ZrEventFile file;
    for (const double time : {5.0, 1.0, 9.0, 5.0})
        file.Add(Evt(time,
            time == 5.0 && !file.events.empty() && file.events.size() == 3
                ? "5 later"
                : qPrintable(QString::number(time))));
    file.Add(Evt(std::nan(""), "never"));
    file.Add(Evt(7.0, "7"));
    QCOMPARE(Texts(file), (QStringList{S("1"), S("5 later"), S("5"), S("7"), S("9"), S("never")}));
}

void tst_ZrEventFile::mergeAddsWhatIsMissing()
{
    ZrEventFile file;
    file.events = {Evt(1.0, "user 1", Uid(1)), Evt(5.0, "in both", Uid(2)), Evt(9.0, "user 9", Uid(3))};
    file.Merge({Evt(4.0, "log 4", Uid(4)), Evt(5.0, "in both", Uid(2)), Evt(10.0, "log 10", Uid(5))});
    QCOMPARE(Texts(file), (QStringList{S("user 1"), S("log 4"), S("in both"), S("user 9"), S("log 10")}));
    const QStringList before = Texts(file);
    file.Merge({});
    QCOMPARE(Texts(file), before);
}

void tst_ZrEventFile::mergeKeepsTheEditedEvent()
{
    ZrEventFile file;
    file.events = {Evt(6.0, "edited", Uid(1))};
    file.Merge({Evt(5.0, "as recorded", Uid(1))});
    QCOMPARE(Texts(file), QStringList{S("edited")});
}

void tst_ZrEventFile::mergeWithoutUidsGoesByTimeAndText()
{
    ZrEventFile file;
    file.events = {Evt(1.0, "a"), Evt(2.0, "b")};
    file.Merge({Evt(1.0, "a"), Evt(1.0, "b"), Evt(2.0000000001, "b"), Evt(2.0, "b", Uid(1))});
    QCOMPARE(Texts(file), (QStringList{S("b"), S("a"), S("b"), S("b"), S("b")}));
    QCOMPARE(file.events[2].uid, Uid(1));
}

void tst_ZrEventFile::mergeKeepsAsManyAsThereAre()
{
    ZrEventFile file;
    file.events = {Evt(1.0, "a"), Evt(1.0, "a"), Evt(2.0, "b")};
    file.Merge({Evt(1.0, "a"), Evt(2.0, "b"), Evt(2.0, "b"), Evt(2.0, "b")});
    QCOMPARE(Texts(file), (QStringList{S("a"), S("a"), S("b"), S("b"), S("b")}));
}

void tst_ZrEventFile::mergeOrdersEqualTimesAsIfAdded()
{
    ZrEventFile file;
    file.events = {Evt(1.0, "in the file")};
    file.Merge({Evt(1.0, "first"), Evt(1.0, "second"), Evt(0.0, "earlier")});
    QCOMPARE(Texts(file), (QStringList{S("earlier"), S("second"), S("first"), S("in the file")}));
}

void tst_ZrEventFile::mergeTakesTimesThatAreNoNumbers()
{
    const double nan = std::nan("");
    const double inf = std::numeric_limits<double>::infinity();
    ZrEventFile file;
    file.events = {Evt(1.0, "a"), Evt(nan, "none")};
    file.Merge({Evt(nan, "none"), Evt(nan, "other"), Evt(inf, "late"), Evt(-inf, "early"), Evt(2.0, "b")});
    QCOMPARE(Texts(file), (QStringList{S("early"), S("a"), S("b"), S("late"), S("other"), S("none")}));
}

void tst_ZrEventFile::removeTakesAllOfOneUid()
{
    ZrEventFile file;
    file.events = {Evt(1.0, "a", Uid(1)), Evt(2.0, "b", Uid(2)), Evt(3.0, "c", Uid(1)), Evt(4.0, "d")};
    QCOMPARE(file.Remove(Uid(1)), 2);
    QCOMPARE(file.Remove(Uid(9)), 0);
    QCOMPARE(Texts(file), (QStringList{S("b"), S("d")}));
}

void tst_ZrEventFile::fillReplacesTheListOfADataset()
{
    ZrSurveyDataset dataset;
    for (int i = 0; i < 4; ++i) {
        ZrLogRec rec;
        rec.time = 10.0 * i;
        dataset.recs.push_back(rec);
    }
    dataset.events.AddTail(new ZrLogEvt(1.0, esUser, S("old")));
    dataset.curEvt = dataset.events.GetHeadPos();
    ZrEventFile file;
    file.events = {Evt(-5.0, "before"), Evt(11.0, "within"), Evt(99.0, "behind")};
    file.Fill(dataset);
    QCOMPARE(dataset.curEvt, static_cast<ZrListPos*>(nullptr));
    QStringList texts;
    for (ZrListPos* pos = dataset.events.GetHeadPos(); pos;) {
        const ZrLogEvt* evt = dataset.events.GetNext(pos);
        texts << S("%1 %2").arg(evt->text).arg(evt->rec);
    }
    QCOMPARE(texts, (QStringList{S("before 0"), S("within 1"), S("behind 3")}));
}

void tst_ZrEventFile::updateThatIsRefusedWritesNothing()
{
    QString error;
    QVERIFY(ZrEventFile::Update(
        m_log,
        [](ZrEventFile& file) {
            file.Add(Evt(1.0, "a"));
            return false;
        },
        &error));
    QCOMPARE(Names(), QStringList());
}

void tst_ZrEventFile::updateInAFolderThatCannotBeWrittenFails()
{
    const QString log = m_folder->filePath(S("no such folder/dive.log"));
    QString error;
    bool called = false;
    QVERIFY(!ZrEventFile::Update(
        log,
        [&called](ZrEventFile& file) {
            called = true;
            file.Add(Evt(1.0, "a"));
            return true;
        },
        &error));
    QVERIFY(!called);
    QCOMPARE(error, log + S(".evt: The event file cannot be locked for writing"));
}

void tst_ZrEventFile::updatesAtTheSameTimeAreAllKept()
{
    constexpr int writers = 4;
    constexpr int each = 5;
    std::vector<std::thread> threads;
    std::atomic<int> failures{0};
    for (int writer = 0; writer < writers; ++writer) {
        threads.emplace_back([this, writer, &failures] {
            for (int i = 0; i < each; ++i) {
                QString error;
                const auto add = [writer, i](ZrEventFile& file) {
                    file.Add(Evt(i, "x", Uid(writer * each + i)));
                    return true;
                };
                if (!ZrEventFile::Update(m_log, add, &error))
                    ++failures;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    QCOMPARE(failures.load(), 0);
    QCOMPARE(EventTexts(m_log).size(), writers * each);
    QCOMPARE(Names(), QStringList{S("dive äß.log.evt")});
}

QTEST_GUILESS_MAIN(tst_ZrEventFile)
#include "tst_ZrEventFile.moc"
