// Plans that were not saved, and where they are kept.

#include "ZrKit/planning/ZrPlanDrafts.h"
#include "ZrKit/planning/ZrPlanReader.h"
#include "ZrPlanFixture.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <memory>
#include <utility>

namespace {

/// A plan of one waypoint, at a place of its own.
QByteArray StateOf(int number)
{
    ZrPlanDocument plan((QString()));
    plan.History().Add(50.0 + 0.001 * number, -4.0, eZrWptBlue, ZrWpts::eAddTail);
    return plan.State().ToDraft();
}

} // namespace

class tst_ZrPlanDrafts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void keepAndRead();
    void theFiveLatest();
    void theSameTakesItsPlace();
    void oneIsSpared();
    void entriesInWords();
    void strangeFiles();
    void noPlanIsNotKept();
    void folderCannotBeWritten();
    void removesItsOwnOnly();
    void newKeepsTheUnsaved();
    void openKeepsTheUnsaved();
    void takenStateKeepsTheUnsaved();
    void savedIsNotKept();
    void nothingIsNotKept();
    void restoreKept();
    void restoreKeptSwaps();
    void restoreTheOldestOfFive();
    void restoreKeptFailures();
    void planStaysWhereItCannotBeKept();
    void refusedPlanChangesNothing();
    void restoreKeepsTheUnsaved();
    void keptPathIsNotUsedAgain();
    void keptAsTheDraftIsWritten();
    void nothingIsLostByKill();

private:
    QString At(const char* name) const { return m_dir->filePath(QString::fromUtf8(name)); }

    std::unique_ptr<QTemporaryDir> m_dir;
};

void tst_ZrPlanDrafts::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void tst_ZrPlanDrafts::keepAndRead()
{
    ZrPlanDrafts drafts(At("a/plans"));
    QVERIFY(drafts.List().empty() && drafts.IsEmpty());
    const QByteArray state = StateOf(1);
    const QString path = drafts.Keep(state);
    QVERIFY2(!path.isEmpty(), qPrintable(drafts.Error()));
    QCOMPARE(drafts.Read(path), state);
    QCOMPARE(drafts.List().size(), std::size_t(1));
    QCOMPARE(drafts.List()[0].path, path);
    QVERIFY(!drafts.IsEmpty());
    QVERIFY(drafts.Remove(path));
    QVERIFY(drafts.List().empty() && drafts.IsEmpty());
    QVERIFY(drafts.Read(path).isEmpty());
    QVERIFY(drafts.Error().startsWith(path));
}

void tst_ZrPlanDrafts::theFiveLatest()
{
    ZrPlanDrafts drafts(At("plans"));
    std::vector<QByteArray> states;
    for (int i = 0; i < 12; ++i) {
        states.insert(states.begin(), StateOf(i));
        QVERIFY(!drafts.Keep(states.front()).isEmpty());
    }
    const auto entries = drafts.List();
    QCOMPARE(entries.size(), std::size_t(ZrPlanDrafts::Most));
    for (std::size_t i = 0; i < entries.size(); ++i)
        QCOMPARE(drafts.Read(entries[i].path), states[i]);
    QCOMPARE(QDir(At("plans")).entryList(QDir::Files).size(), ZrPlanDrafts::Most);
}

void tst_ZrPlanDrafts::theSameTakesItsPlace()
{
    ZrPlanDrafts drafts(At("plans"));
    const QByteArray first = StateOf(0);
    drafts.Keep(first);
    drafts.Keep(StateOf(1));
    drafts.Keep(first);
    QCOMPARE(drafts.List().size(), std::size_t(2));
    QCOMPARE(drafts.Read(drafts.List()[0].path), first);
}

void tst_ZrPlanDrafts::oneIsSpared()
{
    ZrPlanDrafts drafts(At("plans"));
    const QString oldest = drafts.Keep(StateOf(0));
    for (int i = 1; i < ZrPlanDrafts::Most; ++i)
        drafts.Keep(StateOf(i));
    drafts.Keep(StateOf(9), oldest);
    QVERIFY(QFile::exists(oldest));
    drafts.Keep(StateOf(10));
    QVERIFY(!QFile::exists(oldest));
}

