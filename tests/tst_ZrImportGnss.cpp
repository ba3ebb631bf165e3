#include "ZrKit/import/ZrImporter.h"
#include "ZrKit/records/ZrDepthRecord.h"
#include "ZrKit/records/ZrFixRecord.h"
#include "import_fixture.h"

#include <QtTest/QtTest>

#include <cmath>

using fixture::Imported;

namespace {

Imported importBytes(const QByteArray& bytes)
{
    QTemporaryDir folder;
    return fixture::import(fixture::write(folder, QStringLiteral("file"), bytes), QStringLiteral("gnss"));
}

Imported importFix(const QByteArray& row)
{
    return importBytes("Timestamp;Longitude;Latitude;EllipsoidalHeight;Status;Service\n" + row + "\n");
}

} // namespace

class tst_ZrImportGnss : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void realPositionsAreReadWhole();
    void realSoundingsAreReadWhole();
    void timesKeepTheirMicroseconds_data();
    void timesKeepTheirMicroseconds();
    void statusBecomesQuality_data();
    void statusBecomesQuality();
    void positionsThatAreNone_data();
    void positionsThatAreNone();
    void depthThatIsNoBottom();
    void columnsAreFoundByName();
    void bothKindsInOneTable();
    void optionalColumnsMayBeMissing();
    void damagedRowsAreLeftOut_data();
    void damagedRowsAreLeftOut();
    void notesOfDamagedRowsAreNotCounted();
    void tableWithoutDataColumnsIsRefused();
    void stepsBackInTimeAreCounted();
};

void tst_ZrImportGnss::realPositionsAreReadWhole()
{
    const Imported got = fixture::import(fixture::data("gnss-echosounder/2022.05.30_201358_gnss.txt"));
    QCOMPARE(got.items.size(), 3601);
    QCOMPARE(got.Count(krtFix), 3601);
    QCOMPARE(got.report.records, u64(3601));
    QCOMPARE(got.report.issueCount, u64(0));
    QVERIFY(got.report.notes.isEmpty());
    QCOMPARE(got.report.backwards, u64(0));
    QVERIFY(got.report.firstTime == 1653941638.0);
    QVERIFY(got.report.lastTime == 1653945238.0);
    double latitudes = 0.0;
    double longitudes = 0.0;
    double heights = 0.0;
    for (const ZrImportItem& item : got.items) {
        const ZrFixRecord fix = fixture::decoded<ZrFixRecord>(item);
        latitudes += fix.latitude;
        longitudes += fix.longitude;
        heights += static_cast<double>(fix.height);
        QCOMPARE(int(fix.quality), 2);
        QCOMPARE(int(fix.satellites), 255);
        QVERIFY(std::isnan(fix.hdop));
    }
    QVERIFY(std::fabs(latitudes - 174572.36053466136) < 1e-6);
    QVERIFY(std::fabs(longitudes - -246721.33806334762) < 1e-6);
    QVERIFY(std::fabs(heights - 80369.2) < 0.01);
    const ZrFixRecord last = fixture::decoded<ZrFixRecord>(got.items.last());
    QVERIFY(last.longitude == -68.5146701670 && last.latitude == 48.4788485000);
    QCOMPARE(last.height, 21.3f);
}

void tst_ZrImportGnss::realSoundingsAreReadWhole()
{
    const Imported got = fixture::import(fixture::data("gnss-echosounder/2022.05.30_201358_sonar.txt"));
    QCOMPARE(got.items.size(), 3594);
    QCOMPARE(got.Count(krtDepth), 3594);
    QCOMPARE(got.report.issueCount, u64(0));
    QVERIFY(got.report.firstTime == 1653941640.952522);
    QVERIFY(got.items.at(100).time == 1653941741.080446);
    QVERIFY(got.report.lastTime == 1653945239.384450);
    double depths = 0.0;
    for (const ZrImportItem& item : got.items) {
        const ZrDepthRecord sounding = fixture::decoded<ZrDepthRecord>(item);
        depths += static_cast<double>(sounding.depth);
        QVERIFY(std::isnan(sounding.offset));
    }
    QVERIFY2(std::fabs(depths - 16361.4) < 0.01, qPrintable(QString::number(depths, 'f', 4)));
}

