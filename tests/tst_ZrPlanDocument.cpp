// A plan, its file and its draft.

#include "ZrKit/planning/ZrPlanReader.h"
#include "ZrKit/planning/ZrSurveyPattern.h"
#include "ZrKit/planning/ZrSurveyPatternSettings.h"
#include "ZrPlanFixture.h"
#include "ZrUtil/ZrUnits.h"
#include "ZrUtil/ZrWpt.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <limits>
#include <thread>
#include <utility>

class tst_ZrPlanDocument : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void startsEmpty();
    void editsMakeItDirty();
    void undoToTheFileIsClean();
    void areasMakeItDirty();
    void pathFollowsEdits();
    void findingsFollowAreas();
    void countsLines();
    void savesAndOpens_data();
    void savesAndOpens();
    void otherFormsLoseTheAreasOnly();
    void whatAFormLeavesOutIsNotSaved_data();
    void whatAFormLeavesOutIsNotSaved();
    void propertiesLeftOutAreNotSaved();
    void exportKeepsTheFile();
    void openFailureKeepsThePlan();
    void saveFailureKeepsTheDraft();
    void writtenElsewhere();
    void lossesAreFoundElsewhere();
    void readElsewhere();
    void stateComesBack();
    void draftOfManyWaitsForNobody();
    void discardedWhileWritten();
    void tooLargeIsNotSaved();
    void newForgetsAll();

private:
    QString At(const char* name) const { return m_dir->filePath(QString::fromUtf8(name)); }

    std::unique_ptr<QTemporaryDir> m_dir;
};

void tst_ZrPlanDocument::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void tst_ZrPlanDocument::startsEmpty()
{
    ZrPlanDocument plan(At("draft"));
    QVERIFY(!plan.IsDirty());
    QVERIFY(!plan.HasDraft());
    QVERIFY(plan.Route().linked);
    QCOMPARE(plan.Name(), QStringLiteral("New plan"));
    QCOMPARE(plan.Path().Length(), 0.0);
    QCOMPARE(plan.LineCount(), 0);
    QCOMPARE(plan.Findings().front().code, ZrRouteFinding::eEmpty);
}

void tst_ZrPlanDocument::editsMakeItDirty()
{
    ZrPlanDocument plan(At("draft"));
    QSignalSpy changed(&plan, &ZrPlanDocument::Changed);
    AddThree(plan);
    QVERIFY(plan.IsDirty());
    QCOMPARE(changed.count(), 3);
}

void tst_ZrPlanDocument::undoToTheFileIsClean()
{
    ZrPlanDocument plan(At("draft"));
    AddThree(plan);
    QVERIFY(plan.Save(At("a.json")));
    QVERIFY(!plan.IsDirty());
    plan.History().Reverse();
    plan.Edited();
    QVERIFY(plan.IsDirty());
    plan.History().Undo();
    plan.Edited();
    QVERIFY(!plan.IsDirty());
}

void tst_ZrPlanDocument::areasMakeItDirty()
{
    ZrPlanDocument plan(At("draft"));
    plan.SetAreas({Harbour()});
    QVERIFY(plan.IsDirty());
    ZrPlanDocument other(At("draft2"));
    other.SetNoGo({Harbour()});
    QVERIFY(other.IsDirty());
    ZrPlanDocument third(At("draft3"));
    third.SetMargin(std::numeric_limits<double>::quiet_NaN());
    QVERIFY(!third.IsDirty());
    third.SetMargin(20);
    QVERIFY(third.IsDirty());
}

void tst_ZrPlanDocument::pathFollowsEdits()
{
    ZrPlanDocument plan(At("draft"));
    AddThree(plan);
    const double length = plan.Path().Length();
    QVERIFY(length > 2000);
    plan.History().Delete(plan.Route().GetTail());
    plan.Edited();
    QVERIFY(plan.Path().Length() < length);
}

