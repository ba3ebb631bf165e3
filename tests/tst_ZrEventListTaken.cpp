// Events of the log that its event file could not take over when a list was loaded.

#include "ZrKit/review/ZrEventFile.h"
#include "ZrKit/review/ZrEventList.h"
#include "ZrSurveyLog.h"

#include <limits>

namespace {

using survey::EventFile;
using survey::EventTexts;
using survey::S;
using survey::Uid;

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

ZrLogEvt Evt(double time, const char* text, const QUuid& uid = QUuid())
{
    ZrLogEvt evt(time, esUser, S(text));
    evt.uid = uid;
    return evt;
}

QString Texts(const ZrEventList& events)
{
    QStringList texts;
    for (std::size_t i = 0; i < events.Count(); ++i)
        texts << events.At(i).text;
    return texts.join(QLatin1Char(' '));
}

u64 IdOf(const ZrEventList& events, const char* text)
{
    for (std::size_t i = 0; i < events.Count(); ++i) {
        if (events.At(i).text == S(text))
            return events.Id(i);
    }
    return 0;
}

} // namespace

class tst_ZrEventListTaken : public QObject, private survey::LogFolder
{
    Q_OBJECT

private Q_SLOTS:

    void init()
    {
        Begin();
        m_file = m_log + S(".evt");
        m_taken = m_log + S(".evt.json");
    }

    void cleanup() { End(); }

    void unsavedOfTheLog();
    void takenOverMeanwhile();
    void changedElsewhereMeanwhile();
    void removedStayAway_data();
    void removedStayAway();
    void takenOverByAnEarlierIndex();
    void notKeptThatTheyAreTakenOver();

private:
    /// The texts of the file after the log was scanned.
    QStringList TakenOver(const std::vector<ZrLogEvt>& found) const
    {
        std::vector<ZrLogEvt> events;
        QString error;
        return ZrEventFile::TakeOver(m_log, found, events, &error) ? EventTexts(m_log) : QStringList{error};
    }

    QString m_file;
    QString m_taken;
};

/// Those of the log that the event file did not take.
void tst_ZrEventListTaken::unsavedOfTheLog()
{
    QVERIFY(WriteWhole(m_log + S(".evt"), EventFile({{2.0, S("saved"), Uid(1)}, {3.0, S("twin"), QUuid()}})));
    ZrEventList events;
    QVERIFY(events.Load(m_log));
    ZrLogEvt saved = Evt(2.0, "saved");
    saved.uid = Uid(1);
    events.AddUnsaved({Evt(1.0, "first"), saved, Evt(3.0, "twin"), Evt(3.0, "twin"), Evt(unknown, "none")});
    QCOMPARE(Texts(events), S("first saved twin twin none"));
    QVERIFY(events.IsChanged() && !events.CanUndo());
    events.AddUnsaved({});
    QCOMPARE(events.Count(), std::size_t(5));
    QVERIFY(events.Remove(events.Id(4)));
    QString error;
    QVERIFY2(events.Save(&error), qPrintable(error));
    QCOMPARE(EventTexts(m_log), (QStringList{S("first"), S("saved"), S("twin"), S("twin")}));
    QVERIFY(!events.IsChanged());
}

/// By a scan of another opening: each of them stays one.
void tst_ZrEventListTaken::takenOverMeanwhile()
{
    const std::vector<ZrLogEvt> found{Evt(1.0, "a", Uid(1)), Evt(2.0, "b", Uid(2)), Evt(3.0, "c", Uid(3)),
        Evt(4.0, "twin"), Evt(4.0, "twin"), Evt(5.0, "nameless")};
    ZrEventList events;
    QVERIFY(events.Load(m_log));
    events.AddUnsaved(found);
    QCOMPARE(Texts(events), S("a b c twin twin nameless"));
    QCOMPARE(TakenOver(found).size(), 6);
    ZrLogEvt moved = Evt(6.0, "moved");
    QVERIFY(events.Edit(IdOf(events, "b"), moved));
    QVERIFY(events.Edit(IdOf(events, "nameless"), Evt(5.0, "named")));
    QVERIFY(events.Remove(IdOf(events, "c")));
    QVERIFY(events.Remove(IdOf(events, "twin")));
    const u64 id = events.Add(Evt(7.0, "new"));
    QString error;
    QVERIFY2(events.Save(&error), qPrintable(error));
    const QStringList texts{S("a"), S("twin"), S("named"), S("moved"), S("new")};
    QCOMPARE(EventTexts(m_log), texts);
    QCOMPARE(Texts(events), texts.join(QLatin1Char(' ')));
    QCOMPARE(IdOf(events, "new"), id);
    QVERIFY(!events.IsChanged());
    QCOMPARE(TakenOver(found), texts);
}