void tst_ZrPlanDrafts::entriesInWords()
{
    ZrPlanDrafts drafts(At("plans"));
    ZrPlanDocument plan(QString(), At("plans"));
    AddOne(plan);
    AddOne(plan, 1);
    QVERIFY(plan.Save(At("Mündung.json")));
    plan.SetAreas({Harbour()});
    plan.SetSketch({{{50.0, -4.0}}, false, -1, false});
    const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-1);
    QVERIFY(plan.New());
    const auto entries = drafts.List();
    QCOMPARE(entries.size(), std::size_t(1));
    QCOMPARE(entries[0].name, QStringLiteral("Mündung"));
    QCOMPARE(entries[0].waypoints, 2);
    QCOMPARE(entries[0].content, QStringLiteral("2 waypoints, 1 area, an area being drawn"));
    QVERIFY(entries[0].kept >= before && entries[0].kept <= QDateTime::currentDateTimeUtc().addSecs(1));
    drafts.Keep(StateOf(3));
    QCOMPARE(drafts.List()[0].name, QStringLiteral("New plan"));
    QCOMPARE(drafts.List()[0].content, QStringLiteral("1 waypoint"));
}

void tst_ZrPlanDrafts::strangeFiles()
{
    ZrPlanDrafts drafts(At("plans"));
    const QString good = drafts.Keep(StateOf(0));
    for (const char* name :
        {"plan-x.json", "plan--3.json", "notes.txt", "plan-.json", "plan-99999999999.json"})
        QVERIFY(Write(At("plans/") + QString::fromLatin1(name), "{}"));
    QVERIFY(Write(At("plans/plan-7.json"), QByteArray("\0garbage", 8)));
    QCOMPARE(drafts.List().size(), std::size_t(1));
    // They are in nobody's way, nor removed.
    const QString next = drafts.Keep(StateOf(1));
    QVERIFY(next.endsWith(QLatin1String("plan-8.json")));
    QVERIFY(QFile::exists(At("plans/notes.txt")) && QFile::exists(At("plans/plan-x.json")));
    QCOMPARE(drafts.List().size(), std::size_t(2));
    QVERIFY(drafts.Read(At("plans/plan-7.json")).isEmpty());
    QVERIFY(!drafts.Error().isEmpty());
    QVERIFY(QFile::exists(good));
    QVERIFY(drafts.Remove(good) && drafts.Remove(next));
    QVERIFY(drafts.IsEmpty());
}

void tst_ZrPlanDrafts::noPlanIsNotKept()
{
    ZrPlanDrafts drafts(At("plans"));
    for (const QByteArray& bytes :
        {QByteArray(), QByteArray("{}"), QByteArray("[1]"), QByteArray("{\"format\"")}) {
        QVERIFY(drafts.Keep(bytes).isEmpty());
        QVERIFY(!drafts.Error().isEmpty());
    }
    QVERIFY(drafts.List().empty());
}

void tst_ZrPlanDrafts::folderCannotBeWritten()
{
    QVERIFY(Write(At("file"), "x"));
    ZrPlanDrafts drafts(At("file/plans"));
    QVERIFY(drafts.Keep(StateOf(0)).isEmpty());
    QVERIFY(drafts.Error().startsWith(At("file/plans")));
}

void tst_ZrPlanDrafts::removesItsOwnOnly()
{
    ZrPlanDrafts drafts(At("plans"));
    drafts.Keep(StateOf(0));
    QVERIFY(Write(At("plans/other.json"), "x"));
    QVERIFY(Write(At("plan-1.json"), "x"));
    for (const char* name : {"plans/other.json", "plan-1.json", "plans/plan-2.json", ""})
        QVERIFY(!drafts.Remove(At(name)));
    QVERIFY(QFile::exists(At("plan-1.json")));
}

void tst_ZrPlanDrafts::newKeepsTheUnsaved()
{
    ZrPlanDocument plan(At("draft"), At("plans"));
    AddOne(plan, 3);
    const QByteArray state = plan.State().ToDraft();
    QVERIFY(plan.New());
    QVERIFY(!plan.HasDraft());
    QCOMPARE(plan.Kept()->List().size(), std::size_t(1));
    QCOMPARE(plan.KeptPath(), plan.Kept()->List()[0].path);
    QCOMPARE(ZrPlanDrafts(At("plans")).Read(plan.KeptPath()), state);
}

void tst_ZrPlanDrafts::openKeepsTheUnsaved()
{
    ZrPlanDocument other((QString()));
    AddOne(other, 1);
    QVERIFY(other.Save(At("other.gpx")));
    ZrPlanDocument plan(At("draft"), At("plans"));
    AddOne(plan, 3);
    QVERIFY(!plan.Open(At("missing.gpx")));
    QVERIFY(plan.Kept()->List().empty());
    QVERIFY(plan.Open(At("other.gpx")));
    QVERIFY(IsNumber(plan, 1));
    QCOMPARE(plan.Kept()->List().size(), std::size_t(1));
    QVERIFY(plan.RestoreKept(plan.KeptPath()));
    QVERIFY(IsNumber(plan, 3));
    QVERIFY(plan.Kept()->List().empty());
}

