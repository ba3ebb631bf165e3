// The bottom line corrected by hand: used at once, saved at once, never lost.

#include "ZrKit/import/ZrImportSession.h"
#include "ZrKit/sonar/ZrBottomFile.h"
#include "ZrKit/sonar/ZrBottomTracker.h"
#include "ZrKit/survey/ZrBottomEditor.h"
#include "ZrKit/survey/ZrSurveyRecording.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest/QtTest>

#include <cmath>

namespace {

constexpr int patience = 30000; ///< milliseconds

} // namespace

class tst_ZrBottomEditor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void strokeIsUsedAndSaved();
    void undoAndRedoAreSaved();
    void clears();
    void waterfallFollows();
    void detects();
    void detectsOneSide();
    void detectionOfAPart();
    void letGoWhileDetecting();
    void savedWhenLetGo();
    void editsWhileSaving();
    void cannotBeSaved();
    void nothingToEdit();
    void hostileValues();

private:
    ZrBottomLine OnDisk() const
    {
        ZrBottomLine line;
        ZrBottomFile file(m_log);
        file.Load(m_recording->Pings(), line);
        return line;
    }

    QTemporaryDir m_folder;
    QString m_source;
    QString m_log;
    std::shared_ptr<ZrSurveyRecording> m_recording;
    std::unique_ptr<ZrBottomEditor> m_editor;
};

void tst_ZrBottomEditor::initTestCase()
{
    m_source = m_folder.filePath(QStringLiteral("source.log"));
    m_log = m_folder.filePath(QStringLiteral("line ö.log"));
    ZrImportSession session;
    const QString xtf = QStringLiteral(ZR_SOURCE_DIR "/data/sidescan-xtf/iver2-scotsman-pings0-299.xtf");
    QCOMPARE(session.Run({xtf}, m_source, nullptr), ZrImportSession::Done);
}

void tst_ZrBottomEditor::init()
{
    for (const QString& name : QDir(m_folder.path()).entryList(QDir::Files)) {
        if (!m_source.endsWith(name))
            QFile::remove(m_folder.filePath(name));
    }
    QVERIFY(QFile::copy(m_source, m_log));
    m_recording = std::make_shared<ZrSurveyRecording>();
    QVERIFY2(m_recording->Load(m_log), qPrintable(m_recording->Error()));
    m_editor = std::make_unique<ZrBottomEditor>();
    m_editor->SetRecording(m_recording);
    QVERIFY(m_editor->IsThere());
}

void tst_ZrBottomEditor::cleanup()
{
    m_editor.reset();
    m_recording.reset();
    QDir(m_log + QStringLiteral(".bottom.json")).removeRecursively();
}

void tst_ZrBottomEditor::strokeIsUsedAndSaved()
{
    const QSignalSpy changed(m_editor.get(), &ZrBottomEditor::Changed);
    const QSignalSpy saved(m_editor.get(), &ZrBottomEditor::Saved);
    const double before = m_recording->Geo().Altitude(105);
    QVERIFY(m_editor->Draw(99.6, 8.0, 105.2, 9.0));
    QVERIFY(m_editor->Draw(105.2, 9.0, 110.4, 9.5));
    // Until the finger is lifted it is drawn and nothing else.
    QCOMPARE(m_recording->Bottom().Altitude(105), 9.0);
    QCOMPARE(m_recording->Geo().Altitude(105), before);
    QCOMPARE(changed.size(), 0);
    m_editor->EndStroke();
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed[0][0].toLongLong(), 100LL);
    QCOMPARE(changed[0][1].toLongLong(), 111LL);
    QCOMPARE(m_recording->Geo().Altitude(105), 9.0);
    QCOMPARE(m_editor->EditedCount(0, 299), std::size_t(11));
    QCOMPARE(m_editor->EditedCount(105, 107), std::size_t(3));
    QTRY_COMPARE_WITH_TIMEOUT(saved.size(), 1, patience);
    QVERIFY(m_editor->IsSaved());
    QCOMPARE(OnDisk().Altitude(105), 9.0);
    QVERIFY(OnDisk().IsEdited(110) && !OnDisk().IsEdited(111));
    // The stroke is one step.
    QVERIFY(m_editor->Undo());
    QVERIFY(!m_editor->CanUndo());
    // It is there when the log is opened again.
    QVERIFY(m_editor->Redo());
    m_editor->SetRecording(nullptr);
    ZrSurveyRecording again;
    QVERIFY(again.Load(m_log));
    QCOMPARE(again.Bottom().Altitude(105), 9.0);
    QCOMPARE(again.Geo().Altitude(105), 9.0);
}

