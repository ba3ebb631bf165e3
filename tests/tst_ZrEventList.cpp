// Events as a person edits them.

#include "ZrKit/review/ZrEventFile.h"
#include "ZrKit/review/ZrEventList.h"
#include "ZrSurveyLog.h"

#include <cmath>
#include <limits>
#include <random>

namespace {

using survey::Event;
using survey::EventFile;
using survey::EventTexts;
using survey::S;
using survey::Uid;

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

ZrLogEvt Evt(double time, const char* text)
{
    return ZrLogEvt(time, esUser, S(text));
}

QString Texts(const ZrEventList& events)
{
    QStringList texts;
    for (std::size_t i = 0; i < events.Count(); ++i)
        texts << events.At(i).text;
    return texts.join(QLatin1Char(' '));
}

} // namespace

class tst_ZrEventList : public QObject, private survey::LogFolder
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Begin(); }

    void cleanup() { End(); }

    void orderOfTimes();
    void editAndRemove();
    void undoAndRedo();
    void undoRestoresTheOrder();
    void undoOfAnything();
    void stepsAreBounded();
    void textsOfSteps();
    void nextAndPrevious();
    void timesForSteps();
    void loadAndSave();
    void unchangedListIsNotWritten();
    void unicodeTexts();
    void changesOfOthersStay();
    void removedElsewhere();
    void eventsWithoutUid();
    void undoAfterSave();
    void damagedFile();
    void cannotBeSaved_data();
    void cannotBeSaved();
};

void tst_ZrEventList::orderOfTimes()
{
    ZrEventList events;
    events.Add(Evt(5, "c"));
    events.Add(Evt(1, "a"));
    events.Add(Evt(unknown, "none"));
    events.Add(Evt(5, "b")); // in front of those of its time
    events.Add(Evt(-std::numeric_limits<double>::infinity(), "first"));
    events.Add(Evt(9, "d"));
    QCOMPARE(Texts(events), S("first a b c d none"));
    for (std::size_t i = 0; i < events.Count(); ++i) {
        QVERIFY(!events.At(i).uid.isNull());
        QCOMPARE(events.IndexOf(events.Id(i)), i);
    }
    QCOMPARE(events.IndexOf(12345), events.Count());
    ZrLogEvt known = Evt(20, "known");
    known.uid = Uid(7);
    events.Add(known);
    QCOMPARE(events.At(5).uid, Uid(7));
}

void tst_ZrEventList::editAndRemove()
{
    ZrEventList events;
    const u64 a = events.Add(Evt(1, "a"));
    const u64 b = events.Add(Evt(2, "b"));
    events.Add(Evt(3, "c"));
    const QUuid uid = events.At(0).uid;
    ZrLogEvt changed = Evt(2.5, "A");
    changed.uid = Uid(99);
    QVERIFY(events.Edit(a, changed));
    QCOMPARE(Texts(events), S("b A c"));
    QCOMPARE(events.At(1).uid, uid);
    QCOMPARE(events.Id(1), a);
    QVERIFY(!events.Edit(a, changed)); // nothing different
    QVERIFY(!events.Edit(777, changed));
    QVERIFY(events.Remove(b));
    QVERIFY(!events.Remove(b));
    QVERIFY(!events.Edit(b, changed));
    QCOMPARE(Texts(events), S("A c"));
}

void tst_ZrEventList::undoAndRedo()
{
    ZrEventList events;
    QVERIFY(!events.CanUndo());
    QCOMPARE(events.Undo(), u64(0));
    QCOMPARE(events.Redo(), u64(0));
    const u64 a = events.Add(Evt(1, "a"));
    const u64 b = events.Add(Evt(2, "b"));
    events.Edit(a, Evt(3, "A"));
    events.Remove(b);
    QCOMPARE(Texts(events), S("A"));
    QCOMPARE(events.Undo(), b);
    QCOMPARE(Texts(events), S("b A"));
    QCOMPARE(events.Undo(), a);
    QCOMPARE(Texts(events), S("a b"));
    QCOMPARE(events.Redo(), a);
    QCOMPARE(Texts(events), S("b A"));
    QVERIFY(events.CanRedo());
    events.Add(Evt(0, "new")); // what was undone is gone
    QVERIFY(!events.CanRedo());
    QCOMPARE(Texts(events), S("new b A"));
    while (events.CanUndo())
        events.Undo();
    QCOMPARE(Texts(events), QString());
    while (events.CanRedo())
        events.Redo();
    QCOMPARE(Texts(events), S("new b A"));
    QCOMPARE(events.Id(2), a);
}