void tst_ZrPlanDocument::findingsFollowAreas()
{
    ZrPlanDocument plan(At("draft"));
    AddThree(plan);
    const auto has = [&plan](ZrRouteFinding::eCode code) {
        for (const ZrRouteFinding& finding : plan.Findings()) {
            if (finding.code == code)
                return true;
        }
        return false;
    };
    QVERIFY(!has(ZrRouteFinding::eInNoGo));
    plan.SetNoGo({Harbour()});
    QVERIFY(has(ZrRouteFinding::eInNoGo));
}

void tst_ZrPlanDocument::countsLines()
{
    ZrPlanDocument plan(At("draft"));
    ZrSurveyPattern pattern;
    ZrSurveyPatternSettings settings;
    settings.lineSpacing = 100;
    QVERIFY(pattern.Make(Harbour(), settings));
    pattern.Plan().AppendTo(plan.Route());
    plan.History().Record(QStringLiteral("Survey"));
    plan.Edited();
    QCOMPARE(plan.LineCount(), int(pattern.Plan().lines.size()));
    QVERIFY(plan.LineCount() > 3);
}

void tst_ZrPlanDocument::savesAndOpens_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"a.json", "a.xml", "a.gpx", "a.kml", "a.geojson", "a.txt", "Plan ä 港.json"})
        QTest::newRow(name) << QString::fromUtf8(name);
}

void tst_ZrPlanDocument::savesAndOpens()
{
    QFETCH(QString, name);
    const QString path = m_dir->filePath(name);
    ZrPlanDocument plan(At("draft"));
    AddThree(plan);
    QVERIFY2(plan.Save(path), qPrintable(plan.Error()));
    QVERIFY(!plan.IsDirty());
    QCOMPARE(plan.FilePath(), path);
    QCOMPARE(plan.Name(), QFileInfo(path).completeBaseName());
    ZrPlanDocument other(At("draft2"));
    QSignalSpy changed(&other, &ZrPlanDocument::Changed);
    QVERIFY2(other.Open(path), qPrintable(other.Error()));
    QCOMPARE(changed.count(), 1);
    QVERIFY(!other.IsDirty());
    QVERIFY(!other.HasDraft());
    QCOMPARE(other.Route().GetCount(), 3);
    QVERIFY(std::abs(other.Path().Length() - plan.Path().Length()) < 0.1);
}

void tst_ZrPlanDocument::otherFormsLoseTheAreasOnly()
{
    ZrPlanDocument plan(At("draft"));
    AddThree(plan);
    plan.SetAreas({Harbour()});
    plan.SetNoGo({Harbour(), Harbour()});
    plan.SetMargin(12.5);
    QVERIFY(plan.Save(At("a.json")));
    ZrPlanDocument other(At("draft2"));
    QVERIFY(other.Open(At("a.json")));
    QCOMPARE(other.Areas().size(), std::size_t(1));
    QCOMPARE(other.Areas()[0].name, Harbour().name);
    QVERIFY(other.Areas()[0].ring == Harbour().ring);
    QCOMPARE(other.NoGo().size(), std::size_t(2));
    QCOMPARE(other.Margin(), 12.5);
    QVERIFY(plan.Save(At("a.gpx")));
    QVERIFY(other.Open(At("a.gpx")));
    QVERIFY(other.Areas().empty());
    QCOMPARE(other.Margin(), 0.0);
}

