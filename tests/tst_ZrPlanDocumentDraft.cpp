// The draft of a plan.

#include "ZrKit/planning/ZrPlanReader.h"
#include "ZrPlanFixture.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <thread>

class tst_ZrPlanDocumentDraft : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void draftIsThereAtOnce();
    void dragIsWrittenWhenItPauses();
    void longDragIsWrittenMeanwhile();
    void draftIsRestored();
    void draftOfAreasAlone();
    void draftIsGoneAfterSaving();
    void undoneDraftIsGone();
    void draftOfNothingIsGone();
    void draftAfterUndoIsThereAtOnce();
    void undoOfWhatWasNotSavedKeepsIt();
    void draftOfBeforeIsLeftAlone();
    void drawingIsInTheDraft();
    void damagedDraft_data();
    void damagedDraft();
    void damagedDraftReadElsewhere();
    void damagedDraftThatStays();
    void draftFailureIsToldOnce();
    void noDraftWanted();
    void draftSurvivesKill();

private:
    QString At(const char* name) const { return m_dir->filePath(QString::fromUtf8(name)); }

    std::unique_ptr<QTemporaryDir> m_dir;
};

void tst_ZrPlanDocumentDraft::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void tst_ZrPlanDocumentDraft::draftIsThereAtOnce()
{
    ZrPlanDocument plan(At("folder/draft"));
    plan.History().Add(50, -4, eZrWptBlue, ZrWpts::eAddTail);
    plan.Edited();
    // Without the event loop having run.
    QVERIFY(plan.HasDraft());
}

void tst_ZrPlanDocumentDraft::dragIsWrittenWhenItPauses()
{
    ZrPlanDocument plan(At("draft"));
    AddThree(plan);
    plan.FlushDraft();
    const QByteArray before = Content(At("draft"));
    plan.History().Move(plan.Route().GetHead(), 49.5, -4.0);
    plan.Edited();
    QCOMPARE(Content(At("draft")), before);
    QTRY_VERIFY(Content(At("draft")) != before);
    plan.History().Move(plan.Route().GetHead(), 49.6, -4.0);
    plan.Edited();
    plan.FlushDraft();
    ZrPlanDocument other(At("draft"));
    QVERIFY(other.RestoreDraft());
    QCOMPARE(other.Route().GetHead()->lat, 49.6);
}

void tst_ZrPlanDocumentDraft::longDragIsWrittenMeanwhile()
{
    ZrPlanDocument plan(At("draft"));
    AddThree(plan);
    plan.FlushDraft();
    const QByteArray before = Content(At("draft"));
    double lat = 49.5;
    // Looked at without a pause between the edits that would be one to the draft as well.
    QElapsedTimer drag;
    drag.start();
    int edits = 0;
    while (Content(At("draft")) == before && drag.elapsed() < 20000) {
        plan.History().Move(plan.Route().GetHead(), lat += 1e-6, -4.0);
        plan.Edited();
        ++edits;
    }
    QVERIFY(Content(At("draft")) != before);
    QVERIFY(drag.elapsed() >= ZrPlanDocument::DraftMostMilliseconds - 1);
    QVERIFY(edits > 1);
}

void tst_ZrPlanDocumentDraft::draftIsRestored()
{
    {
        ZrPlanDocument plan(At("draft"));
        AddThree(plan);
        QVERIFY(plan.Save(At("a.json")));
        plan.SetAreas({Harbour()});
        plan.SetMargin(3);
        plan.History().Reverse();
        plan.Edited();
    }
    ZrPlanDocument plan(At("draft"));
    QVERIFY(plan.HasDraft());
    QVERIFY(plan.RestoreDraft());
    QCOMPARE(plan.Route().GetCount(), 3);
    QCOMPARE(plan.Route().GetHead()->lat, 50.02);
    QCOMPARE(plan.FilePath(), At("a.json"));
    QCOMPARE(plan.Areas().size(), std::size_t(1));
    QCOMPARE(plan.Margin(), 3.0);
    QVERIFY(plan.IsDirty());
    QVERIFY(plan.HasDraft());
    plan.DiscardDraft();
    QVERIFY(!plan.HasDraft());
}