void tst_ZrBottomEditor::undoAndRedoAreSaved()
{
    const double before = m_recording->Geo().Altitude(50);
    QVERIFY(!m_editor->Undo() && !m_editor->Redo());
    QVERIFY(m_editor->Draw(50.0, 3.0, 50.0, 3.0));
    m_editor->EndStroke();
    QVERIFY(m_editor->Undo());
    QCOMPARE(m_recording->Geo().Altitude(50), before);
    QTRY_VERIFY_WITH_TIMEOUT(m_editor->IsSaved(), patience);
    QVERIFY(!OnDisk().IsEdited(50));
    QVERIFY(m_editor->Redo());
    QVERIFY(!m_editor->CanRedo());
    QCOMPARE(m_recording->Geo().Altitude(50), 3.0);
    QTRY_VERIFY_WITH_TIMEOUT(m_editor->IsSaved(), patience);
    QCOMPARE(OnDisk().Altitude(50), 3.0);
}

void tst_ZrBottomEditor::clears()
{
    const double before = m_recording->Geo().Altitude(60);
    QVERIFY(!m_editor->Clear(0, 299));
    m_editor->Draw(50.0, 3.0, 70.0, 3.0);
    QVERIFY(m_editor->Clear(55, 65)); // ends the stroke
    QCOMPARE(m_recording->Geo().Altitude(60), before);
    QCOMPARE(m_recording->Geo().Altitude(70), 3.0);
    QVERIFY(m_editor->Undo());
    QCOMPARE(m_recording->Geo().Altitude(60), 3.0);
}

/// What the waterfall makes of a ping knows the new line.
void tst_ZrBottomEditor::waterfallFollows()
{
    ZrWaterfallLine line;
    m_recording->Waterfall()->Make(105, line);
    QVERIFY(std::fabs(line.altitude - 7.0) > 0.5);
    m_editor->Draw(100.0, 7.0, 110.0, 7.0);
    m_editor->EndStroke();
    m_recording->Waterfall()->Make(105, line);
    QCOMPARE(line.altitude, 7.0);
}

void tst_ZrBottomEditor::detects()
{
    const std::vector<double> found = m_recording->Bottom().Found();
    // Drawn a little off the echo, which the detection then comes back to.
    m_editor->Draw(100.0, found[100] + 0.8, 150.0, found[150] + 0.8);
    m_editor->EndStroke();
    const QSignalSpy tracked(m_editor.get(), &ZrBottomEditor::Tracked);
    QVERIFY(m_editor->Track(90, 160, {true, true}));
    QVERIFY(m_editor->IsTracking());
    QVERIFY(!m_editor->Track(90, 160, {true, true}));
    QTRY_COMPARE_WITH_TIMEOUT(tracked.size(), 1, patience);
    QVERIFY(tracked[0][0].toBool());
    QCOMPARE(m_editor->EditedCount(0, 299), std::size_t(0));
    for (std::size_t ping = 100; ping <= 150; ++ping)
        QVERIFY2(std::fabs(m_recording->Geo().Altitude(ping) - found[ping]) < 0.4,
            qPrintable(QStringLiteral("%1: %2").arg(ping).arg(m_recording->Geo().Altitude(ping))));
    // One step back is the line as it was drawn.
    QVERIFY(m_editor->Undo());
    QCOMPARE(m_editor->EditedCount(0, 299), std::size_t(51));
    QCOMPARE(m_recording->Geo().Altitude(100), found[100] + 0.8);
    QTRY_VERIFY_WITH_TIMEOUT(m_editor->IsSaved(), patience);
}