void tst_ZrPlanDocument::whatAFormLeavesOutIsNotSaved_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"a.gpx", "a.kml", "a.geojson", "a.xml", "a.txt"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void tst_ZrPlanDocument::whatAFormLeavesOutIsNotSaved()
{
    QFETCH(QString, name);
    ZrPlanDocument plan(At("draft"));
    AddThree(plan);
    plan.SetNoGo({Harbour()});
    plan.SetMargin(12.5);
    QVERIFY(plan.Save(m_dir->filePath(name)));
    QCOMPARE(plan.NotHeld(), QStringList(QStringLiteral("1 no-go area, the distance to no-go areas")));
    QCOMPARE(plan.FilePath(), m_dir->filePath(name));
    QVERIFY(plan.IsDirty());
    // The draft has it all, and knows the file.
    plan.FlushDraft();
    ZrPlanDocument after(At("draft"));
    QVERIFY(after.RestoreDraft());
    QCOMPARE(after.NoGo().size(), std::size_t(1));
    QCOMPARE(after.Margin(), 12.5);
    QCOMPARE(after.FilePath(), m_dir->filePath(name));
    // Nothing but the form that holds it ends that.
    plan.Undo();
    plan.Redo();
    QVERIFY(plan.IsDirty());
    QVERIFY(plan.Save(At("a.json")));
    QVERIFY(plan.NotHeld().isEmpty());
    QVERIFY(!plan.IsDirty() && !plan.HasDraft());
    // Nor is an earlier file the last one.
    plan.Undo();
    plan.Undo();
    QVERIFY(plan.Areas().empty() && plan.NoGo().empty());
    QVERIFY(plan.Save(m_dir->filePath(name)));
    QVERIFY(!plan.IsDirty());
}

void tst_ZrPlanDocument::propertiesLeftOutAreNotSaved()
{
    ZrPlanDocument plan(At("draft"));
    AddThree(plan);
    plan.History().Change(plan.Route().GetHead(), QStringLiteral("depth"), [](ZrWpt& wpt) { wpt.zType = 1; });
    plan.Edited();
    QVERIFY(plan.Save(At("a.txt")));
    QCOMPARE(plan.NotHeld(), QStringList(QStringLiteral("depths and altitudes")));
    QVERIFY(plan.IsDirty() && plan.HasDraft());
    QVERIFY(plan.Save(At("a.gpx")));
    QVERIFY(plan.NotHeld().isEmpty());
    QVERIFY(!plan.IsDirty() && !plan.HasDraft());
}

void tst_ZrPlanDocument::exportKeepsTheFile()
{
    ZrPlanDocument plan(At("draft"));
    AddThree(plan);
    QVERIFY(plan.Export(At("a.gpx")));
    QVERIFY(plan.IsDirty());
    QVERIFY(plan.FilePath().isEmpty());
    QVERIFY(plan.HasDraft());
}

void tst_ZrPlanDocument::openFailureKeepsThePlan()
{
    ZrPlanDocument plan(At("draft"));
    AddThree(plan);
    QVERIFY(Write(At("bad.json"), "{\"waypoints\": [1,"));
    for (const char* name : {"bad.json", "missing.gpx", "."}) {
        QVERIFY2(!plan.Open(At(name)), name);
        QVERIFY(!plan.Error().isEmpty());
        QCOMPARE(plan.Route().GetCount(), 3);
        QVERIFY(plan.HasDraft());
    }
}

void tst_ZrPlanDocument::saveFailureKeepsTheDraft()
{
    ZrPlanDocument plan(At("draft"));
    AddThree(plan);
    QVERIFY(QDir().mkdir(At("folder.json")));
    QVERIFY(QDir().mkdir(At("folder.gpx")));
    for (const char* name : {"folder.json", "folder.gpx", "no/such/folder/a.json"}) {
        QVERIFY2(!plan.Save(At(name)), name);
        QVERIFY(!plan.Error().isEmpty());
        QVERIFY(plan.IsDirty());
        QVERIFY(plan.HasDraft());
    }
}

