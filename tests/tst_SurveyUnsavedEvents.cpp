// Events in memory only: what was put away comes back, whatever came meanwhile.

#include "apps/ZrSurvey/UnsavedEvents.h"

#include <QSignalSpy>
#include <QStringList>
#include <QtTest>

namespace {

ZrLogEvt Event(const char* text, double time, bool hasUid = true)
{
    ZrLogEvt event(time, esUser, QString::fromUtf8(text));
    if (hasUid)
        event.uid = QUuid::createUuid();
    return event;
}

QStringList TextsOf(const UnsavedEvents::Group& group)
{
    QStringList texts;
    for (const ZrLogEvt& event : group.events)
        texts += event.text;
    return texts;
}

} // namespace

class tst_SurveyUnsavedEvents : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void comesBack();
    void comesBackBesideOthers_data();
    void comesBackBesideOthers();
    void comesBackOnce();
};

void tst_SurveyUnsavedEvents::comesBack()
{
    UnsavedEvents events;
    events.Add(QStringLiteral("/a.log"), {Event("one", 1.0), Event("two", 2.0)}, QStringLiteral("Full."));
    events.Add(QString(), {Event("three", 3.0)}, QStringLiteral("It could not begin."));
    const QString told = events.Text();
    const auto groups = events.Groups();
    events.Forget();
    QVERIFY(events.IsEmpty());
    QSignalSpy changed(&events, &UnsavedEvents::Changed);
    events.Restore(groups);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(events.Count(), std::size_t(3));
    QCOMPARE(events.Text(), told);
}

void tst_SurveyUnsavedEvents::comesBackBesideOthers_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("of recordings that could not begin") << QString();
    QTest::newRow("of one recording") << QStringLiteral("/a.log");
}

void tst_SurveyUnsavedEvents::comesBackBesideOthers()
{
    QFETCH(QString, path);
    UnsavedEvents events;
    events.Add(path, {Event("one", 1.0), Event("two", 2.0)}, QStringLiteral("before"));
    const auto groups = events.Groups();
    events.Forget();
    events.Add(path, {Event("three", 3.0)}, QStringLiteral("since"));
    events.Restore(groups);
    QCOMPARE(events.Groups().size(), std::size_t(1));
    QCOMPARE(TextsOf(events.Groups().front()),
        QStringList({QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three")}));
    QCOMPARE(events.Groups().front().reason, QStringLiteral("since"));
}

/// An event that is told of again is no second one, and is as it was told last.
void tst_SurveyUnsavedEvents::comesBackOnce()
{
    const QString path = QStringLiteral("/a.log");
    const ZrLogEvt plain = Event("plain", 4.0, false);
    UnsavedEvents events;
    ZrLogEvt one = Event("one", 1.0);
    events.Set(path, {one, Event("two", 2.0), plain}, QStringLiteral("before"));
    const auto groups = events.Groups();
    events.Forget();
    one.text = QStringLiteral("one, renamed");
    events.Set(path, {one, plain, Event("plain", 5.0, false)}, QStringLiteral("since"));
    events.Restore(groups);
    QCOMPARE(events.Groups().size(), std::size_t(1));
    QCOMPARE(TextsOf(events.Groups().front()),
        QStringList({QStringLiteral("two"), QStringLiteral("one, renamed"), QStringLiteral("plain"),
            QStringLiteral("plain")}));
}

QTEST_GUILESS_MAIN(tst_SurveyUnsavedEvents)
#include "tst_SurveyUnsavedEvents.moc"