void tst_ZrEventList::undoRestoresTheOrder()
{
    ZrEventList events;
    for (const char* text : {"d", "c", "b", "a"})
        events.Add(Evt(5, text));
    QCOMPARE(Texts(events), S("a b c d"));
    for (const std::size_t i : {std::size_t(0), std::size_t(1), std::size_t(3)}) {
        const u64 id = events.Id(i);
        events.Remove(id);
        events.Undo();
        QCOMPARE(Texts(events), S("a b c d"));
        events.Edit(id, Evt(1, "x"));
        events.Undo();
        QCOMPARE(Texts(events), S("a b c d"));
        events.Edit(id, Evt(5, "y")); // stays where it is
        QCOMPARE(events.IndexOf(id), i);
        events.Undo();
    }
}

void tst_ZrEventList::undoOfAnything()
{
    std::mt19937 random(23);
    ZrEventList events;
    QStringList states{Texts(events)};
    for (int i = 0; i < 500; ++i) {
        const QByteArray text = QByteArray::number(i);
        const double time = static_cast<double>(random() % 6);
        const u64 id = events.Count() > 0 ? events.Id(random() % events.Count()) : 0;
        const unsigned kind = random() % 3;
        if (kind == 0 || id == 0)
            events.Add(Evt(time, text));
        else if (kind == 1)
            events.Edit(id, Evt(time, text));
        else
            events.Remove(id);
        states << Texts(events);
    }
    for (int i = states.size() - 2; i >= 0; --i) {
        events.Undo();
        QCOMPARE(Texts(events), states[i]);
    }
    QVERIFY(!events.CanUndo());
    for (int i = 1; i < states.size(); ++i) {
        events.Redo();
        QCOMPARE(Texts(events), states[i]);
    }
}

void tst_ZrEventList::stepsAreBounded()
{
    ZrEventList events;
    for (std::size_t i = 0; i < ZrEventList::MostSteps + 10; ++i)
        events.Add(Evt(static_cast<double>(i), "x"));
    std::size_t undone = 0;
    while (events.Undo() != 0)
        ++undone;
    QCOMPARE(undone, ZrEventList::MostSteps);
    QCOMPARE(events.Count(), std::size_t(10));
}

void tst_ZrEventList::textsOfSteps()
{
    ZrEventList events;
    QCOMPARE(events.UndoText(), QString());
    QCOMPARE(events.RedoText(), QString());
    const u64 id = events.Add(Evt(1, "Wreck"));
    QCOMPARE(events.UndoText(), S("Add event \"Wreck\""));
    events.Edit(id, Evt(1, "Rock"));
    QCOMPARE(events.UndoText(), S("Change event \"Wreck\""));
    events.Remove(id);
    QCOMPARE(events.UndoText(), S("Remove event \"Rock\""));
    events.Undo();
    QCOMPARE(events.RedoText(), S("Remove event \"Rock\""));
}

void tst_ZrEventList::nextAndPrevious()
{
    ZrEventList events;
    for (const double time : {10.0, 20.0, 20.0, 30.0, unknown})
        events.Add(Evt(time, "x"));
    QCOMPARE(events.Next(0.0), std::size_t(0));
    QCOMPARE(events.Next(10.0), std::size_t(1));
    QCOMPARE(events.Next(20.0), std::size_t(3));
    QCOMPARE(events.Next(30.0), std::size_t(5)); // one without a time follows nobody
    QCOMPARE(events.Previous(10.0), std::size_t(5));
    QCOMPARE(events.Previous(15.0), std::size_t(0));
    QCOMPARE(events.Previous(20.0), std::size_t(0));
    QCOMPARE(events.Previous(30.0), std::size_t(2));
    QCOMPARE(events.Previous(1e12), std::size_t(3));
    QCOMPARE(events.Next(unknown), std::size_t(5));
    QCOMPARE(events.Previous(unknown), std::size_t(5));
    QCOMPARE(ZrEventList().Next(0.0), std::size_t(0));
    QCOMPARE(ZrEventList().Previous(0.0), std::size_t(0));
}

