// The list of recent recordings: made beside the thread that shows it, with outlines from the indexes.

#include "ZrKit/review/ZrDatasetReader.h"
#include "ZrKit/review/ZrRecent.h"
#include "ZrKit/review/ZrRecordingList.h"
#include "ZrKit/review/ZrSurveyDataset.h"
#include "ZrSurveyLog.h"

#include <QSignalSpy>
#include <QtTest>

using survey::S;

class tst_ZrRecordingList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void newestFirst();
    void most();
    void outline();
    void outlineAcrossTheDateLine();
    void noOutline();
    void damaged();
    void noFolder_data();
    void noFolder();
    void askedAgain();
    void firstOfMany();
    void openedOnce();
    void deletedAtWork();
    void freeBytes();
    void equality();

private:
    QString Make(const char* name, double created, const QByteArray& bytes);
    QString MakeTrack(const char* name, const QVector<QPointF>& positions);
    static void Index(const QString& path);
    void List(int most = 50);
    QStringList Names() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<MessageCatcher> m_messages;
    std::unique_ptr<ZrRecordingList> m_list;
};

void tst_ZrRecordingList::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_messages = std::make_unique<MessageCatcher>();
    m_list = std::make_unique<ZrRecordingList>();
}

void tst_ZrRecordingList::cleanup()
{
    m_list.reset();
    m_messages.reset();
}

QString tst_ZrRecordingList::Make(const char* name, double created, const QByteArray& bytes)
{
    QByteArray time;
    AppendLe(time, created);
    const QString path = m_folder->filePath(S(name));
    WriteWhole(path, Patched(bytes, 40, time));
    return path;
}

/// A log of longitudes and latitudes, with its index.
QString tst_ZrRecordingList::MakeTrack(const char* name, const QVector<QPointF>& positions)
{
    LogBytes log;
    for (int i = 0; i < positions.size(); ++i) {
        survey::Nav nav;
        nav.longitude = positions[i].x();
        nav.latitude = positions[i].y();
        log.Add(survey::NavItem(survey::startTime + i, nav));
    }
    const QString path = Make(name, survey::startTime, log.Bytes());
    Index(path);
    return path;
}

void tst_ZrRecordingList::Index(const QString& path)
{
    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(path, dataset), ZrDatasetReader::Built);
}

void tst_ZrRecordingList::List(int most)
{
    QSignalSpy finished(m_list.get(), &ZrRecordingList::Finished);
    m_list->List(m_folder->path(), most);
    QVERIFY(m_list->IsListing());
    QTRY_COMPARE(finished.count(), 1);
    QVERIFY(!m_list->IsListing());
}

QStringList tst_ZrRecordingList::Names() const
{
    QStringList names;
    for (const ZrRecording& recording : m_list->Recordings())
        names.append(QFileInfo(recording.log.path).fileName());
    return names;
}

void tst_ZrRecordingList::newestFirst()
{
    const QByteArray empty = LogBytes().Bytes();
    Make("b ß.log", 2000.0, empty);
    Make("a.log", 3000.0, empty);
    Make("c.LOG", 1000.0, empty);
    WriteWhole(m_folder->filePath(S("notes.txt")), "no log");
    List();
    QCOMPARE(Names(), QStringList({S("a.log"), S("b ß.log"), S("c.LOG")}));
    QCOMPARE(m_list->Error(), QString());
    QCOMPARE(m_list->Recordings()[0].log.size, u64(empty.size()));
}

void tst_ZrRecordingList::most()
{
    for (int i = 0; i < 5; ++i)
        Make(QByteArray::number(i).append(".log").constData(), 1000.0 + i, LogBytes().Bytes());
    List(2);
    QCOMPARE(Names(), QStringList({S("4.log"), S("3.log")}));
    List(0);
    QCOMPARE(Names(), QStringList());
    List(-1);
    QCOMPARE(Names(), QStringList());
}