void tst_ZrImportGnss::timesKeepTheirMicroseconds_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("time");
    QTest::newRow("microsecond") << QByteArray("2022-05-30 20:14:00.000001") << 1653941640.000001;
    QTest::newRow("all nines") << QByteArray("2022-05-30 20:13:59.999999") << 1653941639.999999;
    QTest::newRow("no decimals") << QByteArray("2022-05-30 20:14:00") << 1653941640.0;
    QTest::newRow("one decimal") << QByteArray("2022-05-30 20:14:00.5") << 1653941640.5;
    QTest::newRow("nanoseconds") << QByteArray("2022-05-30 20:14:00.123456789") << 1653941640.123456789;
    QTest::newRow("many digits") << QByteArray("2022-05-30 20:14:00.25000000000000000000001")
                                 << 1653941640.25;
    QTest::newRow("T and Z") << QByteArray("2022-05-30T20:14:00.25Z") << 1653941640.25;
    QTest::newRow("offset east") << QByteArray("2022-05-30T22:14:00+02:00") << 1653941640.0;
    QTest::newRow("offset west without colon") << QByteArray("2022-05-30T16:44:00-0330") << 1653941640.0;
    QTest::newRow("leap day") << QByteArray("2020-02-29 00:00:00") << 1582934400.0;
    QTest::newRow("epoch") << QByteArray("1970-01-01 00:00:00.000001") << 0.000001;
    QTest::newRow("far future") << QByteArray("9999-12-31 23:59:59") << 253402300799.0;
}

void tst_ZrImportGnss::timesKeepTheirMicroseconds()
{
    QFETCH(QByteArray, text);
    QFETCH(double, time);
    const Imported got = importBytes("Timestamp;Depth\n" + text + ";1\n");
    QCOMPARE(got.Issues(), QString());
    QCOMPARE(got.items.size(), 1);
    QVERIFY2(got.items.at(0).time == time, qPrintable(QString::number(got.items.at(0).time, 'f', 9)));
}

void tst_ZrImportGnss::statusBecomesQuality_data()
{
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<int>("quality");
    QTest::addColumn<int>("notes");
    QTest::newRow("no fix") << QByteArray("-1") << 0 << 0;
    QTest::newRow("fix") << QByteArray("0") << 1 << 0;
    QTest::newRow("corrected by satellites") << QByteArray("1") << 2 << 0;
    QTest::newRow("corrected from the ground") << QByteArray("2") << 2 << 0;
    QTest::newRow("unheard of") << QByteArray("7") << 255 << 1;
    QTest::newRow("none") << QByteArray("") << 255 << 0;
}

void tst_ZrImportGnss::statusBecomesQuality()
{
    QFETCH(QByteArray, status);
    QFETCH(int, quality);
    QFETCH(int, notes);
    const Imported got = importFix("2022-05-30 20:14:00;-68.5;48.5;20.9;" + status + ";1");
    QCOMPARE(got.items.size(), 1);
    QCOMPARE(int(fixture::decoded<ZrFixRecord>(got.items.at(0)).quality), quality);
    QCOMPARE(got.report.notes.size(), notes);
}

void tst_ZrImportGnss::positionsThatAreNone_data()
{
    QTest::addColumn<QByteArray>("position");
    QTest::addColumn<QString>("issue");
    const QString none;
    QTest::newRow("0,0") << QByteArray("0.0;0.0") << none;
    QTest::newRow("empty") << QByteArray(";") << none;
    QTest::newRow("beyond the pole") << QByteArray("10;90.0001")
                                     << "line 2: Latitude \"90.0001\" lies beyond 90 degrees";
    QTest::newRow("beyond the date line")
        << QByteArray("-180.5;10") << "line 2: Longitude \"-180.5\" lies beyond 180 degrees";
}

void tst_ZrImportGnss::positionsThatAreNone()
{
    QFETCH(QByteArray, position);
    QFETCH(QString, issue);
    const Imported got = importFix("2022-05-30 20:14:00;" + position + ";20.5;0;1");
    QCOMPARE(got.Issues(), issue);
    QCOMPARE(got.items.size(), issue.isEmpty() ? 1 : 0);
    if (issue.isEmpty()) {
        const ZrFixRecord fix = fixture::decoded<ZrFixRecord>(got.items.at(0));
        QVERIFY(std::isnan(fix.latitude) && std::isnan(fix.longitude));
        QCOMPARE(fix.height, 20.5f);
    }
    QCOMPARE(got.Note("the position is 0,0: taken as not known"), u64(position.startsWith("0.0") ? 1 : 0));
}

void tst_ZrImportGnss::depthThatIsNoBottom()
{
    const Imported got = importBytes("Timestamp;Depth\n2022-05-30 20:14:00;0.000\n2022-05-30 20:14:01;-3\n"
                                     "2022-05-30 20:14:02;\n2022-05-30 20:14:03;0.1\n");
    QCOMPARE(got.items.size(), 4);
    for (int i = 0; i < 3; ++i)
        QVERIFY(std::isnan(fixture::decoded<ZrDepthRecord>(got.items.at(i)).depth));
    QCOMPARE(fixture::decoded<ZrDepthRecord>(got.items.at(3)).depth, 0.1f);
    QCOMPARE(got.Note("the depth is 0 or less: no bottom was found"), u64(2));
}

