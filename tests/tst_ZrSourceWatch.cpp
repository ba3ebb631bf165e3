#include "ZrKit/recording/ZrSourceWatch.h"

#include <QtTest>

#include <cmath>

using Session = ZrRecordingSession;

class tst_ZrSourceWatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void states_data();
    void states();
    void rates();
    void recordsAreCountedWithoutLines();
    void lossEnds();
    void lossOfAFlow();
    void positionsHaveTheirOwnAge();
    void anotherSource();
    void badStates();
    void ofASession();
};

void tst_ZrSourceWatch::states_data()
{
    QTest::addColumn<int>("source");
    QTest::addColumn<double>("age"); // of the last data; NaN for none
    QTest::addColumn<int>("lines");
    QTest::addColumn<int>("damaged");
    QTest::addColumn<int>("dropped");
    QTest::addColumn<QString>("trouble");
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("reason");
    const double never = std::nan("");
    const QString none;
    const QString why = QStringLiteral("Refused");
    const auto row = [](const char* name, int source, double age, int lines, int damaged, int dropped,
                         const QString& trouble, int state, const QString& reason) {
        QTest::newRow(name) << source << age << lines << damaged << dropped << trouble << state << reason;
    };
    row("none", Session::sourceNone, never, 0, 0, 0, none, ZrSourceFacts::none, none);
    row("opening", Session::sourceOpening, never, 0, 0, 0, none, ZrSourceFacts::opening, none);
    row("failed", Session::sourceFailed, never, 0, 0, 0, none, ZrSourceFacts::failed,
        QStringLiteral("Cannot listen"));
    row("finished", Session::sourceFinished, 100.0, 9, 0, 0, none, ZrSourceFacts::finished, none);
    row("nothing yet", Session::sourceOpen, never, 0, 0, 0, none, ZrSourceFacts::waiting, none);
    row("now", Session::sourceOpen, 0.0, 9, 0, 0, none, ZrSourceFacts::receiving, none);
    row("just now", Session::sourceOpen, 5.0, 9, 0, 0, none, ZrSourceFacts::receiving, none);
    row("a while ago", Session::sourceOpen, 5.1, 9, 0, 0, none, ZrSourceFacts::silent, none);
    row("two bad lines", Session::sourceOpen, never, 2, 2, 0, none, ZrSourceFacts::waiting, none);
    row("three bad lines", Session::sourceOpen, never, 3, 3, 0, none, ZrSourceFacts::unreadable, none);
    row("one good line", Session::sourceOpen, 0.0, 4, 3, 0, none, ZrSourceFacts::receiving, none);
    row("endless lines", Session::sourceOpen, never, 0, 0, 3, none, ZrSourceFacts::unreadable, none);
    row("tried again", Session::sourceOpen, never, 0, 0, 0, why, ZrSourceFacts::troubled, why);
    row("lost", Session::sourceOpen, 9.0, 9, 0, 0, why, ZrSourceFacts::troubled, why);
    row("lost a moment ago", Session::sourceOpen, 4.0, 9, 0, 0, why, ZrSourceFacts::troubled, why);
    row("not lost", Session::sourceOpen, 1.0, 9, 0, 0, why, ZrSourceFacts::receiving, none);
}

void tst_ZrSourceWatch::states()
{
    QFETCH(int, source);
    QFETCH(double, age);
    QFETCH(int, lines);
    QFETCH(int, damaged);
    QFETCH(int, dropped);
    QFETCH(QString, trouble);
    const double now = 1000.0;
    ZrRecordingNews news;
    if (!std::isnan(age))
        news.state.lastData = now - age;
    news.lineCount = static_cast<u64>(lines);
    news.damagedLines = static_cast<u64>(damaged);
    news.droppedLines = static_cast<u64>(dropped);
    ZrSourceWatch watch;
    watch.Lose(trouble, now - 3.0);
    const ZrSourceFacts facts
        = watch.Look(static_cast<Session::eSource>(source), QStringLiteral("Cannot listen"), news, now);
    QTEST(int(facts.state), "state");
    QTEST(facts.reason, "reason");
    QCOMPARE(facts.badLines, quint64(damaged + dropped));
    QCOMPARE(facts.isText, lines > 0);
    QVERIFY(std::isnan(facts.perSecond)); // one look tells none
    QVERIFY(std::isnan(facts.bytesPerSecond));
}

void tst_ZrSourceWatch::rates()
{
    ZrSourceWatch watch;
    ZrRecordingNews news;
    ZrSourceFacts facts;
    for (int i = 0; i <= 10; ++i) {
        const double now = 0.5 * i;
        news.state.lastData = now;
        news.lineCount = static_cast<u64>(6 * i); // of which one is damaged
        news.damagedLines = static_cast<u64>(i);
        news.recordCount = static_cast<u64>(50 * i);
        news.byteCount = static_cast<u64>(400 * i);
        facts = watch.Look(Session::sourceOpen, QString(), news, now);
    }
    QCOMPARE(facts.perSecond, 10.0);
    QCOMPARE(facts.bytesPerSecond, 800.0);
    QVERIFY(facts.isText);
}

void tst_ZrSourceWatch::recordsAreCountedWithoutLines()
{
    ZrSourceWatch watch;
    ZrRecordingNews news;
    watch.Look(Session::sourceOpen, QString(), news, 0.0);
    news.recordCount = 30;
    const ZrSourceFacts facts = watch.Look(Session::sourceOpen, QString(), news, 2.0);
    QCOMPARE(facts.perSecond, 15.0);
    QVERIFY(!facts.isText);
}