void tst_ZrRecordingList::outline()
{
    // A degree of longitude is half as long at 60 degrees north.
    MakeTrack("a.log", {QPointF(10.0, 60.0), QPointF(10.02, 60.0), QPointF(10.02, 59.996)});
    List();
    const QPolygonF outline = m_list->Recordings().value(0).outline;
    QCOMPARE(outline.size(), 3);
    QVERIFY(QLineF(outline[0], QPointF(0.0, 0.0)).length() < 1e-9);
    QVERIFY(QLineF(outline[1], QPointF(1.0, 0.0)).length() < 1e-9);
    QVERIFY(QLineF(outline[2], QPointF(1.0, 0.4)).length() < 1e-9);

    QVector<QPointF> longer;
    for (int i = 0; i < 5000; ++i)
        longer.append(QPointF(10.0 + i * 1e-5, 50.0));
    MakeTrack("a.log", longer);
    List();
    const QPolygonF thinned = m_list->Recordings().value(0).outline;
    QCOMPARE(thinned.size(), ZrRecordingList::Points);
    QCOMPARE(thinned.front().x(), 0.0);
    QVERIFY(std::abs(thinned.back().x() - 1.0) < 1e-9); // the last record is among them
}

void tst_ZrRecordingList::outlineAcrossTheDateLine()
{
    MakeTrack("a.log", {QPointF(179.99, 0.0), QPointF(-179.99, 0.0), QPointF(-179.99, 0.01)});
    List();
    const QPolygonF outline = m_list->Recordings().value(0).outline;
    QCOMPARE(outline.size(), 3);
    QVERIFY(std::abs(outline[1].x() - 1.0) < 1e-9);
    QVERIFY(std::abs(outline[0].y() - 0.5) < 1e-6);
}

void tst_ZrRecordingList::noOutline()
{
    // No index; an index without positions; one place only; an index of another log.
    Make("a.log", 1.0, survey::SurveyLog(10).Bytes());
    const double nan = std::nan("");
    MakeTrack("b.log", {QPointF(nan, nan), QPointF(nan, nan)});
    MakeTrack("c.log", {QPointF(1.0, 1.0), QPointF(1.0, 1.0)});
    const QString grown = MakeTrack("d.log", {QPointF(1.0, 1.0), QPointF(2.0, 1.0)});
    AppendTo(grown, survey::NavItem(7).Bytes());
    const QString cut = MakeTrack("e.log", {QPointF(1.0, 1.0), QPointF(2.0, 1.0)});
    QFile index(cut + S(".zri"));
    QVERIFY(index.resize(index.size() - 1));
    List();
    QCOMPARE(m_list->Recordings().size(), 5);
    for (const ZrRecording& recording : m_list->Recordings())
        QVERIFY2(recording.outline.isEmpty(), qPrintable(recording.log.path));
}

void tst_ZrRecordingList::damaged()
{
    const QByteArray good = survey::SurveyLog(10).Bytes();
    Make("a.log", 1000.0, good);
    Make("b.log", 2000.0, good.left(good.size() - 5));
    WriteWhole(m_folder->filePath(S("c.log")), QByteArray());
    List();
    for (const ZrRecording& recording : m_list->Recordings())
        QCOMPARE(recording.log.isDamaged, !recording.log.path.endsWith(S("a.log")));
}

void tst_ZrRecordingList::noFolder_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<bool>("isError");
    QTest::newRow("none") << QString() << false;
    QTest::newRow("not there yet") << S("/tmp/nowhere at all äß") << false;
    QTest::newRow("a file") << S("/etc/passwd") << true;
}

void tst_ZrRecordingList::noFolder()
{
    QFETCH(QString, folder);
    QFETCH(bool, isError);
    QSignalSpy finished(m_list.get(), &ZrRecordingList::Finished);
    m_list->List(folder, 10);
    QTRY_COMPARE(finished.count(), 1);
    QVERIFY(m_list->Recordings().isEmpty());
    QCOMPARE(!m_list->Error().isEmpty(), isError);
}

void tst_ZrRecordingList::askedAgain()
{
    for (int i = 0; i < 30; ++i)
        Make(QByteArray::number(i).append(".log").constData(), 1000.0 + i, survey::SurveyLog(5).Bytes());
    QSignalSpy finished(m_list.get(), &ZrRecordingList::Finished);
    m_list->List(m_folder->path(), 50);
    m_list->List(m_folder->path(), 7);
    m_list->List(m_folder->path(), 4);
    QTRY_VERIFY(!m_list->IsListing());
    QCOMPARE(finished.count(), 1);
    QCOMPARE(m_list->Recordings().size(), 4);
}