void tst_ZrPlanDocumentDraft::draftOfAreasAlone()
{
    {
        ZrPlanDocument plan(At("draft"));
        plan.SetAreas({Harbour()});
    }
    ZrPlanDocument plan(At("draft"));
    QVERIFY2(plan.RestoreDraft(), qPrintable(plan.Error()));
    QCOMPARE(plan.Areas().size(), std::size_t(1));
    QVERIFY(plan.Route().linked);
}

void tst_ZrPlanDocumentDraft::draftIsGoneAfterSaving()
{
    ZrPlanDocument plan(At("draft"));
    AddThree(plan);
    QVERIFY(plan.Save(At("a.json")));
    QVERIFY(!plan.HasDraft());
    QTest::qWait(2 * ZrPlanDocument::DraftMilliseconds);
    QVERIFY(!plan.HasDraft());
}

/// A plan that is as its file has it is not offered as one that was not saved.
void tst_ZrPlanDocumentDraft::undoneDraftIsGone()
{
    ZrPlanDocument plan(At("draft"));
    AddThree(plan);
    QVERIFY(plan.Save(At("a.json")));
    plan.History().Reverse();
    plan.Edited();
    plan.FlushDraft();
    QVERIFY(plan.HasDraft());
    QVERIFY(plan.Undo());
    QVERIFY(!plan.HasDraft());
    plan.FlushDraft();
    QVERIFY(!QFile::exists(At("draft")));
    QTest::qWait(2 * ZrPlanDocument::DraftMilliseconds);
    QVERIFY(!QFile::exists(At("draft")));
    // A ring that is drawn is in no file.
    QVERIFY(plan.Redo());
    plan.SetSketch({{{50.0, -4.0}}, false, -1, false});
    QVERIFY(plan.Undo());
    QVERIFY(plan.HasDraft());
    plan.SetSketch({});
    QVERIFY(!plan.HasDraft());
    // Nor are areas, until they are undone.
    plan.SetAreas({Harbour()});
    QVERIFY(plan.HasDraft());
    QVERIFY(plan.Undo());
    QVERIFY(!plan.HasDraft());
}

/// However it became empty.
void tst_ZrPlanDocumentDraft::draftOfNothingIsGone()
{
    ZrPlanDocument plan(At("draft"));
    AddOne(plan);
    QVERIFY(plan.HasDraft());
    QVERIFY(plan.Undo());
    QVERIFY(!plan.HasDraft());
    AddOne(plan);
    plan.History().Delete(plan.Route().GetHead());
    plan.Edited();
    QVERIFY(!plan.HasDraft());
    plan.SetMargin(3.0);
    QVERIFY(plan.HasDraft());
    // A file that is not empty is not the same.
    AddOne(plan);
    QVERIFY(plan.Save(At("a.json")));
    plan.History().Delete(plan.Route().GetHead());
    plan.SetMargin(0.0);
    QVERIFY(plan.HasDraft());
    // What no file has stays in the draft, though there is nothing to undo.
    ZrPlanDocument other(At("other"));
    other.History().Add(50.0, -4.0, eZrWptBlue, ZrWpts::eAddTail);
    other.History().Reset();
    other.Edited();
    QVERIFY(!other.IsDirty());
    QVERIFY(other.HasDraft());
}

/// Without a pause that an edit before would want.
void tst_ZrPlanDocumentDraft::draftAfterUndoIsThereAtOnce()
{
    ZrPlanDocument plan(At("draft"));
    AddOne(plan);
    QVERIFY(plan.Undo());
    QVERIFY(plan.Redo());
    QVERIFY(plan.HasDraft());
}