/// What was left alone here is as it is there.
void tst_ZrEventListTaken::changedElsewhereMeanwhile()
{
    const std::vector<ZrLogEvt> found{Evt(1.0, "a", Uid(1)), Evt(2.0, "b", Uid(2)), Evt(3.0, "c", Uid(3))};
    ZrEventList events;
    QVERIFY(events.Load(m_log));
    events.AddUnsaved(found);
    QCOMPARE(TakenOver(found).size(), 3);
    QVERIFY(WriteWhole(m_file, EventFile({{1.0, S("a, edited"), Uid(1)}, {3.0, S("c, edited"), Uid(3)}})));
    QVERIFY(events.Edit(IdOf(events, "c"), Evt(3.0, "c, edited here")));
    QVERIFY(events.Save());
    QCOMPARE(EventTexts(m_log), (QStringList{S("a, edited"), S("c, edited here")}));
    QCOMPARE(Texts(events), S("a, edited c, edited here"));
}

void tst_ZrEventListTaken::removedStayAway_data()
{
    QTest::addColumn<bool>("isAll");
    QTest::newRow("one") << false;
    QTest::newRow("all") << true;
}

/// A folder that could not be written can be now.
void tst_ZrEventListTaken::removedStayAway()
{
    QFETCH(bool, isAll);
    const std::vector<ZrLogEvt> found{Evt(1.0, "a", Uid(1)), Evt(2.0, "b")};
    ZrEventList events;
    QVERIFY(events.Load(m_log));
    QVERIFY(QDir().mkdir(m_file));
    events.AddUnsaved(found);
    QVERIFY(events.Remove(IdOf(events, "a")));
    QVERIFY(!isAll || events.Remove(IdOf(events, "b")));
    QVERIFY(!events.Save());
    QVERIFY(events.IsChanged());
    QVERIFY(QDir().rmdir(m_file));
    QString error;
    QVERIFY2(events.Save(&error), qPrintable(error));
    const QStringList left = isAll ? QStringList() : QStringList{S("b")};
    QCOMPARE(EventTexts(m_log), left);
    QVERIFY(!events.IsChanged());
    QCOMPARE(TakenOver(found), left);
    QCOMPARE(TakenOver({found[0], found[1], Evt(3.0, "c")}), left + QStringList{S("c")});
    // They can come back by undo.
    QVERIFY(events.Undo() != 0 && events.Save());
    QCOMPARE(Texts(events), isAll ? S("b c") : S("a b c"));
}

/// Though nothing else tells that.
void tst_ZrEventListTaken::takenOverByAnEarlierIndex()
{
    const std::vector<ZrLogEvt> found{Evt(1.0, "a", Uid(1)), Evt(2.0, "b", Uid(2)), Evt(3.0, "c", Uid(3))};
    QVERIFY(WriteWhole(m_file, EventFile({{2.0, S("b"), Uid(2)}})));
    ZrEventList events;
    QVERIFY(events.Load(m_log));
    events.AddUnsaved(found, 2);
    QCOMPARE(Texts(events), S("b c"));
    QVERIFY(events.Save());
    QCOMPARE(TakenOver(found), (QStringList{S("b"), S("c")}));
}

/// The events are saved all the same, and it is tried again.
void tst_ZrEventListTaken::notKeptThatTheyAreTakenOver()
{
    const std::vector<ZrLogEvt> found{
        Evt(1.0, "a", Uid(1)), Evt(2.0, "b", Uid(2)), Evt(3.0, "nameless"), Evt(4.0, "edit")};
    ZrEventList events;
    QVERIFY(events.Load(m_log));
    events.AddUnsaved(found);
    QVERIFY(events.Remove(IdOf(events, "a")));
    QVERIFY(events.Edit(IdOf(events, "edit"), Evt(4.0, "edited")));
    QVERIFY(QDir().mkpath(m_taken + S("/inside")));
    const QStringList left{S("b"), S("nameless"), S("edited")};
    for (int i = 0; i < 2; ++i) {
        QString error;
        QVERIFY(!events.Save(&error));
        QVERIFY2(error.startsWith(m_taken + S(": ")), qPrintable(error));
        QCOMPARE(EventTexts(m_log), left);
        QCOMPARE(Texts(events), left.join(QLatin1Char(' ')));
        QVERIFY(events.IsChanged());
    }
    QVERIFY(QDir(m_taken).removeRecursively());
    QVERIFY(events.Save());
    QVERIFY(!events.IsChanged());
    QCOMPARE(EventTexts(m_log), left);
    QCOMPARE(TakenOver(found), left);
}

QTEST_GUILESS_MAIN(tst_ZrEventListTaken)
#include "tst_ZrEventListTaken.moc"
