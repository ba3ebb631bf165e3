#include "RecordedLog.h"
#include "ZrKit/planning/ZrRouteHistory.h"
#include "ZrKit/recording/ZrLogName.h"
#include "ZrKit/recording/ZrRecorder.h"
#include "ZrKit/records/ZrDepthRecord.h"
#include "ZrKit/records/ZrFixRecord.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/review/ZrSurveyDataset.h"
#include "ZrUtil/ZrLogEvt.h"
#include "ZrUtil/ZrWpts.h"
#include "ZrUtil/ZrXmlStore.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <vector>

namespace {

QByteArray PlanBytes()
{
    ZrWpts route;
    ZrRouteHistory history(route);
    history.Add(50.0, -4.0, eZrWptBlue, ZrWpts::eAddTail);
    history.Add(50.001, -4.0, eZrWptBlue, ZrWpts::eAddTail);
    ZrXmlStore store(true);
    route.SyncXml(*store.AddSet(QStringLiteral("Waypoints")));
    QByteArray bytes;
    store.Save(bytes);
    return bytes;
}

} // namespace

class tst_ZrRecorderParts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void splitsBySize();
    void splitsByTime();
    void everyPartBeginsWithPlanAndState();
    void planIsRestoredFromAnyPart();
    void planOfTheSource();
    void itemLargerThanAPart();
    void linesStayWithTheirRecords();
    void countsOverAllParts();
    void failsWhenTheNextPartCannotBeMade();
    void stopsBetweenPartsWhenTheDiskIsFull();
    void reasonIsTheLastItem();
    void eventBehindTheReason();
    void neverOverwrites();
    void namesWithoutParts();
    void forgetsTheStateOfAnotherSource();
    void typesAreThoseOfTheDataset();

private:
    ZrRecorder::Options Parts(qint64 bytes)
    {
        ZrRecorder::Options options;
        options.dir = m_dir->path();
        options.prefix = QStringLiteral("dive");
        options.stopBelow = options.warnBelow = 0;
        options.freeSpace = [this] { return m_free; };
        options.clock = [this] { return m_now; };
        options.splitBytes = bytes;
        options.writesHead = true;
        return options;
    }

    QStringList Files() const
    {
        const QDir dir(m_dir->path());
        QStringList paths;
        for (const QString& name : dir.entryList({QStringLiteral("*.log")}, QDir::Files, QDir::Name))
            paths += dir.filePath(name);
        return paths;
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    qint64 m_free = 1000000000;
    double m_now = 1000.0;
};

void tst_ZrRecorderParts::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    m_free = 1000000000;
    m_now = 1000.0;
}

void tst_ZrRecorderParts::splitsBySize()
{
    ZrRecorder recorder(Parts(10000), nullptr);
    QString error;
    QVERIFY2(recorder.Start(&error), qPrintable(error));
    for (int i = 0; i < 100; ++i)
        recorder.AddRecord(CRecType(0, 200), 1, i, QByteArray(960, static_cast<char>(i)));
    recorder.Stop();
    const QStringList files = Files();
    // 48 bytes of header and 9 items of 1000 bytes
    QCOMPARE(files.size(), 12);
    int next = 0;
    for (int part = 0; part < files.size(); ++part) {
        QVERIFY2(files[part].endsWith(QStringLiteral("_%1.log").arg(part + 1, 3, 10, QLatin1Char('0'))),
            qPrintable(files[part]));
        QVERIFY(QFileInfo(files[part]).size() <= 10000);
        for (const Item& item : ReadLog(files[part]))
            QCOMPARE(item.payload, QByteArray(960, static_cast<char>(next++)));
    }
    QCOMPARE(next, 100);
}

void tst_ZrRecorderParts::splitsByTime()
{
    ZrRecorder::Options options = Parts(0);
    options.splitSeconds = 60.0;
    ZrRecorder recorder(options, nullptr);
    QString error;
    QVERIFY(recorder.Start(&error));
    for (int second = 0; second < 200; ++second) {
        m_now = 1000.0 + second;
        recorder.AddRecord(CRecType(0, 200), 1, second, QByteArray::number(second));
    }
    recorder.Stop();
    const QStringList files = Files();
    QCOMPARE(files.size(), 4);
    QCOMPARE(ReadLog(files[0]).size(), std::size_t(60));
    QCOMPARE(ReadLog(files[1]).front().payload, QByteArray("60"));
    QCOMPARE(ReadLog(files[3]).size(), std::size_t(20));
    QCOMPARE(recorder.CurrentStatus().part, 4);
    QCOMPARE(recorder.CurrentStatus().file, files[3]);
}

