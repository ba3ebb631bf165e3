// Which events of a log were taken over into its event file: kept beside it, read whatever lies there.

#include "SmallFiles.h"
#include "ZrKit/review/ZrDatasetReader.h"
#include "ZrKit/review/ZrEventFile.h"
#include "ZrKit/review/ZrMergedEvents.h"
#include "ZrKit/review/ZrSurveyDataset.h"
#include "ZrSurveyLog.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <atomic>
#include <chrono>
#include <limits>
#include <thread>

namespace {

using survey::EventFile;
using survey::EventTexts;
using survey::S;
using survey::Uid;

ZrLogEvt Evt(double time, const QString& text, const QUuid& uid = QUuid())
{
    ZrLogEvt evt(time, esUser, text);
    evt.uid = uid;
    return evt;
}

} // namespace

class tst_ZrMergedEvents : public QObject, private survey::LogFolder
{
    Q_OBJECT

private Q_SLOTS:

    void init()
    {
        Begin();
        m_file = m_log + S(".evt.json");
    }

    void cleanup() { End(); }

    void nothingYet();
    void keptAndRead();
    void counts();
    void documentedForm();
    void notUnderstood_data();
    void notUnderstood();
    void manyEvents();
    void cannotBeWritten();
    void mergeLeavesOutWhatWasTakenOver();
    void takeOver();
    void takeOverOfAWholeFileOnly_data();
    void takeOverOfAWholeFileOnly();
    void takeOverThatFails();
    void takenOverAndRemovedAtTheSameTime();
    void takenOverBeforeThatWasKept();
    void otherLogThanThatOfTheIndex();

private:
    /// So many records with an event each, the first with the number \p first.
    static QByteArray LogOf(int count, int first = 0)
    {
        LogBytes log;
        for (int i = first; i < first + count; ++i)
            log.Add(survey::NavItem(i)).Add(survey::EventItem({double(i), S("event %1").arg(i), Uid(i + 1)}));
        return log.Bytes();
    }

    /// The log is read; the texts in the event file.
    QStringList Read(const QByteArray& log) const
    {
        ZrSurveyDataset dataset;
        ZrDatasetReader reader;
        const bool isRead = WriteWhole(m_log, log) && reader.Read(m_log, dataset) == ZrDatasetReader::Built;
        return isRead && reader.WriteError().isEmpty() ? EventTexts(m_log) : QStringList{S("not read")};
    }

    /// Takes \p found over; the texts in the event file.
    QStringList TakeOver(const std::vector<ZrLogEvt>& found) const
    {
        std::vector<ZrLogEvt> events;
        QString error;
        return ZrEventFile::TakeOver(m_log, found, events, &error) ? EventTexts(m_log) : QStringList{error};
    }

    QString m_file;
};

void tst_ZrMergedEvents::nothingYet()
{
    ZrMergedEvents merged;
    QVERIFY(!merged.Read(m_log));
    QVERIFY(merged.IsEmpty());
    QVERIFY(merged.HasAll({}));
    QVERIFY(!merged.HasAll({Evt(1.0, S("a"))}));
    QCOMPARE(merged.Count(Evt(1.0, S("a"))), 0);
}

void tst_ZrMergedEvents::keptAndRead()
{
    constexpr double inf = std::numeric_limits<double>::infinity();
    const QString half(QChar(0xD800)); // of a pair: no text that JSON could hold
    const std::vector<ZrLogEvt> events{Evt(1.0, S("a"), Uid(1)), Evt(1.5, S("Wrack äß 沈\n\"")),
        Evt(std::nan(""), QString()), Evt(inf, half), Evt(-1e300, QString(100000, QLatin1Char('x')))};
    ZrMergedEvents merged;
    merged.Add(events);
    QString error;
    QVERIFY2(merged.Write(m_log, &error), qPrintable(error));
    ZrMergedEvents read;
    QVERIFY(read.Read(m_log));
    QVERIFY(read.HasAll(events));
    for (const ZrLogEvt& evt : events)
        QCOMPARE(read.Count(evt), 1);
    // The uid is what counts, and without one time and text.
    QCOMPARE(read.Count(Evt(99.0, S("another text"), Uid(1))), 1);
    QCOMPARE(read.Count(Evt(1.0, S("a"))), 0);
    QCOMPARE(read.Count(Evt(1.5000001, S("Wrack äß 沈\n\""))), 0);
    QCOMPARE(read.Count(Evt(inf, QString(QChar(0xD801)))), 0);
}