/// The step is taken back, and the plan is not saved all the same.
void tst_ZrPlanDocumentDraft::undoOfWhatWasNotSavedKeepsIt()
{
    {
        ZrPlanDocument plan(At("draft"));
        AddThree(plan);
        QVERIFY(plan.Save(At("a.json")));
        plan.SetMargin(3.0);
    }
    ZrPlanDocument plan(At("draft"));
    QVERIFY(plan.RestoreDraft());
    plan.History().Reverse();
    plan.Edited();
    QVERIFY(plan.Undo());
    QVERIFY(plan.IsDirty());
    plan.FlushDraft();
    ZrPlanDocument after(At("draft"));
    QVERIFY(after.RestoreDraft());
    QCOMPARE(after.Margin(), 3.0);
    // Areas are not in a file of this form.
    plan.SetAreas({Harbour()});
    QVERIFY(plan.Save(At("a.gpx")));
    plan.History().Reverse();
    plan.Edited();
    QVERIFY(plan.Undo());
    plan.FlushDraft();
    QVERIFY(after.RestoreDraft());
    QCOMPARE(after.Areas().size(), std::size_t(1));
}

/// A plan that needs no draft does not touch one that nobody has looked at.
void tst_ZrPlanDocumentDraft::draftOfBeforeIsLeftAlone()
{
    {
        ZrPlanDocument plan(At("draft"));
        AddThree(plan);
    }
    ZrPlanDocument plan(At("draft"));
    plan.Edited();
    plan.FlushDraft();
    QCOMPARE(plan.ForeignPath(), At("draft"));
    QVERIFY(plan.RestoreDraft());
    QCOMPARE(plan.Route().GetCount(), 3);
}

void tst_ZrPlanDocumentDraft::drawingIsInTheDraft()
{
    const ZrPlanSketch sketch{{{50.0, -4.0}, {50.1, -4.0}}, true, -1, false};
    {
        ZrPlanDocument plan(At("draft"));
        plan.SetSketch(sketch);
        QVERIFY(plan.HasDraft()); // at once
        QVERIFY(plan.IsDirty());
    }
    ZrPlanDocument plan(At("draft"));
    QVERIFY2(plan.RestoreDraft(), qPrintable(plan.Error()));
    QVERIFY(plan.Sketch() == sketch);
    // Saving does not end it.
    AddThree(plan);
    QVERIFY(plan.Save(At("a.json")));
    QVERIFY(plan.Sketch() == sketch);
    QVERIFY(plan.IsDirty() && plan.HasDraft());
    plan.SetSketch({});
    QVERIFY(!plan.IsDirty() && !plan.HasDraft());
    QVERIFY(plan.Open(At("a.json")));
    QVERIFY(plan.Sketch().IsEmpty());
}

void tst_ZrPlanDocumentDraft::damagedDraft_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("garbage") << QByteArray("\0\1\2", 3);
    QTest::newRow("cut") << QByteArray("{\"format\": \"zr-plan-draft\", \"route\": {");
    QTest::newRow("another format") << QByteArray("{\"format\": \"song\"}");
    QTest::newRow("waypoints of the wrong kind")
        << QByteArray("{\"format\": \"zr-plan-draft\", \"route\": {\"waypoints\": [17]}}");
}

void tst_ZrPlanDocumentDraft::damagedDraft()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(Write(At("draft"), bytes));
    QVERIFY(Write(At("draft.damaged"), "of before"));
    ZrPlanDocument plan(At("draft"));
    QVERIFY(plan.HasDraft());
    if (plan.RestoreDraft()) {
        QVERIFY(plan.Route().GetCount() <= 1);
        return;
    }
    QVERIFY(plan.Error().startsWith(At("draft")));
    QCOMPARE(plan.Route().GetCount(), 0);
    // The next edit does not replace it.
    QCOMPARE(plan.AsidePath(), At("draft.damaged-2"));
    AddThree(plan);
    plan.FlushDraft();
    QCOMPARE(Content(At("draft.damaged-2")), bytes);
    QCOMPARE(Content(At("draft.damaged")), QByteArray("of before"));
    ZrPlanDocument other(At("draft"));
    QVERIFY(other.RestoreDraft());
    QCOMPARE(other.Route().GetCount(), 3);
}