void tst_ZrRecorderParts::everyPartBeginsWithPlanAndState()
{
    ZrRecorder::Options options = Parts(2000);
    options.plan = "plan";
    ZrRecorder recorder(options, nullptr);
    recorder.Remember(zr::rec_type(krtDepth), 1, 10.0, "depth before");
    QString error;
    QVERIFY(recorder.Start(&error));
    for (int i = 0; i < 50; ++i) {
        recorder.AddRecord(zr::rec_type(krtNavigation), 1, 100.0 + i, "navigation" + QByteArray::number(i));
        recorder.AddRecord(zr::rec_type(krtFix), 1, 100.0 + i, "fix" + QByteArray::number(i));
    }
    recorder.Stop();
    const QStringList files = Files();
    QVERIFY(files.size() > 2);
    QByteArray lastFix;
    for (const QString& file : files) {
        const std::vector<Item> items = ReadLog(file);
        QVERIFY(items.size() > 3);
        QVERIFY(items[0].inf == CRecType(rtMissionPlan));
        QCOMPARE(items[0].payload, QByteArray("plan"));
        QVERIFY(items[1].inf == zr::rec_type(krtDepth));
        QCOMPARE(items[1].payload, QByteArray("depth before"));
        QCOMPARE(items[1].inf.time, 10.0);
        if (!lastFix.isEmpty()) {
            QVERIFY(items[2].inf == zr::rec_type(krtFix));
            QCOMPARE(items[2].payload, lastFix);
        }
        // Navigation has its records: it is not repeated.
        QVERIFY(items[3].inf.type == krtNavigation || items[3].inf.type == krtFix);
        for (const Item& item : items) {
            if (item.inf.type == krtFix)
                lastFix = item.payload;
        }
    }
    QCOMPARE(lastFix, QByteArray("fix49"));
}

void tst_ZrRecorderParts::planIsRestoredFromAnyPart()
{
    ZrRecorder::Options options = Parts(3000);
    options.plan = PlanBytes();
    ZrRecorder recorder(options, nullptr);
    QString error;
    QVERIFY(recorder.Start(&error));
    ZrNavRecord nav;
    for (int i = 0; i < 60; ++i) {
        nav.latitude = 50.0 + i * 1e-5;
        nav.longitude = -4.0;
        recorder.AddRecord(zr::rec_type(krtNavigation), ZrNavRecord::Format, 100.0 + i, nav.Encode());
    }
    recorder.Stop();
    const QStringList files = Files();
    QVERIFY(files.size() > 1);
    for (const QString& file : files) {
        ZrSurveyDataset dataset;
        dataset.ReadFile(file);
        QVERIFY(!dataset.recs.empty());
        ZrXmlStore store(false);
        QVERIFY(store.Load(file + QStringLiteral(".xml")));
        ZrWpts route;
        ZrXmlSet* set = store.Set(QStringLiteral("Waypoints"));
        QVERIFY(set);
        route.SyncXml(*set);
        QCOMPARE(route.GetCount(), 2);
    }
}

void tst_ZrRecorderParts::planOfTheSource()
{
    ZrRecorder recorder(Parts(300), nullptr);
    recorder.Remember(CRecType(rtMissionPlan), 0, 5.0, "of the source");
    QString error;
    QVERIFY(recorder.Start(&error));
    for (int i = 0; i < 4; ++i)
        recorder.AddRecord(CRecType(0, 200), 1, i, QByteArray(100, 'x'));
    recorder.Stop();
    QVERIFY(Files().size() > 1);
    for (const QString& file : Files())
        QCOMPARE(ReadLog(file).front().payload, QByteArray("of the source"));
}

void tst_ZrRecorderParts::itemLargerThanAPart()
{
    ZrRecorder::Options options = Parts(1000);
    options.plan = QByteArray(5000, 'p');
    ZrRecorder recorder(options, nullptr);
    QString error;
    QVERIFY(recorder.Start(&error));
    for (int i = 0; i < 3; ++i)
        recorder.AddRecord(CRecType(0, 200), 1, i, QByteArray(4000, 'x'));
    recorder.Stop();
    QCOMPARE(Files().size(), 3);
    for (const QString& file : Files())
        QCOMPARE(ReadLog(file).size(), std::size_t(2));
}