/// A state that was written in a thread of its own is the file, unless the plan went on or is another one.
void tst_ZrPlanDocument::writtenElsewhere()
{
    ZrPlanDocument plan(At("draft"));
    AddThree(plan);
    const ZrPlanState state = plan.State();
    QString error;
    QStringList warnings;
    std::thread writer([&] { state.Save(At("a.json"), error, warnings); });
    writer.join();
    QCOMPARE(error, QString());
    QVERIFY(plan.SetSaved(At("a.json"), state, {}));
    QCOMPARE(plan.FilePath(), At("a.json"));
    QVERIFY(!plan.IsDirty() && !plan.HasDraft());
    // Edited since: undo leads to what the file was, not to what it is.
    plan.History().Reverse();
    plan.Edited();
    const ZrPlanState reversed = plan.State();
    plan.History().Undo();
    plan.Edited();
    QVERIFY(plan.SetSaved(At("b.json"), reversed, {}));
    plan.FlushDraft();
    QCOMPARE(plan.FilePath(), At("b.json"));
    QVERIFY(plan.IsDirty() && plan.HasDraft());
    // Another one.
    plan.New();
    QVERIFY(!plan.SetSaved(At("c.json"), reversed, {}));
    QVERIFY(plan.FilePath().isEmpty() && !plan.IsDirty());
}

/// What a file leaves out is found where it is written, without a word to the process.
void tst_ZrPlanDocument::lossesAreFoundElsewhere()
{
    ZrPlanDocument plan(At("draft"));
    AddThree(plan);
    plan.SetNoGo({Harbour()});
    const ZrPlanState state = plan.State();
    const QByteArray before = state.ToDraft();
    ZrUnits::CalcUTM(10.0, 100.0); // another zone than that of the plan
    double x = 0.0;
    double y = 0.0;
    ZrUnits::LLToEN(10.0, 100.0, x, y);
    const float slow = std::exchange(ZrWpts::s_msSlow, 7.0F);
    for (const char* name : {"a.json", "a.gpx", "a.kml", "a.geojson", "a.xml", "a.txt"}) {
        QStringList notHeld;
        std::thread writer([&] { notHeld = state.NotHeld(At(name)); });
        writer.join();
        const bool isWhole = qstrcmp(name, "a.json") == 0;
        QCOMPARE(notHeld, isWhole ? QStringList() : QStringList(QStringLiteral("1 no-go area")));
        QVERIFY(plan.SetSaved(At(name), state, notHeld));
        QCOMPARE(plan.NotHeld(), notHeld);
        QCOMPARE(plan.IsDirty(), !isWhole);
        QCOMPARE(plan.HasDraft(), !isWhole);
    }
    const float after = std::exchange(ZrWpts::s_msSlow, slow);
    QCOMPARE(after, 7.0F);
    double xAfter = 0.0;
    double yAfter = 0.0;
    ZrUnits::LLToEN(10.0, 100.0, xAfter, yAfter);
    QVERIFY(xAfter == x && yAfter == y);
    QCOMPARE(state.ToDraft(), before);
}

void tst_ZrPlanDocument::readElsewhere()
{
    ZrPlanDocument plan(At("draft"));
    AddThree(plan);
    plan.SetAreas({Harbour()});
    QVERIFY(plan.Save(At("a.json")));
    for (const char* name : {"a.json", "a.gpx", "a.xml", "a.txt", "a.kml", "a.geojson"}) {
        QVERIFY(plan.Export(At("copy")) && plan.Save(At(name)));
        ZrPlanReader reader;
        bool isLoaded = false;
        const float slow = ZrWpts::s_msSlow;
        std::thread other([&] { isLoaded = reader.Load(At(name)); });
        other.join();
        QVERIFY2(isLoaded, qPrintable(reader.Error()));
        QCOMPARE(ZrWpts::s_msSlow, slow);
        ZrPlanDocument taken(At("draft2"));
        QVERIFY2(taken.Take(reader), qPrintable(taken.Error()));
        QCOMPARE(taken.Route().GetCount(), 3);
        QCOMPARE(taken.FilePath(), At(name));
        QVERIFY(!taken.IsDirty());
        QVERIFY(!taken.Take(reader)); // once
        QCOMPARE(taken.Route().GetCount(), 3);
    }
    // The speeds of all routes come with the plan, not with the reading of the file.
    QFile file(At("fast.json"));
    QVERIFY(plan.Save(At("fast.json")) && file.open(QIODevice::ReadOnly));
    QJsonObject root = QJsonDocument::fromJson(file.readAll()).object();
    file.close();
    root[QStringLiteral("SlowSpeed")] = 0.75;
    QVERIFY(Write(At("fast.json"), QJsonDocument(root).toJson()));
    const float before = ZrWpts::s_msSlow;
    ZrPlanReader reader;
    QVERIFY(reader.Load(At("fast.json")));
    QCOMPARE(ZrWpts::s_msSlow, before);
    QVERIFY(plan.Take(reader));
    const float after = std::exchange(ZrWpts::s_msSlow, before);
    QCOMPARE(after, 0.75F);
}