void tst_ZrImportGnss::columnsAreFoundByName()
{
    const Imported got = importBytes("\xEF\xBB\xBFlatitude;Other;TIMESTAMP;Longitude\r\n"
                                     "48.25;x;2022-05-30 20:14:00;-68.5\r\n");
    QCOMPARE(got.items.size(), 1);
    const ZrFixRecord fix = fixture::decoded<ZrFixRecord>(got.items.at(0));
    QCOMPARE(fix.latitude, 48.25);
    QCOMPARE(fix.longitude, -68.5);
}

void tst_ZrImportGnss::bothKindsInOneTable()
{
    const Imported got
        = importBytes("Timestamp;Depth;Longitude;Latitude\n2022-05-30 20:14:00;7.5;-68.5;48.5\n");
    QCOMPARE(got.items.size(), 2);
    QCOMPARE(fixture::decoded<ZrFixRecord>(got.items.at(0)).latitude, 48.5);
    QCOMPARE(fixture::decoded<ZrDepthRecord>(got.items.at(1)).depth, 7.5f);
    QCOMPARE(got.report.records, u64(1));
    QCOMPARE(got.report.items, u64(2));
}

void tst_ZrImportGnss::optionalColumnsMayBeMissing()
{
    const Imported got = importBytes("Timestamp;Longitude;Latitude\n2022-05-30 20:14:00;-68.5;48.5\n");
    QCOMPARE(got.items.size(), 1);
    const ZrFixRecord fix = fixture::decoded<ZrFixRecord>(got.items.at(0));
    QVERIFY(std::isnan(fix.height));
    QCOMPARE(int(fix.quality), 255);
}

void tst_ZrImportGnss::damagedRowsAreLeftOut_data()
{
    QTest::addColumn<QByteArray>("row");
    QTest::addColumn<QString>("issue");
    QTest::newRow("no depth field") << QByteArray("2022-05-30 20:14:00") << "1 fields where 2 are expected";
    QTest::newRow("letters") << QByteArray("2022-05-30 20:14:00;4.8m") << "Depth \"4.8m\" is no number";
    for (const char* time : {"2022-02-30 20:14:00", "2022-13-01 20:14:00", "2022-00-01 20:14:00",
             "2022-05-30 24:00:00", "2022-05-30 20:60:00", "2022-05-30 20:14:60", "1969-12-31 23:59:59",
             "22-05-30 20:14:00", "2022-05-30", "2022-05-30 20:14:00.", "2022-05-30 20:14:00 UTC",
             "2022-05-30 20:14:00+2", "30/05/2022 20:14:00", "-022-05-30 20:14:00", ""}) {
        QTest::newRow(qPrintable(QStringLiteral("time ") + QString::fromLatin1(time)))
            << QByteArray(time) + ";4.8"
            << QStringLiteral("Timestamp \"%1\" is no date and time").arg(QString::fromLatin1(time));
    }
}

void tst_ZrImportGnss::damagedRowsAreLeftOut()
{
    QFETCH(QByteArray, row);
    QFETCH(QString, issue);
    const QByteArray sound("2022-05-30 20:14:00.952522;4.800\n");
    const Imported got = importBytes("Timestamp;Depth\n" + sound + row + "\n" + sound);
    QCOMPARE(got.Issues(), QStringLiteral("line 3: ") + issue);
    QCOMPARE(got.items.size(), 2);
}

void tst_ZrImportGnss::notesOfDamagedRowsAreNotCounted()
{
    const Imported got = importFix("2022-02-31 20:14:00;0;0;20.5;9;1");
    QCOMPARE(got.items.size(), 0);
    QCOMPARE(got.report.issueCount, u64(1));
    QVERIFY(got.report.notes.isEmpty());
}

void tst_ZrImportGnss::tableWithoutDataColumnsIsRefused()
{
    QTemporaryDir folder;
    const QString path = fixture::write(folder, QStringLiteral("file"), "Timestamp;Longitude\n");
    QString error;
    QVERIFY(!ZrImporter::Create(path, QStringLiteral("gnss"), {}, &error));
    QCOMPARE(error, path + QStringLiteral(": the first line names neither Longitude and Latitude nor Depth"));
}

void tst_ZrImportGnss::stepsBackInTimeAreCounted()
{
    const Imported got
        = importBytes("Timestamp;Depth\n2022-05-30 20:14:02;1\n2022-05-30 20:14:01;1\n"
                      "2022-05-30 20:14:01;1\n2022-05-30 20:14:05;1\n2022-05-30 20:14:04.999999;1\n");
    QCOMPARE(got.items.size(), 5);
    QCOMPARE(got.report.backwards, u64(2));
    QVERIFY(got.report.firstTime == 1653941641.0);
    QVERIFY(got.report.lastTime == 1653941645.0);
}

QTEST_GUILESS_MAIN(tst_ZrImportGnss)
#include "tst_ZrImportGnss.moc"