/// What comes says that the connection stands, also when nobody does.
void tst_ZrSourceWatch::lossEnds()
{
    ZrSourceWatch watch;
    ZrRecordingNews news;
    watch.Lose(QStringLiteral("Refused"), 9.0);
    QCOMPARE(watch.Look(Session::sourceOpen, QString(), news, 10.0).state, ZrSourceFacts::troubled);
    watch.Lose(QString(), 10.5);
    QCOMPARE(watch.Look(Session::sourceOpen, QString(), news, 11.0).state, ZrSourceFacts::waiting);
    watch.Lose(QStringLiteral("Refused"), 11.5);
    news.state.lastData = 12.0;
    QCOMPARE(watch.Look(Session::sourceOpen, QString(), news, 12.0).state, ZrSourceFacts::receiving);
    QCOMPARE(watch.Look(Session::sourceOpen, QString(), news, 20.0).state, ZrSourceFacts::silent);
}

/// A connection that ends while data come is lost at once, and why is said until others come.
void tst_ZrSourceWatch::lossOfAFlow()
{
    const QString why = QStringLiteral("Closed");
    ZrSourceWatch watch;
    ZrRecordingNews news;
    news.lineCount = 9;
    news.state.lastData = 99.5;
    QCOMPARE(watch.Look(Session::sourceOpen, QString(), news, 99.6).state, ZrSourceFacts::receiving);
    watch.Lose(why, 100.0);
    // What came last before it may be told after it.
    news.lineCount = 10;
    news.state.lastData = 99.9;
    for (const double now : {100.0, 104.0, 105.5, 1000.0}) {
        const ZrSourceFacts facts = watch.Look(Session::sourceOpen, QString(), news, now);
        QCOMPARE(facts.state, ZrSourceFacts::troubled);
        QCOMPARE(facts.reason, why);
    }
    news.state.lastData = 1000.5;
    QCOMPARE(watch.Look(Session::sourceOpen, QString(), news, 1001.0).state, ZrSourceFacts::receiving);
}

/// A receiver without a fix is one that is heard.
void tst_ZrSourceWatch::positionsHaveTheirOwnAge()
{
    ZrSourceWatch watch;
    ZrRecordingNews news;
    news.lineCount = 1;
    news.state.lastData = 10.0;
    ZrSourceFacts facts = watch.Look(Session::sourceOpen, QString(), news, 10.0);
    QCOMPARE(facts.state, ZrSourceFacts::receiving);
    QVERIFY(std::isinf(facts.positionAge));
    QVERIFY(facts.LacksPosition());
    QVERIFY(!facts.IsBad());
    news.state.latitude.Set(50.0, 10.0);
    facts = watch.Look(Session::sourceOpen, QString(), news, 10.0);
    QCOMPARE(facts.positionAge, 0.0);
    QVERIFY(!facts.LacksPosition());
    news.state.lastData = 16.0;
    facts = watch.Look(Session::sourceOpen, QString(), news, 16.0);
    QCOMPARE(facts.state, ZrSourceFacts::receiving);
    QCOMPARE(facts.positionAge, 6.0);
    QVERIFY(facts.LacksPosition());
    // Of one that is silent that is not the trouble.
    facts = watch.Look(Session::sourceOpen, QString(), news, 30.0);
    QCOMPARE(facts.state, ZrSourceFacts::silent);
    QVERIFY(!facts.LacksPosition());
    QVERIFY(!ZrSourceFacts().LacksPosition());
}

void tst_ZrSourceWatch::anotherSource()
{
    ZrSourceWatch watch;
    ZrRecordingNews news;
    news.recordCount = 100;
    watch.Look(Session::sourceOpen, QString(), news, 0.0);
    watch.Lose(QStringLiteral("Refused"), 0.5);
    watch.Clear();
    news.recordCount = 200;
    const ZrSourceFacts facts = watch.Look(Session::sourceOpen, QString(), news, 1.0);
    QCOMPARE(facts.state, ZrSourceFacts::waiting);
    QVERIFY(std::isnan(facts.perSecond));
}

void tst_ZrSourceWatch::badStates()
{
    ZrSourceFacts facts;
    QVERIFY(!facts.IsBad());
    for (const auto state :
        {ZrSourceFacts::silent, ZrSourceFacts::unreadable, ZrSourceFacts::troubled, ZrSourceFacts::failed}) {
        facts.state = state;
        QVERIFY(facts.IsBad());
    }
    for (const auto state :
        {ZrSourceFacts::opening, ZrSourceFacts::waiting, ZrSourceFacts::receiving, ZrSourceFacts::finished}) {
        facts.state = state;
        QVERIFY(!facts.IsBad());
    }
}

void tst_ZrSourceWatch::ofASession()
{
    Session session([] { return 1.0; }, nullptr);
    ZrSourceWatch watch;
    QCOMPARE(watch.Look(session).state, ZrSourceFacts::none);
    session.Open({});
    QCOMPARE(watch.Look(session).state, ZrSourceFacts::opening);
    QTRY_COMPARE(watch.Look(session).state, ZrSourceFacts::none);
}

QTEST_GUILESS_MAIN(tst_ZrSourceWatch)
#include "tst_ZrSourceWatch.moc"
