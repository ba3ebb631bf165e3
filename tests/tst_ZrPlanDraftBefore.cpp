// The draft that a run before has left, until somebody looks at it.

#include "ZrKit/planning/ZrPlanDrafts.h"
#include "ZrPlanFixture.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <thread>

class tst_ZrPlanDraftBefore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void readElsewhere();
    void editedWhileTheDraftIsRead();
    void draftThatMovedIsNotThereTwice();
    void damagedDraftThatMoved();
    void foreignDraftIsDiscarded();
    void unseenDraftIsKept();

private:
    QString At(const char* name) const { return m_dir->filePath(QString::fromUtf8(name)); }

    std::unique_ptr<QTemporaryDir> m_dir;
};

void tst_ZrPlanDraftBefore::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

/// The event loop waits neither for the plan nor for its going from where it was kept.
void tst_ZrPlanDraftBefore::readElsewhere()
{
    ZrPlanDocument plan(At("draft"), At("plans"));
    AddOne(plan, 1);
    QVERIFY(plan.New());
    const QString kept = plan.KeptPath();
    ZrPlanReader reader;
    std::thread other([&] { reader.LoadDraft(kept); });
    other.join();
    QVERIFY2(plan.Take(reader), qPrintable(plan.Error()));
    QVERIFY(IsNumber(plan, 1));
    QTRY_VERIFY(!QFile::exists(kept));
    QCOMPARE(Content(At("draft")), plan.State().ToDraft());
}

void tst_ZrPlanDraftBefore::editedWhileTheDraftIsRead()
{
    {
        ZrPlanDocument plan(At("draft"), At("plans"));
        AddOne(plan, 3);
    }
    ZrPlanDocument plan(At("draft"), At("plans"));
    ZrPlanReader reader;
    QVERIFY(reader.LoadDraft(At("draft")));
    AddOne(plan, 7); // replaces the draft, which is kept
    QCOMPARE(plan.Kept()->List().size(), std::size_t(1));
    QVERIFY(plan.Take(reader));
    QVERIFY(IsNumber(plan, 3));
    ZrPlanDocument edited((QString()));
    QVERIFY(TakeState(edited, ZrPlanDrafts(At("plans")).Read(plan.KeptPath())));
    QVERIFY(IsNumber(edited, 7));
    plan.FlushDraft();
    ZrPlanDocument after(At("draft"), At("plans"));
    QVERIFY(after.RestoreDraft());
    QVERIFY(IsNumber(after, 3));
}

/// Read from where it went, the plan of before is the plan, and no longer one of those put away.
void tst_ZrPlanDraftBefore::draftThatMovedIsNotThereTwice()
{
    {
        ZrPlanDocument plan(At("draft"), At("plans"));
        AddOne(plan, 1);
    }
    ZrPlanDocument plan(At("draft"), At("plans"));
    QCOMPARE(plan.ForeignPath(), At("draft"));
    AddOne(plan, 2);
    const QString moved = plan.ForeignPath();
    QCOMPARE(plan.Kept()->List().size(), std::size_t(1));
    QCOMPARE(moved, plan.Kept()->List()[0].path);
    ZrPlanReader reader;
    QVERIFY(reader.LoadDraft(moved));
    QVERIFY(plan.Take(reader));
    QVERIFY(IsNumber(plan, 1));
    QCOMPARE(plan.ForeignPath(), QString());
    plan.FlushDraft();
    const std::vector<ZrPlanDrafts::Entry> kept = plan.Kept()->List();
    QCOMPARE(kept.size(), std::size_t(1));
    ZrPlanDocument other((QString()));
    QVERIFY(TakeState(other, ZrPlanDrafts(At("plans")).Read(kept[0].path)));
    QVERIFY(IsNumber(other, 2));
}

void tst_ZrPlanDraftBefore::damagedDraftThatMoved()
{
    QVERIFY(Write(At("draft"), "{\"format\": \"zr"));
    ZrPlanDocument plan(At("draft"), At("plans"));
    AddOne(plan, 2);
    QCOMPARE(plan.ForeignPath(), plan.AsidePath());
    QCOMPARE(plan.ForeignPath(), At("draft.damaged"));
    ZrPlanReader reader;
    QVERIFY(!reader.LoadDraft(plan.ForeignPath()));
    QVERIFY(!plan.Take(reader));
    QVERIFY(plan.Error().contains(At("draft.damaged")));
    QVERIFY(IsNumber(plan, 2));
    QCOMPARE(plan.ForeignPath(), QString());
    QVERIFY(plan.Kept()->List().empty());
    QCOMPARE(Content(At("draft.damaged")), QByteArray("{\"format\": \"zr"));
}

void tst_ZrPlanDraftBefore::foreignDraftIsDiscarded()
{
    {
        ZrPlanDocument plan(At("draft"), At("plans"));
        AddOne(plan, 1);
    }
    ZrPlanDocument plan(At("draft"), At("plans"));
    plan.DiscardDraft();
    QCOMPARE(plan.ForeignPath(), QString());
    ZrPlanDocument none(At("none"), At("plans"));
    QCOMPARE(none.ForeignPath(), QString());
}

/// A program that begins with another plan, before it has looked at what the last run has left.
void tst_ZrPlanDraftBefore::unseenDraftIsKept()
{
    {
        ZrPlanDocument plan(At("draft"), At("plans"));
        AddOne(plan, 3);
        ZrPlanDocument other((QString()));
        AddOne(other, 1);
        QVERIFY(other.Save(At("other.json")));
    }
    {
        ZrPlanDocument plan(At("draft"), At("plans"));
        QVERIFY(plan.Open(At("other.json")));
        QCOMPARE(plan.Kept()->List().size(), std::size_t(1));
        QVERIFY(plan.RestoreKept(plan.Kept()->List()[0].path));
        QVERIFY(IsNumber(plan, 3));
    }
    {
        ZrPlanDocument plan(At("draft"), At("plans"));
        AddOne(plan, 7); // replaces the draft
        QCOMPARE(plan.Kept()->List().size(), std::size_t(1));
    }
    QVERIFY(Write(At("draft"), "garbage"));
    ZrPlanDocument plan(At("draft"), At("plans"));
    AddOne(plan, 8);
    QCOMPARE(Content(At("draft.damaged")), QByteArray("garbage"));
    QVERIFY(plan.HasDraft());
}

QTEST_GUILESS_MAIN(tst_ZrPlanDraftBefore)
#include "tst_ZrPlanDraftBefore.moc"