void tst_ZrPlanDocument::stateComesBack()
{
    ZrPlanDocument plan(At("draft"));
    AddThree(plan);
    plan.SetAreas({Harbour()});
    const ZrPlanState state = plan.State();
    const float slow = ZrWpts::s_msSlow;
    plan.New();
    ZrWpts::s_msSlow = 9.0F;
    plan.Restore(state);
    QCOMPARE(ZrWpts::s_msSlow, slow);
    QCOMPARE(plan.Route().GetCount(), 3);
    QCOMPARE(plan.Areas().size(), std::size_t(1));
    QVERIFY(plan.IsDirty() && plan.HasDraft());
}

/// Writing the draft of a long route takes seconds, which no edit waits for; of many edits not each is
/// written.
void tst_ZrPlanDocument::draftOfManyWaitsForNobody()
{
    ZrPlanDocument plan(At("draft"));
    std::vector<ZrWpt> many(8000);
    for (std::size_t i = 0; i < many.size(); ++i) {
        many[i].lat = 50.0 + 1e-5 * static_cast<double>(i);
        many[i].lng = -4.0;
    }
    plan.History().InsertPattern(many, 0);
    plan.Edited();
    // The file is not there yet, the plan has one all the same.
    QVERIFY(!QFile::exists(At("draft")));
    QVERIFY(plan.HasDraft());
    plan.FlushDraft();
    ZrPlanDocument other(At("draft"));
    QVERIFY2(other.RestoreDraft(), qPrintable(other.Error()));
    QCOMPARE(other.Route().GetCount(), 8000);
}

void tst_ZrPlanDocument::discardedWhileWritten()
{
    ZrPlanDocument plan(At("draft"));
    std::vector<ZrWpt> many(3000);
    for (ZrWpt& wpt : many)
        wpt.lat = wpt.lng = 1.0;
    plan.History().InsertPattern(many, 0);
    plan.Edited();
    plan.New();
    QVERIFY(!plan.HasDraft());
    plan.FlushDraft();
    QVERIFY(!QFile::exists(At("draft")));
}

/// What could not be read again is not written.
void tst_ZrPlanDocument::tooLargeIsNotSaved()
{
    ZrPlanDocument plan((QString()));
    AddThree(plan);
    plan.Route().GetHead()->name = QString(static_cast<int>(ZrRouteFile::MaxSize), QLatin1Char('a'));
    plan.Edited();
    for (const char* name : {"a.json", "a.gpx"}) {
        QVERIFY(!plan.Save(At(name)));
        QVERIFY2(plan.Error().contains(QStringLiteral("64 MiB")), qPrintable(plan.Error()));
        QVERIFY(!QFile::exists(At(name)));
    }
}

void tst_ZrPlanDocument::newForgetsAll()
{
    ZrPlanDocument plan(At("draft"));
    AddThree(plan);
    plan.SetAreas({Harbour()});
    plan.New();
    QVERIFY(!plan.IsDirty() && !plan.HasDraft() && plan.Areas().empty() && plan.FilePath().isEmpty());
    QCOMPARE(plan.Route().GetCount(), 0);
    QVERIFY(!plan.History().CanUndo());
    QVERIFY(plan.Route().linked);
}

QTEST_GUILESS_MAIN(tst_ZrPlanDocument)
#include "tst_ZrPlanDocument.moc"