void tst_ZrMergedEvents::counts()
{
    const ZrLogEvt a = Evt(1.0, S("a"));
    const ZrLogEvt b = Evt(2.0, S("b"));
    ZrMergedEvents merged;
    merged.Add({a, a, b});
    QCOMPARE(merged.Count(b), 1);
    merged.Add({a}); // the same log, cut off
    QCOMPARE(merged.Count(a), 2);
    QVERIFY(merged.HasAll({a, a}) && !merged.HasAll({a, a, a}));
    QString error;
    QVERIFY(merged.Write(m_log, &error));
    ZrMergedEvents read;
    QVERIFY(read.Read(m_log));
    QCOMPARE(read.Count(a), 2);
}

void tst_ZrMergedEvents::documentedForm()
{
    ZrMergedEvents merged;
    merged.Add({Evt(1.0, S("a"), Uid(1)), Evt(1.5, S("b")), Evt(1.5, S("b"))});
    QString error;
    QVERIFY(merged.Write(m_log, &error));
    // The first 8 bytes of the SHA-1 of a length in bytes and the text in UTF-16, big-endian both.
    const QJsonObject expected{{S("version"), 1},
        {S("events"), QJsonArray{S("4339d5c9e042231c"), S("76d530ae819485f8"), S("76d530ae819485f8")}}};
    QCOMPARE(QString::fromUtf8(QJsonDocument(QJsonDocument::fromJson(ReadWhole(m_file)).object()).toJson()),
        QString::fromUtf8(QJsonDocument(expected).toJson()));
    QCOMPARE(Names(), QStringList{S("dive äß.log.evt.json")});
    const QByteArray document = ReadWhole(S(ZR_SOURCE_DIR "/docs/file-formats.md"));
    QVERIFY(document.contains("`.evt.json`"));
}

void tst_ZrMergedEvents::notUnderstood_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("nothing") << QByteArray("");
    QTest::newRow("no JSON") << QByteArray("events");
    QTest::newRow("an array") << QByteArray("[\"1188aba1f3b14bd8\"]");
    QTest::newRow("no version") << QByteArray(R"({"events": []})");
    QTest::newRow("later version") << QByteArray(R"({"version": 2, "events": []})");
    QTest::newRow("no events") << QByteArray(R"({"version": 1})");
    QTest::newRow("events no array") << QByteArray(R"({"version": 1, "events": "1188aba1f3b14bd8"})");
    QTest::newRow("cut off") << QByteArray(R"({"version": 1, "events": ["1188aba1f3b1)");
}

void tst_ZrMergedEvents::notUnderstood()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(WriteWhole(m_file, bytes));
    ZrMergedEvents merged;
    merged.Add({Evt(1.0, S("a"))});
    QVERIFY(!merged.Read(m_log));
    QVERIFY(merged.IsEmpty());
    // What is no digest is left out.
    QVERIFY(WriteWhole(m_file, R"({"version": 1, "events": [7, null, "x", "1188", "4339d5c9e042231c"]})"));
    QVERIFY(merged.Read(m_log));
    QCOMPARE(merged.Count(Evt(1.0, S("a"), Uid(1))), 1);
}

void tst_ZrMergedEvents::manyEvents()
{
    std::vector<ZrLogEvt> events;
    for (int i = 0; i < 20000; ++i)
        events.push_back(Evt(i, S("x")));
    ZrMergedEvents merged;
    merged.Add(events);
    QString error;
    QVERIFY(merged.Write(m_log, &error));
    ZrMergedEvents read;
    QVERIFY(read.Read(m_log) && read.HasAll(events));
}

