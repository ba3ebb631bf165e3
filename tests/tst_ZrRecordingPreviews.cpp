// Outlines of recordings that nobody has opened: made one after the other, once each.

#include "ZrKit/records/ZrFixRecord.h"
#include "ZrKit/review/ZrRecordingList.h"
#include "ZrKit/review/ZrRecordingPreviews.h"
#include "ZrSurveyLog.h"

#include <QSignalSpy>
#include <QtTest>

using survey::S;

class tst_ZrRecordingPreviews : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void newestFirst();
    void ofFixes();
    void onceEach_data();
    void onceEach();
    void grownIsTriedAgain();
    void tooLargeIsLeft();
    void readOnlyFolder();
    void indexedIsLeft();
    void cancelled();
    void wantedInPlaceOfThose();
    void bounded();
    void endsAtWork();

private:
    QString Make(const QString& name, double created, const QByteArray& bytes);
    QVector<ZrRecording> List();

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<MessageCatcher> m_messages;
    std::unique_ptr<ZrRecordingPreviews> m_previews;
};

void tst_ZrRecordingPreviews::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_messages = std::make_unique<MessageCatcher>();
    m_previews = std::make_unique<ZrRecordingPreviews>();
}

void tst_ZrRecordingPreviews::cleanup()
{
    m_previews.reset();
    m_messages.reset();
}

QString tst_ZrRecordingPreviews::Make(const QString& name, double created, const QByteArray& bytes)
{
    QByteArray time;
    AppendLe(time, created);
    const QString path = m_folder->filePath(name);
    WriteWhole(path, bytes.size() > 48 ? Patched(bytes, 40, time) : bytes);
    return path;
}

QVector<ZrRecording> tst_ZrRecordingPreviews::List()
{
    ZrRecordingList list;
    QSignalSpy finished(&list, &ZrRecordingList::Finished);
    list.List(m_folder->path(), 1000);
    finished.wait(20000);
    return list.Recordings();
}

void tst_ZrRecordingPreviews::newestFirst()
{
    for (int i = 0; i < 4; ++i)
        Make(S("dive ä %1.log").arg(i), 1000.0 + i, survey::SurveyLog(20).Bytes());
    const QVector<ZrRecording> before = List();
    QCOMPARE(before.size(), 4);
    QSignalSpy made(m_previews.get(), &ZrRecordingPreviews::Made);
    m_previews->Want(before);
    QVERIFY(m_previews->IsWorking());
    QCOMPARE(made.count(), 0); // nobody waits
    QTRY_COMPARE(made.count(), 4);
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(made[i][0].toString(), before[i].log.path);
        QVERIFY(before[i].outline.isEmpty());
        QVERIFY(m_previews->Outline(before[i]).size() > 1);
    }
    // The next list has them itself, and they are the same.
    const QVector<ZrRecording> after = List();
    for (const ZrRecording& recording : after) {
        QVERIFY(recording.log.isIndexed);
        QCOMPARE(recording.outline, m_previews->Outline(recording));
    }
    m_previews->Want(after);
    QVERIFY(!m_previews->IsWorking());
    QCOMPARE(m_previews->Tries(), 4);
    // Nobody has opened them: no plan was put beside them.
    QCOMPARE(QDir(m_folder->path()).entryList({S("*.xml")}).size(), 0);
}

void tst_ZrRecordingPreviews::ofFixes()
{
    LogBytes log;
    for (int i = 0; i < 10; ++i) {
        ZrFixRecord fix;
        fix.latitude = 50.0 + 0.001 * i;
        fix.longitude = -4.0;
        fix.quality = 1;
        log.Add(survey::TimedItem(krtFix, 0, survey::startTime + i, fix.Encode()));
    }
    Make(S("fixes.log"), 1000.0, log.Bytes());
    const QVector<ZrRecording> recordings = List();
    m_previews->Want(recordings);
    QTRY_VERIFY(!m_previews->IsWorking());
    QVERIFY(m_previews->Outline(recordings[0]).size() > 1);
}

void tst_ZrRecordingPreviews::onceEach_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("hasOutline");
    const QByteArray good = survey::SurveyLog(20).Bytes();
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("no log at all") << QByteArray(5000, 'x') << false;
    QTest::newRow("header alone") << LogBytes().Bytes() << false;
    QTest::newRow("cut in the header") << good.left(20) << false;
    QTest::newRow("breaks off") << good.left(good.size() - 5) << true;
}

/// A record that cannot be read is tried once, however often it is listed.
void tst_ZrRecordingPreviews::onceEach()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, hasOutline);
    WriteWhole(m_folder->filePath(S("damaged.log")), bytes);
    for (int i = 0; i < 5; ++i) {
        const QVector<ZrRecording> recordings = List();
        QCOMPARE(recordings.size(), 1);
        m_previews->Want(recordings);
        QTRY_VERIFY(!m_previews->IsWorking());
        QCOMPARE(m_previews->Tries(), 1);
        QCOMPARE(!m_previews->Outline(recordings[0]).isEmpty(), hasOutline);
    }
}