void tst_ZrRecorderParts::linesStayWithTheirRecords()
{
    ZrRecorder::Options options = Parts(400);
    options.writesHead = false;
    ZrRecorder recorder(options, nullptr);
    QString error;
    QVERIFY(recorder.Start(&error));
    for (int i = 0; i < 10; ++i)
        recorder.AddLine("$GPGLL,4828.734,N,06830.882,W,201358,A,A*51");
    recorder.Stop();
    QVERIFY(Files().size() > 2);
    for (const QString& file : Files()) {
        const std::vector<Item> items = ReadLog(file);
        QCOMPARE(items.size() % 2, std::size_t(0));
        QVERIFY(items.front().inf == CRecType(rtSerialText));
    }
}

void tst_ZrRecorderParts::countsOverAllParts()
{
    ZrRecorder recorder(Parts(1000), nullptr);
    QString error;
    QVERIFY(recorder.Start(&error));
    QCOMPARE(recorder.CurrentStatus().part, 1);
    for (int i = 0; i < 20; ++i)
        recorder.AddRecord(CRecType(0, 200), 1, i, QByteArray(400, 'x'));
    m_now += 25.0;
    const ZrRecorder::Status status = recorder.CurrentStatus();
    recorder.Stop();
    QCOMPARE(status.items, u64(20));
    QCOMPARE(status.part, 10);
    QCOMPARE(status.seconds, 25.0);
    u64 bytes = 0;
    for (const QString& file : Files())
        bytes += static_cast<u64>(QFileInfo(file).size());
    QCOMPARE(status.bytes, bytes);
    QCOMPARE(recorder.CurrentStatus().bytes, bytes);
}

void tst_ZrRecorderParts::failsWhenTheNextPartCannotBeMade()
{
    ZrRecorder recorder(Parts(1000), nullptr);
    QSignalSpy failed(&recorder, &ZrRecorder::Failed);
    QString error;
    QVERIFY(recorder.Start(&error));
    const QString first = recorder.CurrentStatus().file;
    // A folder in the place of the next part.
    QVERIFY(QDir().mkdir(QString(first).replace(QStringLiteral("_001"), QStringLiteral("_002"))));
    for (int i = 0; i < 5; ++i)
        recorder.AddRecord(CRecType(0, 200), 1, i, QByteArray(400, 'x'));
    QCOMPARE(failed.size(), 1);
    QVERIFY(failed[0][0].toString().contains(QStringLiteral("_002.log")));
    QVERIFY(!recorder.IsRecording());
    QCOMPARE(ReadLog(first).size(), std::size_t(2));
    QCOMPARE(recorder.CurrentStatus().items, u64(2));
}

void tst_ZrRecorderParts::stopsBetweenPartsWhenTheDiskIsFull()
{
    ZrRecorder::Options options = Parts(1000);
    options.stopBelow = 1000;
    ZrRecorder recorder(options, nullptr);
    QSignalSpy failed(&recorder, &ZrRecorder::Failed);
    QString error;
    QVERIFY(recorder.Start(&error));
    m_free = 999;
    for (int i = 0; i < 5; ++i)
        recorder.AddRecord(CRecType(0, 200), 1, i, QByteArray(400, 'x'));
    QCOMPARE(failed.size(), 1);
    QCOMPARE(Files().size(), 1);
}

void tst_ZrRecorderParts::reasonIsTheLastItem()
{
    ZrRecorder::Options options = Parts(1000);
    options.stopBelow = 1000;
    options.logsReason = true;
    ZrRecorder recorder(options, nullptr);
    QSignalSpy failed(&recorder, &ZrRecorder::Failed);
    QString error;
    QVERIFY(recorder.Start(&error));
    m_free = 999;
    for (int i = 0; i < 5; ++i)
        recorder.AddRecord(CRecType(0, 200), 1, i, QByteArray(400, 'x'));
    QCOMPARE(failed.size(), 1);
    std::vector<Item> items = ReadLog(Files().constLast());
    QVERIFY(items.back().inf == CRecType(rtEvent));
    ZrLogEvt event;
    event.Load(items.back().payload);
    QCOMPARE(event.text, failed[0][0].toString());
    QCOMPARE(event.src, esSystem);
    QVERIFY(!event.uid.isNull());
}