void tst_ZrMergedEvents::cannotBeWritten()
{
    ZrMergedEvents merged;
    merged.Add({Evt(1.0, S("a"))});
    QString error;
    QVERIFY(merged.Write(m_log, &error));
    const QByteArray before = ReadWhole(m_file);
    merged.Add({Evt(2.0, S("b")), Evt(3.0, S("c"))});
    {
        const SmallFiles full(20);
        QVERIFY(!merged.Write(m_log, &error));
    }
    QVERIFY2(error.startsWith(m_file + S(": ")), qPrintable(error));
    QCOMPARE(ReadWhole(m_file), before);
    QVERIFY(QFile::remove(m_file) && QDir().mkpath(m_file + S("/inside")));
    QVERIFY(!merged.Write(m_log, nullptr));
    QVERIFY(!merged.Read(m_log));
}

void tst_ZrMergedEvents::mergeLeavesOutWhatWasTakenOver()
{
    ZrMergedEvents merged;
    merged.Add({Evt(1.0, S("removed"), Uid(1)), Evt(2.0, S("twin")), Evt(3.0, S("there"), Uid(3))});
    ZrEventFile file;
    file.events = {Evt(3.0, S("there"), Uid(3)), Evt(4.0, S("user"), Uid(4))};
    file.Merge({Evt(1.0, S("removed"), Uid(1)), Evt(2.0, S("twin")), Evt(2.0, S("twin")),
                   Evt(3.0, S("there"), Uid(3)), Evt(5.0, S("new"), Uid(5))},
        merged);
    QStringList texts;
    for (const ZrLogEvt& evt : file.events)
        texts << evt.text;
    // Of the twins one was removed, the other one is new.
    QCOMPARE(texts, (QStringList{S("twin"), S("there"), S("user"), S("new")}));
}

void tst_ZrMergedEvents::takeOver()
{
    const ZrLogEvt a = Evt(1.0, S("a"), Uid(1));
    const ZrLogEvt b = Evt(2.0, S("b"));
    QCOMPARE(TakeOver({a, b}), (QStringList{S("a"), S("b")}));
    QCOMPARE(Names(), (QStringList{S("dive äß.log.evt"), S("dive äß.log.evt.json")}));
    // One removed, one changed.
    QVERIFY(WriteWhole(m_log + S(".evt"), EventFile({{2.0, S("b, edited"), QUuid()}})));
    QCOMPARE(TakeOver({a, b}), QStringList{S("b, edited")});
    QCOMPARE(TakeOver({a, b, Evt(3.0, S("c"))}), (QStringList{S("b, edited"), S("c")}));
    QCOMPARE(TakeOver({a}), (QStringList{S("b, edited"), S("c")})); // cut off
    QVERIFY(WriteWhole(m_log + S(".evt"), EventFile({})));
    QCOMPARE(TakeOver({a, b, Evt(3.0, S("c"))}), QStringList());
}

void tst_ZrMergedEvents::takeOverOfAWholeFileOnly_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("missing") << QByteArray();
    QTest::newRow("damaged") << EventFile({{9.0, S("z"), Uid(9)}}).left(20);
}

/// Without the event file all events are new.
void tst_ZrMergedEvents::takeOverOfAWholeFileOnly()
{
    QFETCH(QByteArray, bytes);
    const ZrLogEvt a = Evt(1.0, S("a"), Uid(1));
    QCOMPARE(TakeOver({a}), QStringList{S("a")});
    QVERIFY(QFile::remove(m_log + S(".evt")));
    if (!bytes.isNull())
        QVERIFY(WriteWhole(m_log + S(".evt"), bytes));
    ZrEventFile file;
    file.Read(m_log);
    QVERIFY(file.Merged().IsEmpty());
    QCOMPARE(TakeOver({a}), QStringList{S("a")});
    QCOMPARE(file.Read(m_log), ZrEventFile::Whole);
    QCOMPARE(file.Merged().Count(a), 1);
}

