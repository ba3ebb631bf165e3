// One history for everything in a plan.

#include "ZrKit/planning/ZrPlanDocument.h"
#include "ZrUtil/ZrWpt.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <utility>

namespace {

const ZrArea harbour{QStringLiteral("Harbour"), {{50.0, -4.0}, {50.01, -4.0}, {50.01, -3.99}}};
const ZrArea rock{QStringLiteral("Rock"), {{50.1, -4.0}, {50.11, -4.0}, {50.11, -3.99}}};

void AddOne(ZrPlanDocument& plan)
{
    plan.History().Add(50.0 + 0.01 * plan.Route().GetCount(), -4.0, eZrWptBlue, ZrWpts::eAddTail);
    plan.Edited();
}

} // namespace

class tst_ZrPlanDocumentHistory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void allInOrder();
    void cleanAtTheFile();
    void nothingChangedIsNoStep();
    void editsOutsideStay();
    void newStepEndsRedo();
    void sharedStates();
    void finishSketch();
    void finishEditedSketch();
    void finishMovesBetweenKinds();
    void twoCornersAreNoArea();
    void deleteArea();
    void revision();
};

void tst_ZrPlanDocumentHistory::allInOrder()
{
    ZrPlanDocument plan((QString()));
    AddOne(plan);
    plan.SetAreas({harbour});
    AddOne(plan);
    plan.SetNoGo({rock});
    plan.SetMargin(20.0);
    QCOMPARE(plan.History().Steps(), 5);
    QCOMPARE(plan.History().UndoName(), QStringLiteral("Change distance to no-go areas"));

    QSignalSpy changed(&plan, &ZrPlanDocument::Changed);
    QVERIFY(plan.Undo());
    QCOMPARE(changed.count(), 1);
    QCOMPARE(plan.Margin(), 0.0);
    QCOMPARE(plan.NoGo().size(), std::size_t(1));
    QVERIFY(plan.Undo());
    QVERIFY(plan.NoGo().empty());
    QCOMPARE(plan.Route().GetCount(), 2);
    QVERIFY(plan.Undo());
    QCOMPARE(plan.Route().GetCount(), 1);
    QCOMPARE(plan.Areas().size(), std::size_t(1));
    QVERIFY(plan.Undo());
    QVERIFY(plan.Areas().empty());
    QVERIFY(plan.Undo());
    QVERIFY(plan.Route().IsEmpty());
    QVERIFY(!plan.Undo());
    QVERIFY(!plan.IsDirty());

    while (plan.Redo()) { }
    QCOMPARE(plan.Route().GetCount(), 2);
    QCOMPARE(plan.Areas()[0].name, harbour.name);
    QVERIFY(plan.Areas()[0].ring == harbour.ring);
    QCOMPARE(plan.NoGo()[0].name, rock.name);
    QCOMPARE(plan.Margin(), 20.0);
}

void tst_ZrPlanDocumentHistory::cleanAtTheFile()
{
    const QTemporaryDir dir;
    ZrPlanDocument plan((QString()));
    AddOne(plan);
    plan.SetAreas({harbour});
    QVERIFY(plan.Save(dir.filePath(QStringLiteral("a.json"))));
    plan.SetMargin(5.0);
    QVERIFY(plan.IsDirty());
    plan.Undo();
    QVERIFY(!plan.IsDirty());
    plan.Undo();
    QVERIFY(plan.IsDirty());
    plan.Redo();
    QVERIFY(!plan.IsDirty());
}

void tst_ZrPlanDocumentHistory::nothingChangedIsNoStep()
{
    ZrPlanDocument plan((QString()));
    plan.SetAreas({harbour});
    QSignalSpy changed(&plan, &ZrPlanDocument::Changed);
    plan.SetAreas({harbour});
    plan.SetNoGo({});
    plan.SetMargin(0.0);
    plan.ChangeAreas(QStringLiteral("Nothing"), [](ZrPlanAreas&) {});
    QCOMPARE(plan.History().Steps(), 1);
    QCOMPARE(changed.count(), 0);
}

void tst_ZrPlanDocumentHistory::editsOutsideStay()
{
    ZrPlanDocument plan((QString()));
    AddOne(plan);
    plan.Route().speed = 3.0; // without the history
    plan.SetMargin(7.0);
    QVERIFY(plan.Undo());
    QCOMPARE(plan.Margin(), 0.0);
    QCOMPARE(plan.Route().speed, 3.0);
    QVERIFY(plan.Undo());
    QVERIFY(plan.Route().speed != 3.0);
}

void tst_ZrPlanDocumentHistory::newStepEndsRedo()
{
    ZrPlanDocument plan((QString()));
    plan.SetAreas({harbour});
    plan.Undo();
    QVERIFY(plan.History().CanRedo());
    plan.SetMargin(2.0);
    QVERIFY(!plan.History().CanRedo());
    QVERIFY(plan.Areas().empty());
}