/// The latest of many are there before the others.
void tst_ZrRecordingList::firstOfMany()
{
    const int count = ZrRecordingList::AtOnce + 30;
    for (int i = 0; i < count; ++i)
        Make(QByteArray::number(i).append(".log").constData(), 1000.0 + i, LogBytes().Bytes());
    QSignalSpy listed(m_list.get(), &ZrRecordingList::Listed);
    int first = -1;
    connect(m_list.get(), &ZrRecordingList::Listed, this, [&] {
        first = m_list->Recordings().size();
        QVERIFY(m_list->IsListing());
        QCOMPARE(Names().front(), S("%1.log").arg(count - 1));
    });
    List(1000);
    QCOMPARE(listed.count(), 1);
    QCOMPARE(first, ZrRecordingList::AtOnce);
    QCOMPARE(m_list->Recordings().size(), count);
    QCOMPARE(Names().front(), S("%1.log").arg(count - 1));
    QCOMPARE(Names().back(), S("0.log"));
    // When all are there, they stay until there are others.
    List(1000);
    QCOMPARE(listed.count(), 1);
    // Of few there is nothing to be told early.
    List(ZrRecordingList::AtOnce);
    QCOMPARE(listed.count(), 1);
}

/// What has not changed is not looked into again.
void tst_ZrRecordingList::openedOnce()
{
    for (int i = 0; i < 5; ++i)
        Make(QByteArray::number(i).append(".log").constData(), 1000.0 + i, survey::SurveyLog(5).Bytes());
    List();
    QCOMPARE(m_list->Looks(), 5);
    const QVector<ZrRecording> before = m_list->Recordings();
    List();
    QCOMPARE(m_list->Looks(), 5);
    QCOMPARE(m_list->Recordings(), before);
    // One grew, one has an index now, one is gone, one is new.
    AppendTo(m_folder->filePath(S("0.log")), survey::NavItem(7).Bytes());
    Index(m_folder->filePath(S("1.log")));
    QVERIFY(QFile::remove(m_folder->filePath(S("2.log"))));
    Make("5.log", 2000.0, survey::SurveyLog(5).Bytes());
    List();
    QCOMPARE(m_list->Looks(), 8);
    QCOMPARE(m_list->Recordings().size(), 5);
    int indexed = 0;
    for (const ZrRecording& recording : m_list->Recordings())
        indexed += recording.log.isIndexed && !recording.outline.isEmpty() ? 1 : 0;
    QCOMPARE(indexed, 1);
}

void tst_ZrRecordingList::deletedAtWork()
{
    for (int i = 0; i < 30; ++i)
        Make(QByteArray::number(i).append(".log").constData(), 1000.0 + i, survey::SurveyLog(5).Bytes());
    QSignalSpy finished(m_list.get(), &ZrRecordingList::Finished);
    m_list->List(m_folder->path(), 50);
    m_list.reset();
    QCoreApplication::processEvents();
    QCOMPARE(finished.count(), 0);
}

void tst_ZrRecordingList::freeBytes()
{
    QCOMPARE(ZrRecordingList::FreeBytesOf(QString()), qint64(-1));
    QVERIFY(ZrRecordingList::FreeBytesOf(m_folder->path()) > 0);
    // A folder that is not there yet will be on the volume of the one that is.
    QVERIFY(ZrRecordingList::FreeBytesOf(m_folder->filePath(S("new/deep ä"))) > 0);
    List();
    QVERIFY(m_list->FreeBytes() > 0);
}

void tst_ZrRecordingList::equality()
{
    const ZrRecording standard;
    QVERIFY(standard == ZrRecording()); // although its times are no numbers
    ZrRecording other;
    other.log.duration = 3.0;
    QVERIFY(other != standard);
    other = standard;
    other.outline.append(QPointF(1.0, 2.0));
    QVERIFY(other != standard);
    other = standard;
    other.log.isDamaged = true;
    QVERIFY(other != standard);
}

QTEST_GUILESS_MAIN(tst_ZrRecordingList)
#include "tst_ZrRecordingList.moc"