/// Events that are not in the file are not known as taken over.
void tst_ZrMergedEvents::takeOverThatFails()
{
    std::vector<ZrLogEvt> events{Evt(9.0, S("as before"))};
    QString error;
    QVERIFY(QDir().mkpath(m_log + S(".evt/inside")));
    QVERIFY(!ZrEventFile::TakeOver(m_log, {Evt(1.0, S("a"))}, events, &error));
    QVERIFY2(error.startsWith(m_log + S(".evt: ")), qPrintable(error));
    QVERIFY(!QFileInfo::exists(m_file));
    QVERIFY(QDir(m_log + S(".evt")).removeRecursively());
    QVERIFY(QDir().mkpath(m_file + S("/inside")));
    QVERIFY(!ZrEventFile::TakeOver(m_log, {Evt(1.0, S("a"))}, events, &error));
    QVERIFY2(error.startsWith(m_file + S(": ")), qPrintable(error));
    QCOMPARE(EventTexts(m_log), QStringList{S("a")});
    QCOMPARE(events.size(), std::size_t(1));
    QCOMPARE(events[0].text, S("as before"));
    QVERIFY(!ZrEventFile::TakeOver(m_folder->filePath(S("none/x.log")), {}, events, &error));
}

/// One thread scans the log again and again, the other one removes its events.
void tst_ZrMergedEvents::takenOverAndRemovedAtTheSameTime()
{
    constexpr int count = 20;
    std::vector<ZrLogEvt> found;
    for (int i = 0; i < count; ++i)
        found.push_back(Evt(i, S("x"), Uid(i + 1)));
    QCOMPARE(TakeOver(found).size(), count);
    std::atomic<bool> isDone{false};
    std::atomic<int> failures{0};
    std::thread scanning([&] {
        QString error;
        std::vector<ZrLogEvt> events;
        while (!isDone) {
            failures += ZrEventFile::TakeOver(m_log, found, events, &error) ? 0 : 1;
            // Who waits for a lock looks for it ever more seldom.
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    for (int i = 0; i < count; ++i) {
        QString error;
        const auto remove = [i](ZrEventFile& file) { return file.Remove(Uid(i + 1)) == 1; };
        failures += ZrEventFile::Update(m_log, remove, &error) ? 0 : 1;
    }
    isDone = true;
    scanning.join();
    QCOMPARE(failures.load(), 0);
    QCOMPARE(TakeOver(found), QStringList());
}

/// The index tells which events were found, where nothing else does.
void tst_ZrMergedEvents::takenOverBeforeThatWasKept()
{
    QCOMPARE(Read(LogOf(3)).size(), 3);
    QVERIFY(QFile::remove(m_file));
    QVERIFY(WriteWhole(m_log + S(".evt"), EventFile({{1.0, S("event 1"), Uid(2)}})));
    const QStringList left{S("event 1"), S("event 3"), S("event 4")};
    QCOMPARE(Read(LogOf(5)), left);
    const auto forgetIndex
        = [this] { return QFile::remove(m_log + S(".zri")) && QFile::remove(m_log + S(".zri.json")); };
    QVERIFY(forgetIndex()); // from now on it is kept
    QCOMPARE(Read(LogOf(5)), left);
    // So it is when all of them were known.
    QVERIFY(QFile::remove(m_file) && QFile::remove(m_log + S(".zri")));
    QCOMPARE(Read(LogOf(5)), left);
    QVERIFY(forgetIndex());
    QCOMPARE(Read(LogOf(5)), left);
    // Those of an event file that is gone are new.
    QVERIFY(QFile::remove(m_file) && QFile::remove(m_log + S(".evt")));
    QCOMPARE(Read(LogOf(5)).size(), 5);
}

void tst_ZrMergedEvents::otherLogThanThatOfTheIndex()
{
    QCOMPARE(Read(LogOf(3)).size(), 3);
    QVERIFY(QFile::remove(m_file));
    QVERIFY(WriteWhole(m_log + S(".evt"), EventFile({})));
    QCOMPARE(Read(LogOf(4, 10)).size(), 4);
}

QTEST_GUILESS_MAIN(tst_ZrMergedEvents)
#include "tst_ZrMergedEvents.moc"