/// Areas that a step left alone are not copied for it.
void tst_ZrPlanDocumentHistory::sharedStates()
{
    ZrPlanDocument plan((QString()));
    ZrArea large = harbour;
    large.ring.assign(100000, {50.0, -4.0});
    plan.SetAreas({large});
    const i64 before = plan.History().Bytes();
    QVERIFY(before > 1000000);
    for (int i = 0; i < 20; ++i)
        AddOne(plan);
    QVERIFY(plan.History().Bytes() < before + 200000);
}

void tst_ZrPlanDocumentHistory::finishSketch()
{
    ZrPlanDocument plan((QString()));
    plan.SetSketch({harbour.ring, false, -1, false});
    QVERIFY(plan.IsDirty());
    QVERIFY(plan.FinishSketch());
    QVERIFY(plan.Sketch().IsEmpty());
    QCOMPARE(plan.Areas().size(), std::size_t(1));
    QCOMPARE(plan.Areas()[0].name, QStringLiteral("Area 1"));
    plan.SetSketch({rock.ring, true, -1, false});
    QVERIFY(plan.FinishSketch());
    QCOMPARE(plan.NoGo().size(), std::size_t(1));
    QCOMPARE(plan.NoGo()[0].name, QStringLiteral("Keep clear 1"));
    QCOMPARE(plan.History().Steps(), 2);
    plan.Undo();
    QVERIFY(plan.NoGo().empty());
    plan.Undo();
    QVERIFY(plan.Areas().empty());
}

void tst_ZrPlanDocumentHistory::finishEditedSketch()
{
    ZrPlanDocument plan((QString()));
    plan.SetAreas({harbour, rock});
    plan.SetSketch({rock.ring, false, 0, false});
    QVERIFY(plan.FinishSketch());
    QCOMPARE(plan.Areas().size(), std::size_t(2));
    QCOMPARE(plan.Areas()[0].name, harbour.name);
    QVERIFY(plan.Areas()[0].ring == rock.ring);
    plan.Undo();
    QVERIFY(plan.Areas()[0].ring == harbour.ring);
    // As it was: no step.
    const int steps = plan.History().Steps();
    plan.SetSketch({harbour.ring, false, 0, false});
    QVERIFY(plan.FinishSketch());
    QCOMPARE(plan.History().Steps(), steps);
    // One that has gone meanwhile is a new one.
    plan.SetSketch({rock.ring, false, 17, false});
    QVERIFY(plan.FinishSketch());
    QCOMPARE(plan.Areas().size(), std::size_t(3));
}

void tst_ZrPlanDocumentHistory::finishMovesBetweenKinds()
{
    ZrPlanDocument plan((QString()));
    plan.SetAreas({harbour});
    plan.SetSketch({harbour.ring, true, 0, false});
    QVERIFY(plan.FinishSketch());
    QVERIFY(plan.Areas().empty());
    QCOMPARE(plan.NoGo().size(), std::size_t(1));
    QCOMPARE(plan.NoGo()[0].name, harbour.name);
    QVERIFY(plan.Undo());
    QCOMPARE(plan.Areas().size(), std::size_t(1));
    QVERIFY(plan.NoGo().empty());
}

void tst_ZrPlanDocumentHistory::twoCornersAreNoArea()
{
    ZrPlanDocument plan((QString()));
    plan.SetSketch({{{50.0, -4.0}, {50.1, -4.0}}, false, -1, false});
    QVERIFY(!plan.FinishSketch());
    QVERIFY(plan.Sketch().IsEmpty());
    QVERIFY(plan.Areas().empty());
    QVERIFY(!plan.IsDirty());
    QVERIFY(!plan.FinishSketch());
}

void tst_ZrPlanDocumentHistory::deleteArea()
{
    ZrPlanDocument plan((QString()));
    plan.SetAreas({harbour, rock});
    plan.SetNoGo({rock});
    for (const int none : {-1, 2})
        plan.DeleteArea(none, false);
    plan.DeleteArea(1, true);
    QCOMPARE(plan.History().Steps(), 2);
    plan.DeleteArea(0, false);
    QCOMPARE(plan.Areas().size(), std::size_t(1));
    QCOMPARE(plan.Areas()[0].name, rock.name);
    QCOMPARE(plan.History().UndoName(), QStringLiteral("Delete Harbour"));
    plan.DeleteArea(0, true);
    QVERIFY(plan.NoGo().empty());
    plan.Undo();
    plan.Undo();
    QCOMPARE(plan.Areas()[0].name, harbour.name);
}

void tst_ZrPlanDocumentHistory::revision()
{
    ZrPlanDocument plan((QString()));
    int last = plan.Revision();
    const auto isOther = [&] { return std::exchange(last, plan.Revision()) != plan.Revision(); };
    AddOne(plan);
    QVERIFY(isOther());
    plan.SetMargin(1.0);
    QVERIFY(isOther());
    plan.Undo();
    QVERIFY(isOther());
    const ZrPlanState state = plan.State();
    QVERIFY(plan.New());
    QVERIFY(isOther());
    QVERIFY(plan.Restore(state));
    QVERIFY(isOther());
    plan.SetMargin(0.0);
    QVERIFY(!isOther());
}

QTEST_GUILESS_MAIN(tst_ZrPlanDocumentHistory)
#include "tst_ZrPlanDocumentHistory.moc"