/// It is set aside as well when a thread of its own has read it, and only while it is there.
void tst_ZrPlanDocumentDraft::damagedDraftReadElsewhere()
{
    QVERIFY(Write(At("draft"), "garbage"));
    {
        ZrPlanDocument plan(At("draft"));
        ZrPlanReader reader;
        bool isRead = true;
        std::thread other([&] { isRead = reader.LoadDraft(At("draft")); });
        other.join();
        QVERIFY(!isRead);
        QVERIFY(!plan.Take(reader));
        QCOMPARE(plan.Error(), reader.Error());
        QCOMPARE(plan.AsidePath(), At("draft.damaged"));
        QCOMPARE(Content(At("draft.damaged")), QByteArray("garbage"));
        QVERIFY(!plan.HasDraft());
        AddThree(plan);
        plan.FlushDraft();
        // That which is there now is another one.
        QVERIFY(!plan.Take(reader));
        QVERIFY(plan.HasDraft());
        QCOMPARE(plan.Route().GetCount(), 3);
    }
    // A draft of another place is left alone.
    QVERIFY(Write(At("other"), "garbage"));
    ZrPlanDocument plan(At("draft"));
    ZrPlanReader reader;
    QVERIFY(!reader.LoadDraft(At("other")));
    QVERIFY(!plan.Take(reader));
    QVERIFY(QFile::exists(At("other")) && plan.HasDraft() && plan.AsidePath().isEmpty());
    QVERIFY(plan.RestoreDraft());
}

/// One that can neither be read nor moved is not overwritten, and that is told.
void tst_ZrPlanDocumentDraft::damagedDraftThatStays()
{
    const QString path = QStringLiteral("/proc/self/status");
    ZrPlanDocument plan(path);
    QSignalSpy failed(&plan, &ZrPlanDocument::DraftFailed);
    QVERIFY(!plan.RestoreDraft());
    QVERIFY(plan.AsidePath().isEmpty());
    AddThree(plan);
    plan.FlushDraft();
    QCOMPARE(failed.count(), 1);
    QVERIFY2(
        failed[0][0].toString().contains(QLatin1String("set aside")), qPrintable(failed[0][0].toString()));
}

void tst_ZrPlanDocumentDraft::draftFailureIsToldOnce()
{
    QVERIFY(QDir().mkdir(At("draft")));
    ZrPlanDocument plan(At("draft"));
    QSignalSpy failed(&plan, &ZrPlanDocument::DraftFailed);
    AddThree(plan);
    plan.FlushDraft();
    plan.Edited();
    plan.FlushDraft();
    QCOMPARE(failed.count(), 1);
    QVERIFY(!failed[0][0].toString().isEmpty());
    QVERIFY(!plan.HasDraft());
}

void tst_ZrPlanDocumentDraft::noDraftWanted()
{
    ZrPlanDocument plan((QString()));
    AddThree(plan);
    QVERIFY(!plan.HasDraft());
    QVERIFY(!plan.RestoreDraft());
}

/// Run with an argument the program plans until it is killed, saying after each edit how many there were.
void tst_ZrPlanDocumentDraft::draftSurvivesKill()
{
    for (int round = 0; round < 5; ++round) {
        QFile::remove(At("draft"));
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--plan"), At("draft")});
        QByteArray output;
        const int wanted = 3 + round * 7;
        while (output.count('\n') < wanted && child.waitForReadyRead(10000))
            output += child.readAllStandardOutput();
        child.kill();
        QVERIFY(child.waitForFinished());
        output += child.readAllStandardOutput();
        const int told = output.count('\n');
        QVERIFY(told >= wanted);
        ZrPlanDocument plan(At("draft"));
        QVERIFY(plan.RestoreDraft());
        // An edit may have been written and not told yet.
        const int found = plan.Route().GetCount();
        QVERIFY2(
            found == told || found == told + 1, qPrintable(QStringLiteral("%1 of %2").arg(found).arg(told)));
        plan.DiscardDraft();
    }
}

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], "--plan") == 0) {
        ZrPlanDocument plan(QString::fromLocal8Bit(argv[2]));
        for (int i = 0; i < 10000; ++i) {
            plan.History().Add(50.0 + 0.001 * i, -4.0, eZrWptBlue, ZrWpts::eAddTail);
            plan.Edited();
            plan.FlushDraft();
            std::puts("edited");
            std::fflush(stdout);
        }
        return 0;
    }
    tst_ZrPlanDocumentDraft test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ZrPlanDocumentDraft.moc"