void tst_ZrPlanDrafts::takenStateKeepsTheUnsaved()
{
    ZrPlanDocument plan(At("draft"), At("plans"));
    AddOne(plan, 3);
    QVERIFY(!TakeState(plan, "{}"));
    QVERIFY(plan.Kept()->List().empty());
    QVERIFY(TakeState(plan, StateOf(5)));
    QCOMPARE(plan.Kept()->List().size(), std::size_t(1));
}

void tst_ZrPlanDrafts::savedIsNotKept()
{
    ZrPlanDocument plan(At("draft"), At("plans"));
    AddOne(plan);
    QVERIFY(plan.Save(At("a.json")));
    QVERIFY(plan.New());
    QVERIFY(plan.Kept()->List().empty());
    QVERIFY(plan.KeptPath().isEmpty());
    QVERIFY(!QFile::exists(At("plans")));
}

void tst_ZrPlanDrafts::nothingIsNotKept()
{
    ZrPlanDocument plan(At("draft"), At("plans"));
    AddOne(plan);
    QVERIFY(plan.Save(At("a.json")));
    plan.History().Delete(plan.Route().GetHead());
    plan.Edited();
    QVERIFY(plan.IsDirty());
    QVERIFY(plan.New());
    QVERIFY(plan.Kept()->List().empty());
}

void tst_ZrPlanDrafts::restoreKept()
{
    {
        ZrPlanDocument plan(At("draft"), At("plans"));
        AddOne(plan, 3);
        QVERIFY(plan.Save(At("a.json")));
        plan.SetAreas({Harbour()});
        plan.SetSketch({Harbour().ring, true, -1, false});
        QVERIFY(plan.New());
        AddOne(plan, 4);
        QVERIFY(plan.Save(At("b.json")));
    }
    ZrPlanDocument plan(At("draft"), At("plans"));
    const QString path = plan.Kept()->List().at(0).path;
    QVERIFY2(plan.RestoreKept(path), qPrintable(plan.Error()));
    QVERIFY(IsNumber(plan, 3));
    QCOMPARE(plan.FilePath(), At("a.json"));
    QCOMPARE(plan.Areas().size(), std::size_t(1));
    QVERIFY(plan.Sketch().ring == Harbour().ring && plan.Sketch().isNoGo);
    QVERIFY(plan.IsDirty());
    // Now it is the draft.
    QVERIFY(!QFile::exists(path));
    ZrPlanDocument after(At("draft"), At("plans"));
    QVERIFY(after.RestoreDraft());
    QVERIFY(IsNumber(after, 3));
}

void tst_ZrPlanDrafts::restoreKeptSwaps()
{
    ZrPlanDocument plan(At("draft"), At("plans"));
    AddOne(plan, 1);
    QVERIFY(plan.New());
    AddOne(plan, 2);
    const QString first = plan.KeptPath().isEmpty() ? plan.Kept()->List().at(0).path : plan.KeptPath();
    QVERIFY(plan.RestoreKept(first));
    QVERIFY(IsNumber(plan, 1));
    QCOMPARE(plan.Kept()->List().size(), std::size_t(1));
    QVERIFY(plan.RestoreKept(plan.KeptPath()));
    QVERIFY(IsNumber(plan, 2));
    QCOMPARE(plan.Kept()->List().size(), std::size_t(1));
}

void tst_ZrPlanDrafts::restoreTheOldestOfFive()
{
    ZrPlanDocument plan(At("draft"), At("plans"));
    for (int i = 0; i < ZrPlanDrafts::Most; ++i) {
        AddOne(plan, i);
        QVERIFY(plan.New());
    }
    AddOne(plan, 9);
    QVERIFY(plan.RestoreKept(plan.Kept()->List().back().path));
    QVERIFY(IsNumber(plan, 0));
    QCOMPARE(plan.Kept()->List().size(), std::size_t(ZrPlanDrafts::Most));
    ZrPlanDocument newest((QString()));
    QVERIFY(TakeState(newest, ZrPlanDrafts(At("plans")).Read(plan.KeptPath())));
    QVERIFY(IsNumber(newest, 9));
}