void tst_ZrEventList::timesForSteps()
{
    ZrEventList events;
    for (const double time : {20.0, 10.0, unknown, 20.0})
        events.Add(Evt(time, "x"));
    QCOMPARE(events.Times(), (std::vector<double>{10, 20, 20}));
}

void tst_ZrEventList::loadAndSave()
{
    ZrEventList events;
    QVERIFY(events.Load(m_log)); // no file yet
    QCOMPARE(events.Count(), std::size_t(0));
    ZrLogEvt evt = Evt(7, "seven");
    evt.code = 12;
    evt.detail = S("more");
    evt.src = esVehicle;
    events.Add(evt);
    const u64 id = events.Add(Evt(3, "three"));
    QVERIFY(events.IsChanged());
    QString error;
    QVERIFY2(events.Save(&error), qPrintable(error));
    QVERIFY(!events.IsChanged());
    QCOMPARE(EventTexts(m_log), (QStringList{S("three"), S("seven")}));
    QCOMPARE(events.IndexOf(id), std::size_t(0)); // ids stay
    QCOMPARE(Names(), QStringList{QFileInfo(m_log).fileName() + S(".evt")}); // no lock left
    ZrEventList again;
    QVERIFY(again.Load(m_log));
    QCOMPARE(Texts(again), S("three seven"));
    QCOMPARE(again.At(1).code, i16(12));
    QCOMPARE(again.At(1).detail, S("more"));
    QCOMPARE(again.At(1).src, esVehicle);
    QCOMPARE(again.At(1).uid, events.At(1).uid);
    QVERIFY(!again.CanUndo());
    again.Remove(again.Id(0));
    QVERIFY(again.Save());
    QCOMPARE(EventTexts(m_log), QStringList{S("seven")});
}

void tst_ZrEventList::unchangedListIsNotWritten()
{
    ZrEventList events;
    QVERIFY(events.Load(m_log));
    QVERIFY(events.Save());
    QCOMPARE(Names(), QStringList());
    events.Add(Evt(1, "a"));
    events.Undo();
    QVERIFY(!events.IsChanged());
    QVERIFY(events.Save());
    QCOMPARE(Names(), QStringList());
}

void tst_ZrEventList::unicodeTexts()
{
    const QStringList texts{S("Wrack \u00e4\u00f6\u00df"), S("\u6c88\u8239"),
        S("\U0001F6A2 \U0001F9DC\u200d\u2640\ufe0f"), S("a\nb\tc"), QString(), QString(10000, QChar(0x2603)),
        QString(QChar(0xD800))};
    ZrEventList events;
    QVERIFY(events.Load(m_log));
    double time = 0.0;
    for (const QString& text : texts)
        events.Add(ZrLogEvt(time += 1.0, esUser, text));
    QVERIFY(events.Save());
    QCOMPARE(EventTexts(m_log), texts);
    ZrEventList again;
    QVERIFY(again.Load(m_log));
    for (int i = 0; i < texts.size(); ++i)
        QCOMPARE(again.At(static_cast<std::size_t>(i)).text, texts[i]);
}

void tst_ZrEventList::changesOfOthersStay()
{
    QVERIFY(WriteWhole(
        m_log + S(".evt"), EventFile({{1, S("a"), Uid(1)}, {2, S("b"), Uid(2)}, {3, S("c"), Uid(3)}})));
    ZrEventList mine;
    ZrEventList theirs;
    QVERIFY(mine.Load(m_log));
    QVERIFY(theirs.Load(m_log));
    const u64 b = mine.Id(1);
    theirs.Add(Evt(2.5, "theirs"));
    theirs.Edit(theirs.Id(0), Evt(1, "a, theirs"));
    theirs.Edit(theirs.Id(1), Evt(2, "b, theirs"));
    QVERIFY(theirs.Save());
    mine.Edit(b, Evt(5, "b"));
    mine.Add(Evt(4, "mine"));
    mine.Remove(mine.Id(1)); // c
    QVERIFY(mine.Save());
    QCOMPARE(EventTexts(m_log), (QStringList{S("a, theirs"), S("theirs"), S("mine"), S("b")}));
    QCOMPARE(Texts(mine), S("a, theirs theirs mine b"));
    QCOMPARE(mine.IndexOf(b), std::size_t(3));
    QVERIFY(!mine.IsChanged());
}