/// An event for which a part is due on a disk that is full: the reason is written, the event is not.
void tst_ZrRecorderParts::eventBehindTheReason()
{
    ZrRecorder::Options options = Parts(1000);
    options.stopBelow = 1000;
    options.logsReason = true;
    ZrRecorder recorder(options, nullptr);
    QString error;
    QVERIFY(recorder.Start(&error));
    QVERIFY(recorder.AddRecord(CRecType(0, 200), 1, 1.0, QByteArray(400, 'x')));
    QVERIFY(recorder.AddRecord(CRecType(0, 200), 1, 2.0, QByteArray(400, 'x')));
    m_free = 999;
    QVERIFY(!recorder.AddEvent(ZrLogEvt(3.0, esUser, QStringLiteral("Target"))));
    QVERIFY(!recorder.IsRecording());
    QVERIFY(!recorder.AddRecord(CRecType(0, 200), 1, 4.0, "x"));
    std::vector<Item> items = ReadLog(Files().constLast());
    QCOMPARE(items.size(), std::size_t(3));
    ZrLogEvt event;
    event.Load(items.back().payload);
    QCOMPARE(event.src, esSystem);
}

void tst_ZrRecorderParts::neverOverwrites()
{
    const QDateTime time(QDate(2021, 3, 3), QTime(14, 5, 9));
    const QString dir = m_dir->path();
    const auto touch = [&dir](const QString& name) {
        QFile file(dir + QLatin1Char('/') + name);
        QVERIFY(file.open(QIODevice::WriteOnly));
    };
    QCOMPARE(ZrLogName::Stem(dir, QStringLiteral("a"), time), QStringLiteral("a_20210303_140509"));
    touch(QStringLiteral("a_20210303_140509.log"));
    QCOMPARE(ZrLogName::Stem(dir, QStringLiteral("a"), time), QStringLiteral("a_20210303_140509-2"));
    touch(QStringLiteral("a_20210303_140509-2_001.log"));
    QCOMPARE(ZrLogName::Stem(dir, QStringLiteral("a"), time), QStringLiteral("a_20210303_140509-3"));
    QVERIFY(QFile::link(dir + QStringLiteral("/nothing"), dir + QStringLiteral("/a_20210303_140509-3.log")));
    QCOMPARE(ZrLogName::Stem(dir, QStringLiteral("a"), time), QStringLiteral("a_20210303_140509-4"));
    QCOMPARE(ZrLogName::Stem(dir, QString(), time), QStringLiteral("20210303_140509"));

    const int before = Files().size();
    for (int i = 0; i < 3; ++i) {
        ZrRecorder recorder(Parts(0), nullptr);
        QString error;
        QVERIFY(recorder.Start(&error));
        recorder.AddRecord(CRecType(0, 200), 1, 1.0, "kept");
    }
    QCOMPARE(Files().size(), before + 3);
}

void tst_ZrRecorderParts::namesWithoutParts()
{
    ZrRecorder recorder(Parts(0), nullptr);
    QString error;
    QVERIFY(recorder.Start(&error));
    QCOMPARE(recorder.CurrentStatus().part, 0);
    const QRegularExpression name(QStringLiteral("^dive_[0-9]{8}_[0-9]{6}\\.log$"));
    QVERIFY(name.match(QFileInfo(recorder.CurrentStatus().file).fileName()).hasMatch());
}

void tst_ZrRecorderParts::forgetsTheStateOfAnotherSource()
{
    ZrRecorder recorder(Parts(0), nullptr);
    recorder.Remember(zr::rec_type(krtFix), 1, 1.0, "old");
    recorder.Remember(CRecType(rtMissionPlan), 0, 1.0, "old plan");
    recorder.Forget();
    QString error;
    QVERIFY(recorder.Start(&error));
    recorder.Stop();
    QVERIFY(ReadLog(recorder.CurrentStatus().file).empty());
}

void tst_ZrRecorderParts::typesAreThoseOfTheDataset()
{
    QVERIFY(ZrRecordHead::DefaultTypes() == ZrSurveyDataset::DefaultCrdTypes());
}

QTEST_GUILESS_MAIN(tst_ZrRecorderParts)
#include "tst_ZrRecorderParts.moc"