void tst_ZrPlanDrafts::restoreKeptFailures()
{
    ZrPlanDocument without(At("draft"));
    QVERIFY(!without.RestoreKept(At("plans/plan-1.json")));
    QVERIFY(!without.Kept());
    ZrPlanDocument plan(At("draft"), At("plans"));
    AddOne(plan, 1);
    QVERIFY(!plan.RestoreKept(At("plans/plan-1.json")));
    QVERIFY(!plan.Error().isEmpty());
    QVERIFY(QDir().mkpath(At("plans")));
    QVERIFY(Write(At("plans/plan-1.json"),
        "{\"format\": \"zr-plan-draft\", \"route\": {\"waypoints\": [{\"lat\": \"x\"}, 5]}}"));
    const QByteArray state = plan.State().ToDraft();
    if (!plan.RestoreKept(At("plans/plan-1.json"))) {
        QVERIFY(!plan.Error().isEmpty());
        QCOMPARE(plan.State().ToDraft(), state);
        QVERIFY(QFile::exists(At("plans/plan-1.json")));
    }
    // Where the draft cannot be written the kept one stays.
    QVERIFY(QDir().mkdir(At("folder")));
    ZrPlanDocument stuck(At("folder"), At("plans2"));
    AddOne(stuck, 1);
    QVERIFY(stuck.New());
    const QString kept = stuck.KeptPath();
    QVERIFY(stuck.RestoreKept(kept));
    QVERIFY(IsNumber(stuck, 1));
    QVERIFY(QFile::exists(kept));
}

void tst_ZrPlanDrafts::planStaysWhereItCannotBeKept()
{
    ZrPlanDocument other((QString()));
    AddOne(other, 1);
    QVERIFY(other.Save(At("other.json")));
    QVERIFY(Write(At("file"), "x"));
    ZrPlanDocument plan(At("draft"), At("file/plans"));
    AddOne(plan, 3);
    QVERIFY(!plan.New());
    QVERIFY2(plan.Error().contains(At("file/plans")), qPrintable(plan.Error()));
    QVERIFY(!plan.Open(At("other.json")));
    QVERIFY(!TakeState(plan, StateOf(5)));
    QVERIFY(IsNumber(plan, 3));
    QVERIFY(plan.HasDraft());
    // Saved it may go.
    QVERIFY(plan.Save(At("mine.json")));
    QVERIFY(plan.New());
}

/// Not even the speeds of all routes, which come with a plan.
void tst_ZrPlanDrafts::refusedPlanChangesNothing()
{
    const float slow = std::exchange(ZrWpts::s_msSlow, 5.0F);
    ZrPlanDocument other((QString()));
    AddOne(other, 1);
    QVERIFY(other.Save(At("other.json")));
    ZrWpts::s_msSlow = slow;
    QVERIFY(Write(At("file"), "x"));
    ZrPlanDocument plan(At("draft"), At("file/plans"));
    AddOne(plan, 3);
    const QByteArray before = plan.State().ToDraft();
    QSignalSpy changed(&plan, &ZrPlanDocument::Changed);
    ZrPlanReader reader;
    QVERIFY(reader.Load(At("other.json")));
    QVERIFY(!plan.Take(reader));
    QCOMPARE(ZrWpts::s_msSlow, slow);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(plan.State().ToDraft(), before);
    // What was read is not used up.
    QVERIFY(plan.Save(At("mine.json")));
    QVERIFY(plan.Take(reader));
    QVERIFY(IsNumber(plan, 1));
    const float taken = std::exchange(ZrWpts::s_msSlow, slow);
    QCOMPARE(taken, 5.0F);
}

/// As the undo of `New` does.
void tst_ZrPlanDrafts::restoreKeepsTheUnsaved()
{
    ZrPlanDocument plan(At("draft"), At("plans"));
    AddOne(plan, 1);
    plan.SetSketch({{{50.0, -4.0}}, true, -1, false});
    const ZrPlanState first = plan.State();
    QVERIFY(plan.New());
    QVERIFY(plan.Sketch().IsEmpty());
    const QString kept = plan.KeptPath();
    AddOne(plan, 2);
    QVERIFY(plan.Restore(first, kept));
    QVERIFY(IsNumber(plan, 1));
    QVERIFY(plan.Sketch() == first.sketch);
    plan.FlushDraft();
    QVERIFY(!QFile::exists(kept));
    QCOMPARE(plan.Kept()->List().size(), std::size_t(1));
    ZrPlanDocument second((QString()));
    QVERIFY(TakeState(second, ZrPlanDrafts(At("plans")).Read(plan.KeptPath())));
    QVERIFY(IsNumber(second, 2));
    // Where that cannot be kept all stays.
    QVERIFY(Write(At("file"), "x"));
    ZrPlanDocument stuck(At("draft3"), At("file/plans"));
    AddOne(stuck, 3);
    QVERIFY(!stuck.Restore(first));
    QVERIFY(!stuck.Error().isEmpty());
    QVERIFY(IsNumber(stuck, 3));
}