void tst_ZrBottomEditor::detectsOneSide()
{
    const std::vector<double> both = m_recording->Bottom().Found();
    const QSignalSpy tracked(m_editor.get(), &ZrBottomEditor::Tracked);
    std::vector<double> sides[2];
    for (const int side : {0, 1}) {
        QVERIFY(m_editor->Track(0, 299, {side == 0, side == 1}));
        QTRY_COMPARE_WITH_TIMEOUT(tracked.size(), side + 1, patience);
        sides[side] = m_recording->Bottom().Found();
        int near = 0;
        for (std::size_t ping = 0; ping < both.size(); ++ping)
            near += std::fabs(sides[side][ping] - both[ping]) < 1.5 ? 1 : 0;
        QVERIFY2(near > 250, qPrintable(QString::number(near)));
        QVERIFY(m_editor->CanUndo());
    }
    QVERIFY(sides[0] != sides[1]);
    // Nobody listens: nothing is found, and the line stays.
    const std::vector<double> before = m_recording->Bottom().Found();
    QVERIFY(m_editor->Track(0, 299, {false, false}));
    QTRY_COMPARE_WITH_TIMEOUT(tracked.size(), 3, patience);
    QVERIFY(!tracked[2][0].toBool());
    QCOMPARE(m_recording->Bottom().Found(), before);
}

void tst_ZrBottomEditor::detectionOfAPart()
{
    ZrSonarLog log;
    QVERIFY(!log.OpenAs(ZrSonarLog()));
    QVERIFY(!log.Error().isEmpty());
    QVERIFY(log.OpenAs(m_recording->SonarLog()));
    QCOMPARE(log.Pings().size(), std::size_t(300));
    std::vector<u16> own;
    QVERIFY(log.ReadSamples(17, sidePort, own));
    ZrSonarLog other;
    QVERIFY(other.Open(m_log));
    std::vector<u16> samples;
    QVERIFY(other.ReadSamples(17, sidePort, samples));
    QCOMPARE(own, samples);

    ZrBottomTracker tracker;
    const std::vector<double> all = tracker.Track(log);
    QCOMPARE(all.size(), std::size_t(300));
    ZrBottomTracker::Part part;
    QCOMPARE(tracker.Track(log, part), all);
    part.first = 100;
    part.end = 200;
    const std::vector<double> some = tracker.Track(log, part);
    QCOMPARE(some.size(), std::size_t(100));
    QCOMPARE(tracker.Confidences().size(), std::size_t(100));
    // Away from its ends it is what the whole line has.
    for (std::size_t i = 15; i < 85; ++i)
        QVERIFY(std::fabs(some[i] - all[100 + i]) < 0.05);
    part.first = 1000;
    part.end = 2000;
    QVERIFY(tracker.Track(log, part).empty());
}

void tst_ZrBottomEditor::letGoWhileDetecting()
{
    const QSignalSpy tracked(m_editor.get(), &ZrBottomEditor::Tracked);
    const QSignalSpy changed(m_editor.get(), &ZrBottomEditor::Changed);
    QVERIFY(m_editor->Track(0, 299, {true, true}));
    m_editor->SetRecording(nullptr);
    QTRY_COMPARE_WITH_TIMEOUT(tracked.size(), 1, patience);
    QVERIFY(!tracked[0][0].toBool());
    QCOMPARE(changed.size(), 0);
    // And the object ends under one.
    m_editor->SetRecording(m_recording);
    QVERIFY(m_editor->Track(0, 299, {true, true}));
    m_editor.reset();
}