void tst_ZrEventList::removedElsewhere()
{
    QVERIFY(WriteWhole(m_log + S(".evt"), EventFile({{1, S("a"), Uid(1)}, {2, S("b"), Uid(2)}})));
    ZrEventList mine;
    QVERIFY(mine.Load(m_log));
    QString error;
    QVERIFY(ZrEventFile::Update(
        m_log,
        [](ZrEventFile& file) {
            file.events.clear();
            return true;
        },
        &error));
    mine.Edit(mine.Id(0), Evt(1, "A"));
    QVERIFY(mine.Save());
    QCOMPARE(EventTexts(m_log), QStringList{S("A")});
    QCOMPARE(Texts(mine), S("A"));
    mine.Undo();
    QVERIFY(mine.Save());
    QCOMPARE(EventTexts(m_log), QStringList{S("a")});
}

void tst_ZrEventList::eventsWithoutUid()
{
    QVERIFY(WriteWhole(m_log + S(".evt"),
        EventFile(
            {{1, S("a"), QUuid()}, {1, S("a"), QUuid()}, {2, S("b"), QUuid()}, {unknown, S("c"), QUuid()}})));
    ZrEventList events;
    QVERIFY(events.Load(m_log));
    QCOMPARE(Texts(events), S("a a b c"));
    const u64 second = events.Id(1);
    events.Edit(second, Evt(1, "A"));
    events.Remove(events.Id(3));
    QVERIFY(events.Save());
    QStringList texts = EventTexts(m_log);
    texts.sort();
    QCOMPARE(texts, (QStringList{S("A"), S("a"), S("b")}));
    events.Undo();
    events.Undo();
    QVERIFY(events.Save());
    QCOMPARE(EventTexts(m_log), (QStringList{S("a"), S("a"), S("b"), S("c")}));
}

void tst_ZrEventList::undoAfterSave()
{
    ZrEventList events;
    QVERIFY(events.Load(m_log));
    events.Add(Evt(1, "a"));
    events.Add(Evt(2, "b"));
    QVERIFY(events.Save());
    events.Undo();
    QVERIFY(events.IsChanged());
    QVERIFY(events.Save());
    QCOMPARE(EventTexts(m_log), QStringList{S("a")});
    events.Redo();
    QVERIFY(events.Save());
    QCOMPARE(EventTexts(m_log), (QStringList{S("a"), S("b")}));
}

void tst_ZrEventList::damagedFile()
{
    const QByteArray whole = EventFile({{1, S("a"), Uid(1)}, {2, S("b"), Uid(2)}});
    QVERIFY(WriteWhole(m_log + S(".evt"), whole.left(whole.size() - 5)));
    ZrEventList events;
    QString error;
    QVERIFY(!events.Load(m_log, &error));
    QCOMPARE(error, m_log + S(".evt: The event file is damaged; events may be missing"));
    QCOMPARE(Texts(events), S("a"));
    events.Add(Evt(5, "c"));
    QVERIFY(events.Save());
    QCOMPARE(EventTexts(m_log), (QStringList{S("a"), S("c")}));
    QCOMPARE(ReadWhole(m_log + S(".evt.damaged")), whole.left(whole.size() - 5)); // nothing is lost
}

void tst_ZrEventList::cannotBeSaved_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("no log") << 0;
    QTest::newRow("a folder in its place") << 1;
    QTest::newRow("no such folder") << 2;
}

void tst_ZrEventList::cannotBeSaved()
{
    QFETCH(int, kind);
    const QString path = kind == 0 ? QString() : kind == 1 ? m_log : m_folder->filePath(S("none/dive.log"));
    if (kind == 1)
        QVERIFY(QDir().mkdir(m_log + S(".evt")));
    ZrEventList events;
    QString error;
    if (kind > 0)
        QCOMPARE(events.Load(path, &error), kind == 2);
    if (kind == 1)
        QCOMPARE(error, m_log + S(".evt: The event file cannot be read"));
    events.Add(Evt(1, "a"));
    QVERIFY(!events.Save(&error));
    QVERIFY(!error.isEmpty());
    if (kind == 0)
        QCOMPARE(error, S("There is no recording to which the events belong"));
    QVERIFY(!events.Save(nullptr));
    QVERIFY(events.IsChanged()); // to be tried again
    QCOMPARE(Texts(events), S("a"));
}

QTEST_GUILESS_MAIN(tst_ZrEventList)
#include "tst_ZrEventList.moc"
