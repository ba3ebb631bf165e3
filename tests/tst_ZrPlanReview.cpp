// A plan that is looked over while it is edited.

#include "ZrKit/planning/ZrPlanDocument.h"
#include "ZrKit/planning/ZrPlanReader.h"
#include "ZrKit/planning/ZrPlanReview.h"
#include "ZrSanitizer.h"

#include <QSignalSpy>
#include <QtTest>

#include <memory>

class tst_ZrPlanReview : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void followsEdits();
    void newestOfMany();
    void endsWhileRunning();
    void stateComesBack();
    void badState_data();
    void badState();
};

namespace {

void Add(ZrPlanDocument& plan, double lat, double lng)
{
    plan.History().Add(lat, lng, eZrWptBlue, ZrWpts::eAddTail);
    plan.Edited();
}

ZrArea Square(double lat, double lng)
{
    return {QStringLiteral("Wreck"),
        {{lat, lng}, {lat, lng + 0.01}, {lat + 0.01, lng + 0.01}, {lat + 0.01, lng}}};
}

} // namespace

void tst_ZrPlanReview::followsEdits()
{
    ZrPlanDocument plan{QString()};
    ZrPlanReview review(plan);
    QSignalSpy ready(&review, &ZrPlanReview::Ready);
    QTRY_VERIFY(review.IsCurrent());
    QVERIFY(review.Path());
    QCOMPARE(review.Path()->Legs().size(), std::size_t(0));
    Add(plan, 50.0, -4.0);
    Add(plan, 50.0, -3.9);
    QVERIFY(!review.IsCurrent());
    QTRY_VERIFY(review.IsCurrent());
    QCOMPARE(review.Path()->Legs().size(), std::size_t(1));
    QCOMPARE(review.Count(ZrRouteFinding::eError), 0);
    plan.SetNoGo({Square(49.995, -3.96)});
    QTRY_COMPARE(review.Count(ZrRouteFinding::eError), 1);
    plan.SetNoGo({});
    QTRY_COMPARE(review.Count(ZrRouteFinding::eError), 0);
    QVERIFY(ready.count() >= 4);
}

void tst_ZrPlanReview::newestOfMany()
{
    ZrPlanDocument plan{QString()};
    ZrPlanReview review(plan);
    QTRY_VERIFY(review.IsCurrent());
    QSignalSpy ready(&review, &ZrPlanReview::Ready);
    const int edits = underSanitizer ? 50 : 500;
    for (int i = 0; i < edits; ++i) {
        plan.History().Add(50.0 + i * 1e-4, -4.0, eZrWptBlue, ZrWpts::eAddTail);
        plan.Edited();
    }
    QTRY_VERIFY(review.IsCurrent());
    QCOMPARE(static_cast<int>(review.Path()->Legs().size()), edits - 1);
    // Each edit came before the event loop could hand over what had been looked at.
    QCOMPARE(ready.count(), 2);
}

void tst_ZrPlanReview::endsWhileRunning()
{
    ZrPlanDocument plan{QString()};
    // Each run takes longer than the two edits; with fewer waypoints where each of them takes longer.
    const int waypoints = underSanitizer ? 150 : 3000;
    for (int i = 0; i < waypoints; ++i)
        plan.Route().Add(50.0 + i * 1e-4, -4.0 + i % 2, eZrWptBlue, ZrWpts::eAddTail);
    for (int i = 0; i < 10; ++i) {
        auto review = std::make_unique<ZrPlanReview>(plan);
        plan.Edited();
        plan.Edited();
    }
    QCoreApplication::processEvents();
    QCOMPARE(plan.Route().GetCount(), waypoints);
}

void tst_ZrPlanReview::stateComesBack()
{
    ZrPlanDocument plan{QString()};
    Add(plan, 50.0, -4.0);
    Add(plan, 50.1, -4.0);
    plan.Route().GetHead()->name = QStringLiteral("Bøye");
    plan.SetAreas({Square(50.0, -4.0)});
    plan.SetNoGo({Square(51.0, -4.0), Square(52.0, -4.0)});
    plan.SetMargin(12.5);
    const ZrPlanState state = plan.State();
    plan.New();
    QCOMPARE(plan.Route().GetCount(), 0);
    QSignalSpy changed(&plan, &ZrPlanDocument::Changed);
    plan.Restore(state);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(plan.Route().GetCount(), 2);
    QCOMPARE(plan.Route().GetHead()->name, QStringLiteral("Bøye"));
    QCOMPARE(plan.Areas().size(), std::size_t(1));
    QCOMPARE(plan.NoGo().size(), std::size_t(2));
    QCOMPARE(plan.Margin(), 12.5);
    QVERIFY(plan.IsDirty());
    QVERIFY(!plan.History().CanUndo());
}

void tst_ZrPlanReview::badState_data()
{
    QTest::addColumn<QByteArray>("state");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no JSON") << QByteArray("abc");
    QTest::newRow("other JSON") << QByteArray("{\"format\":\"other\"}");
    QTest::newRow("waypoint without position")
        << QByteArray("{\"format\":\"zr-plan-draft\",\"route\":{\"waypoints\":[{\"name\":\"A\"}]}}");
}

void tst_ZrPlanReview::badState()
{
    QFETCH(QByteArray, state);
    ZrPlanDocument plan{QString()};
    Add(plan, 50.0, -4.0);
    ZrPlanReader reader;
    const bool isDraft = reader.FromDraft(state, QStringLiteral("State"));
    QVERIFY(!isDraft || !plan.Take(reader));
    QVERIFY(!(isDraft ? plan.Error() : reader.Error()).isEmpty());
    QCOMPARE(plan.Route().GetCount(), 1);
}

QTEST_GUILESS_MAIN(tst_ZrPlanReview)
#include "tst_ZrPlanReview.moc"