void tst_ZrBottomEditor::savedWhenLetGo()
{
    m_editor->Draw(10.0, 5.0, 20.0, 5.0); // not even the finger is lifted
    m_editor->SetRecording(nullptr);
    QCOMPARE(OnDisk().Altitude(15), 5.0);
    m_editor->SetRecording(m_recording);
    m_editor->Draw(10.0, 6.0, 20.0, 6.0);
    m_editor->EndStroke();
    m_editor.reset();
    QCOMPARE(OnDisk().Altitude(15), 6.0);
}

/// The file ends with the last one, and no event loop had to run in between.
void tst_ZrBottomEditor::editsWhileSaving()
{
    for (int i = 0; i < 30; ++i) {
        m_editor->Draw(10.0, 5.0 + i, 20.0, 5.0 + i);
        m_editor->EndStroke();
    }
    QVERIFY(!m_editor->IsSaved());
    QTRY_VERIFY_WITH_TIMEOUT(m_editor->IsSaved(), patience);
    QCOMPARE(OnDisk().Altitude(15), 34.0);
}

/// A folder has the name of the file: nobody can write it.
void tst_ZrBottomEditor::cannotBeSaved()
{
    const QString path = m_log + QStringLiteral(".bottom.json");
    QFile::remove(path);
    QVERIFY(QDir().mkdir(path));
    const QSignalSpy failed(m_editor.get(), &ZrBottomEditor::SaveFailed);
    m_editor->Draw(10.0, 5.0, 20.0, 5.0);
    m_editor->EndStroke();
    QTRY_COMPARE_WITH_TIMEOUT(failed.size(), 1, patience);
    QVERIFY2(failed[0][0].toString().contains(path), qPrintable(failed[0][0].toString()));
    QVERIFY(!m_editor->IsSaved());
    QCOMPARE(m_recording->Geo().Altitude(15), 5.0);
    // Once it can be written it is all there.
    QVERIFY(QDir().rmdir(path));
    m_editor->Draw(30.0, 6.0, 40.0, 6.0);
    m_editor->EndStroke();
    QTRY_VERIFY_WITH_TIMEOUT(m_editor->IsSaved(), patience);
    QCOMPARE(OnDisk().Altitude(15), 5.0);
    QCOMPARE(OnDisk().Altitude(35), 6.0);
    QCOMPARE(failed.size(), 1);
}

void tst_ZrBottomEditor::nothingToEdit()
{
    m_editor->SetRecording(nullptr);
    QVERIFY(!m_editor->IsThere());
    QVERIFY(!m_editor->Draw(1.0, 1.0, 2.0, 2.0));
    m_editor->EndStroke();
    QVERIFY(!m_editor->Clear(0, 10) && !m_editor->Undo() && !m_editor->Redo());
    QVERIFY(!m_editor->Track(0, 10, {true, true}));
    QCOMPARE(m_editor->EditedCount(0, 10), std::size_t(0));
    QVERIFY(m_editor->IsSaved());
    // No file came of it.
    QVERIFY(!QFile::exists(m_log + QStringLiteral(".bottom.json")));
}

void tst_ZrBottomEditor::hostileValues()
{
    const double infinite = std::numeric_limits<double>::infinity();
    for (const double value : {std::nan(""), infinite, -infinite}) {
        QVERIFY(!m_editor->Draw(value, 5.0, 10.0, 5.0));
        QVERIFY(!m_editor->Draw(5.0, 5.0, value, 5.0));
        QVERIFY(!m_editor->Draw(5.0, value, 10.0, 5.0));
        QVERIFY(!m_editor->Draw(5.0, 5.0, 10.0, value));
    }
    QVERIFY(!m_editor->Draw(5.0, -1.0, 10.0, 5.0));
    QVERIFY(!m_editor->Draw(1000.0, 5.0, 2000.0, 5.0));
    QVERIFY(m_editor->Draw(-5.0, 5.0, 2.0, 5.0)); // from the edge of the picture
    m_editor->EndStroke();
    QCOMPARE(m_editor->EditedCount(0, 299), std::size_t(3));
}

QTEST_GUILESS_MAIN(tst_ZrBottomEditor)
#include "tst_ZrBottomEditor.moc"
