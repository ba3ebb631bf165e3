#include "ZrKit/recording/ZrLogSource.h"
#include "ZrKit/recording/ZrLogWriter.h"
#include "ZrUtil/ZrLogItem.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

class tst_ZrLogSource : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void givesEveryItem();
    void keepsThePace();
    void doesNotWaitForGaps();
    void damagedLog();
    void damagedPayloadIsLeftOut();
    void noLog();

private:
    struct Entry
    {
        CRecType type;
        double time;
        QByteArray payload;
        bool isCompressed;
    };

    QString Write(const std::vector<Entry>& entries)
    {
        const QString path = m_dir.filePath(QStringLiteral("%1.log").arg(++m_count));
        ZrLogWriter log;
        bool ok = log.Open(path, 100.0);
        for (const Entry& e : entries)
            ok = ok && log.Write(e.type, 1, 3, e.time, e.isCompressed, zr::bytes_of(e.payload));
        return ok && log.Commit() ? path : QString();
    }

    static void Collect(ZrLogSource& source, std::vector<Entry>& found)
    {
        connect(&source, &ZrLineSource::Record, &source,
            [&found](CRecType type, u16 format, double time, const QByteArray& payload) {
                QCOMPARE(format, u16(3));
                found.push_back({type, time, payload, false});
            });
    }

    QTemporaryDir m_dir;
    int m_count = 0;
};

void tst_ZrLogSource::givesEveryItem()
{
    const QByteArray large(100000, 'a');
    const QString path
        = Write({{CRecType(0, 16), 100.0, "first", false}, {CRecType(1, 17), 101.0, large, true},
            {CRecType(rtEvent), 90.0, "event", false}, {CRecType(0, 18), 101.0, QByteArray(), false}});
    ZrLogSource source(path, 0.0, nullptr);
    QSignalSpy finished(&source, &ZrLineSource::Finished);
    QSignalSpy troubles(&source, &ZrLineSource::Trouble);
    std::vector<Entry> found;
    Collect(source, found);
    QString error;
    QVERIFY2(source.Start(&error), qPrintable(error));
    QVERIFY(source.Name().contains(path));
    QTRY_COMPARE(finished.size(), 1);
    QCOMPARE(found.size(), std::size_t(4));
    QCOMPARE(found[0].payload, QByteArray("first"));
    QVERIFY(found[1].type == CRecType(1, 17));
    QCOMPARE(found[1].payload, large);
    QCOMPARE(found[1].time, 101.0);
    QCOMPARE(found[2].payload, QByteArray("event"));
    QCOMPARE(found[3].payload, QByteArray());
    QCOMPARE(troubles.size(), 0);
}

void tst_ZrLogSource::keepsThePace()
{
    const QString path = Write({{CRecType(0, 16), 100.0, "a", false}, {CRecType(0, 16), 120.0, "b", false}});
    ZrLogSource source(path, 100.0, nullptr);
    QCOMPARE(source.TimePace().speed, 100.0);
    QSignalSpy finished(&source, &ZrLineSource::Finished);
    std::vector<Entry> found;
    Collect(source, found);
    QString error;
    QElapsedTimer clock;
    clock.start();
    QVERIFY(source.Start(&error));
    QTRY_COMPARE(finished.size(), 1);
    QCOMPARE(found.size(), std::size_t(2));
    // 20 seconds of the log, a hundred times as fast; never earlier
    QVERIFY(clock.elapsed() >= 199);
}

void tst_ZrLogSource::doesNotWaitForGaps()
{
    const QString path = Write({{CRecType(0, 16), 100.0, "a", false}, {CRecType(0, 16), 1e6, "b", false},
        {CRecType(0, 16), 50.0, "c", false},
        {CRecType(0, 16), std::numeric_limits<double>::quiet_NaN(), "d", false}});
    ZrLogSource source(path, 1.0, nullptr);
    QSignalSpy finished(&source, &ZrLineSource::Finished);
    std::vector<Entry> found;
    Collect(source, found);
    QString error;
    QVERIFY(source.Start(&error));
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, 30000);
    QCOMPARE(found.size(), std::size_t(4));
}

void tst_ZrLogSource::damagedLog()
{
    const QString path = Write({{CRecType(0, 16), 100.0, "a", false}, {CRecType(0, 16), 100.0, "b", false}});
    QFile file(path);
    QVERIFY(file.resize(file.size() - 1));
    ZrLogSource source(path, 0.0, nullptr);
    QSignalSpy finished(&source, &ZrLineSource::Finished);
    QSignalSpy troubles(&source, &ZrLineSource::Trouble);
    std::vector<Entry> found;
    Collect(source, found);
    QString error;
    QVERIFY(source.Start(&error));
    QTRY_COMPARE(finished.size(), 1);
    QCOMPARE(found.size(), std::size_t(1));
    QCOMPARE(troubles.size(), 1);
    QVERIFY(troubles[0][0].toString().contains(QStringLiteral("damaged")));
}

void tst_ZrLogSource::damagedPayloadIsLeftOut()
{
    const QString path = Write({{CRecType(0, 16), 100.0, QByteArray(5000, 'a'), true},
        {CRecType(0, 16), 100.0, QByteArray(5000, 'b'), true}, {CRecType(0, 16), 100.0, "c", false}});
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    // The announced size of the first: a payload of 4 GiB.
    QVERIFY(file.seek(48 + ZrLogItem::Size));
    QCOMPARE(file.write("\xff\xff\xff\xff", 4), qint64(4));
    file.close();
    ZrLogSource source(path, 0.0, nullptr);
    QSignalSpy finished(&source, &ZrLineSource::Finished);
    QSignalSpy troubles(&source, &ZrLineSource::Trouble);
    std::vector<Entry> found;
    Collect(source, found);
    QString error;
    QVERIFY(source.Start(&error));
    QTRY_COMPARE(finished.size(), 1);
    QCOMPARE(found.size(), std::size_t(2));
    QCOMPARE(found[0].payload, QByteArray(5000, 'b'));
    QCOMPARE(troubles.size(), 1);
    QVERIFY(troubles[0][0].toString().contains(QStringLiteral("1 damaged")));
}

void tst_ZrLogSource::noLog()
{
    QString error;
    ZrLogSource missing(m_dir.filePath(QStringLiteral("none.log")), 1.0, nullptr);
    QVERIFY(!missing.Start(&error));
    QVERIFY2(error.startsWith(QStringLiteral("Cannot read ")), qPrintable(error));
    QFile file(m_dir.filePath(QStringLiteral("text.log")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("no log at all");
    file.close();
    ZrLogSource text(file.fileName(), 1.0, nullptr);
    QVERIFY(!text.Start(&error));
    QVERIFY2(error.endsWith(QStringLiteral("is no data log")), qPrintable(error));
}

QTEST_GUILESS_MAIN(tst_ZrLogSource)
#include "tst_ZrLogSource.moc"