void tst_ZrRecordingPreviews::grownIsTriedAgain()
{
    const QString path = Make(S("grows.log"), 1000.0, LogBytes().Bytes());
    m_previews->Want(List());
    QTRY_VERIFY(!m_previews->IsWorking());
    QCOMPARE(m_previews->Tries(), 1);
    AppendTo(path, survey::NavItem(1).Bytes());
    AppendTo(path, survey::NavItem(2).Bytes());
    m_previews->Want(List());
    QTRY_VERIFY(!m_previews->IsWorking());
    QCOMPARE(m_previews->Tries(), 2);
}

void tst_ZrRecordingPreviews::tooLargeIsLeft()
{
    const QString path = Make(S("large.log"), 1000.0, survey::SurveyLog(5).Bytes());
    QVERIFY(QFile::resize(path, static_cast<qint64>(ZrRecordingPreviews::LargestLog) + 1));
    m_previews->Want(List());
    QVERIFY(!m_previews->IsWorking());
    QCOMPARE(m_previews->Tries(), 0);
}

/// The index has no place there; the picture is known all the same.
void tst_ZrRecordingPreviews::readOnlyFolder()
{
    const QString path = Make(S("a.log"), 1000.0, survey::SurveyLog(20).Bytes());
    // Root may write everywhere, but not in the place of a folder that holds something.
    QVERIFY(QDir().mkpath(path + S(".zri/x")));
    for (int i = 0; i < 3; ++i) {
        const QVector<ZrRecording> recordings = List();
        m_previews->Want(recordings);
        QTRY_VERIFY(!m_previews->IsWorking());
        QVERIFY(recordings[0].outline.isEmpty());
        QVERIFY(m_previews->Outline(recordings[0]).size() > 1);
    }
    QCOMPARE(m_previews->Tries(), 1);
}

void tst_ZrRecordingPreviews::indexedIsLeft()
{
    ZrRecording recording;
    recording.log.path = m_folder->filePath(S("there.log"));
    recording.log.isIndexed = true; // without any position
    m_previews->Want({recording});
    QCOMPARE(m_previews->Tries(), 0);
}

/// Nothing is made any more, and what was not made is made when it is wanted again.
void tst_ZrRecordingPreviews::cancelled()
{
    for (int i = 0; i < 20; ++i)
        Make(S("%1.log").arg(i), 1000.0 + i, survey::SurveyLog(200).Bytes());
    const QVector<ZrRecording> recordings = List();
    m_previews->Want(recordings);
    m_previews->Cancel();
    QTRY_VERIFY(!m_previews->IsWorking());
    QCOMPARE(m_previews->Tries(), 1);
    QSignalSpy made(m_previews.get(), &ZrRecordingPreviews::Made);
    m_previews->Want(recordings);
    QTRY_COMPARE(made.count() + (m_previews->Tries() == 20 ? 1 : 0), 20);
    QTRY_VERIFY(!m_previews->IsWorking());
    for (const ZrRecording& recording : List())
        QVERIFY(!recording.outline.isEmpty());
}

void tst_ZrRecordingPreviews::wantedInPlaceOfThose()
{
    for (int i = 0; i < 3; ++i)
        Make(S("%1.log").arg(i), 1000.0 + i, survey::SurveyLog(20).Bytes());
    const QVector<ZrRecording> recordings = List();
    m_previews->Want(recordings);
    m_previews->Want({recordings[2]});
    QTRY_VERIFY(!m_previews->IsWorking());
    QVERIFY(!m_previews->Outline(recordings[0]).isEmpty()); // was under way
    QVERIFY(m_previews->Outline(recordings[1]).isEmpty());
    QVERIFY(!m_previews->Outline(recordings[2]).isEmpty());
}

void tst_ZrRecordingPreviews::bounded()
{
    const int count = ZrRecordingPreviews::Kept + 20;
    const QByteArray bytes = survey::SurveyLog(3).Bytes();
    for (int i = 0; i < count; ++i)
        Make(S("%1.log").arg(i), 1000.0 + i, bytes);
    const QVector<ZrRecording> recordings = List();
    m_previews->Want(recordings);
    QTRY_VERIFY_WITH_TIMEOUT(!m_previews->IsWorking(), 120000);
    int kept = 0;
    for (const ZrRecording& recording : recordings)
        kept += m_previews->Outline(recording).isEmpty() ? 0 : 1;
    QCOMPARE(kept, ZrRecordingPreviews::Kept);
}

void tst_ZrRecordingPreviews::endsAtWork()
{
    Make(S("a.log"), 1000.0, survey::SurveyLog(2000).Bytes());
    QSignalSpy made(m_previews.get(), &ZrRecordingPreviews::Made);
    m_previews->Want(List());
    m_previews.reset();
    QCoreApplication::processEvents();
    QCOMPARE(made.count(), 0);
}

QTEST_GUILESS_MAIN(tst_ZrRecordingPreviews)
#include "tst_ZrRecordingPreviews.moc"