/// What was kept in a path and has gone from there is not mistaken for what is kept later.
void tst_ZrPlanDrafts::keptPathIsNotUsedAgain()
{
    ZrPlanDocument plan(At("draft"), At("plans"));
    AddOne(plan, 1);
    const ZrPlanState first = plan.State();
    QVERIFY(plan.New());
    const QString kept = plan.KeptPath();
    QVERIFY(plan.RestoreKept(kept));
    QVERIFY(plan.Save(At("a.json")));
    QVERIFY(plan.New());
    AddOne(plan, 2);
    QVERIFY(plan.New());
    QVERIFY(plan.KeptPath() != kept);
    QVERIFY(plan.Restore(first, kept));
    plan.FlushDraft();
    QCOMPARE(plan.Kept()->List().size(), std::size_t(1));
}

/// Of edits that the draft does not have yet nothing is missing, whether it can be written or not.
void tst_ZrPlanDrafts::keptAsTheDraftIsWritten()
{
    QVERIFY(QDir().mkdir(At("folder")));
    for (const char* draft : {"draft", "folder", ""}) {
        ZrPlanDocument plan(*draft ? At(draft) : QString(), At("plans"));
        for (int i = 0; i < 5; ++i)
            AddOne(plan, i); // the later ones wait for a pause
        const QByteArray state = plan.State().ToDraft();
        QVERIFY(plan.New());
        QCOMPARE(ZrPlanDrafts(At("plans")).Read(plan.KeptPath()), state);
        QVERIFY(!plan.HasDraft());
    }
}

/// Run with an argument the program draws, plans and begins anew until it is killed.
void tst_ZrPlanDrafts::nothingIsLostByKill()
{
    for (int round = 0; round < 5; ++round) {
        m_dir = std::make_unique<QTemporaryDir>();
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--plan"), m_dir->path()});
        QByteArray output;
        const int wanted = 5 + round * 9;
        while (output.count('\n') < wanted && child.waitForReadyRead(10000))
            output += child.readAllStandardOutput();
        child.kill();
        QVERIFY(child.waitForFinished());
        output += child.readAllStandardOutput();
        const int told = output.count('\n');
        QVERIFY(told >= wanted);
        const int last = told - 1;

        ZrPlanDocument plan(At("draft"), At("plans"));
        std::vector<QByteArray> states;
        if (plan.HasDraft()) {
            QVERIFY2(plan.RestoreDraft(), qPrintable(plan.Error()));
            states.push_back(plan.State().ToDraft());
        }
        ZrPlanDrafts drafts(At("plans"));
        for (const auto& entry : drafts.List())
            states.push_back(drafts.Read(entry.path));
        QVERIFY(states.size() <= std::size_t(ZrPlanDrafts::Most + 1));
        // The one that was told last, and those before it as far as they are kept.
        for (int number = last; number >= 0 && number > last - ZrPlanDrafts::Most + 1; --number) {
            const bool isThere = std::any_of(states.begin(), states.end(), [number](const QByteArray& state) {
                ZrPlanDocument found((QString()));
                return TakeState(found, state) && IsNumber(found, number)
                    && static_cast<int>(found.Sketch().ring.size()) == 1 + number % 4;
            });
            QVERIFY2(isThere, qPrintable(QStringLiteral("plan %1 of %2").arg(number).arg(told)));
        }
    }
}

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], "--plan") == 0) {
        const QString dir = QString::fromLocal8Bit(argv[2]);
        ZrPlanDocument plan(dir + QStringLiteral("/draft"), dir + QStringLiteral("/plans"));
        for (int i = 0; i < 10000; ++i) {
            AddOne(plan, i);
            ZrPlanSketch sketch;
            for (int corner = 0; corner <= i % 4; ++corner)
                sketch.ring.push_back({50.0 + 0.001 * corner, -4.0});
            plan.SetSketch(sketch);
            plan.FlushDraft();
            std::puts("drawn");
            std::fflush(stdout);
            plan.New();
        }
        return 0;
    }
    tst_ZrPlanDrafts test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ZrPlanDrafts.moc"
