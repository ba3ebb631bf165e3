#include "ZrKit/import/ZrImporter.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/records/ZrVehicleRecord.h"
#include "import_fixture.h"

#include <QtTest/QtTest>

#include <cmath>

using fixture::Imported;

namespace {

const QByteArray HeaderRow(
    "Timestamp;NavState;SecurityLevel;Heading;Declination;Pitch;Roll;Depth;Temperature;Pa;"
    "Lat;Lon;DesiredH;BallastCmd;BallastPos;LinCmd;LinPos;AngCmd;AngPos;Voltage;Altitude;");
const QByteArray Row("21/07/2019 23:24:49;117;1024;106.41;16;63.25;-1.97;4.3;16.50;70161;"
                     "4854.554;-13036.442;270;400;404.0;20;20.1;0;-0.5;28.5;-1.0;");

QString realFile(int number)
{
    return fixture::data("glider-nav/sea035.12.gli.sub.%1.csv").arg(number);
}

Imported importBytes(const QByteArray& bytes)
{
    QTemporaryDir folder;
    return fixture::import(fixture::write(folder, QStringLiteral("file"), bytes));
}

/// A table of four columns.
Imported importRows(const QByteArray& rows)
{
    return importBytes("Timestamp;Lat;Lon;Depth\n" + rows);
}

ZrNavRecord nav(const Imported& got, int row)
{
    return fixture::decoded<ZrNavRecord>(got.items.value(2 * row));
}

ZrVehicleRecord vehicle(const Imported& got, int row)
{
    return fixture::decoded<ZrVehicleRecord>(got.items.value(2 * row + 1));
}

} // namespace

class tst_ZrImportGlider : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void realMissionIsReadWhole_data();
    void realMissionIsReadWhole();
    void realMissionAddsUp();
    void realRowsHaveTheValuesOfTheFile();
    void columnsAreFoundByName();
    void unknownAndMissingColumns();
    void emptyFieldsAreNotKnown();
    void headingIsTrue_data();
    void headingIsTrue();
    void anglesOfDegreesAndMinutes_data();
    void anglesOfDegreesAndMinutes();
    void repeatedPositionIsMarked();
    void positionZeroIsNotKnown();
    void altitudeBelowZeroIsNone();
    void lineEndsAndMarks_data();
    void lineEndsAndMarks();
    void damagedRowsAreLeftOut_data();
    void damagedRowsAreLeftOut();
    void numbersOfIssuesAreThoseOfLines();
    void repeatedHeaderRowIsPassedOver();
    void overlongRowIsAnIssue();
    void headerAloneHoldsNothing();
    void missingColumnIsNamed();
    void cutAnywhere();
};

void tst_ZrImportGlider::realMissionIsReadWhole_data()
{
    QTest::addColumn<int>("file");
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("repeated");
    QTest::newRow("36") << 36 << 45 << 31;
    QTest::newRow("37") << 37 << 504 << 482;
    QTest::newRow("38") << 38 << 512 << 483;
    QTest::newRow("39") << 39 << 521 << 498;
    QTest::newRow("40") << 40 << 509 << 484;
    QTest::newRow("41") << 41 << 497 << 485;
    QTest::newRow("42") << 42 << 408 << 350;
}

void tst_ZrImportGlider::realMissionIsReadWhole()
{
    QFETCH(int, file);
    QFETCH(int, rows);
    QFETCH(int, repeated);
    const Imported got = fixture::import(realFile(file));
    QVERIFY2(got.opened, qPrintable(got.error));
    QCOMPARE(got.report.format, QStringLiteral("glider"));
    QCOMPARE(got.report.records, u64(rows));
    QCOMPARE(got.items.size(), 2 * rows);
    QCOMPARE(got.report.issueCount, u64(0));
    QCOMPARE(got.report.backwards, u64(0));
    QVERIFY(got.report.notes.isEmpty());
    int marked = 0;
    for (int i = 0; i < rows; ++i) {
        QCOMPARE(got.items.at(2 * i).time, got.items.at(2 * i + 1).time);
        marked += nav(got, i).flags == 1 ? 1 : 0;
    }
    QCOMPARE(marked, repeated);
}

void tst_ZrImportGlider::realMissionAddsUp()
{
    int withAltitude = 0;
    double depths = 0.0;
    double headings = 0.0;
    for (int file = 36; file <= 42; ++file) {
        const Imported got = fixture::import(realFile(file));
        for (const ZrImportItem& item : got.Of(krtNavigation)) {
            const ZrNavRecord record = fixture::decoded<ZrNavRecord>(item);
            withAltitude += std::isnan(record.altitude) ? 0 : 1;
            depths += static_cast<double>(record.depth);
            headings += static_cast<double>(record.heading);
        }
    }
    QCOMPARE(withAltitude, 1586);
    // Single precision keeps each value to 3e-5; there are 2996.
    QVERIFY2(std::fabs(depths - 934795.4) < 0.1, qPrintable(QString::number(depths, 'f', 4)));
    QVERIFY2(std::fabs(headings - 672724.61) < 0.1, qPrintable(QString::number(headings, 'f', 4)));
}

void tst_ZrImportGlider::realRowsHaveTheValuesOfTheFile()
{
    const Imported first = fixture::import(realFile(36));
    QCOMPARE(first.items.value(0).time, 1563751489.0); // 2019-07-21 23:24:49
    const ZrNavRecord begin = nav(first, 0);
    QVERIFY(std::fabs(begin.latitude - 48.90923333333333) < 1e-12);
    QVERIFY(std::fabs(begin.longitude - -130.60736666666668) < 1e-12);
    QCOMPARE(begin.heading, 122.41f);
    QCOMPARE(begin.pitch, 63.25f);
    QCOMPARE(begin.roll, -1.97f);
    QCOMPARE(begin.depth, 4.3f);
    QVERIFY(std::isnan(begin.altitude));

    const Imported last = fixture::import(realFile(42));
    const int row = last.items.size() / 2 - 1;
    QCOMPARE(last.items.last().time, 1563813486.0); // 2019-07-22 16:38:06
    QVERIFY(std::fabs(nav(last, row).latitude - 48.9079) < 1e-12);
    QVERIFY(std::fabs(nav(last, row).longitude - -130.64386666666667) < 1e-12);
    const ZrVehicleRecord end = vehicle(last, row);
    QCOMPARE(end.navState, 117u);
    QCOMPARE(end.securityLevel, 0u);
    QCOMPARE(end.temperature, 10.6f);
    QCOMPARE(end.pressure, 69953.0f);
    QCOMPARE(end.voltage, 28.7f);
    QCOMPARE(end.declination, 16.0f);
    QCOMPARE(end.desiredHeading, 140.0f);
    QCOMPARE(end.ballastCommand, 150.0f);
    QCOMPARE(end.ballastPosition, 160.4f);
    QCOMPARE(end.linearCommand, 57.0f);
    QCOMPARE(end.linearPosition, 57.1f);
    QCOMPARE(end.angularCommand, 0.0f);
    QCOMPARE(end.angularPosition, 0.9f);
}

void tst_ZrImportGlider::columnsAreFoundByName()
{
    const Imported got = importBytes("lon;Depth;\tTIMESTAMP ;Lat;Pitch\n"
                                     "-00130.000;7.5;01/02/2020 03:04:05; 0045.000 ;-12\n");
    QCOMPARE(got.items.size(), 2);
    QCOMPARE(got.items.at(0).time, 1580526245.0);
    QCOMPARE(nav(got, 0).longitude, -1.5);
    QCOMPARE(nav(got, 0).latitude, 0.75);
    QCOMPARE(nav(got, 0).depth, 7.5f);
    QCOMPARE(nav(got, 0).pitch, -12.0f);
}

void tst_ZrImportGlider::unknownAndMissingColumns()
{
    const Imported got = importBytes("Timestamp;Colour;Lat;Lon;Depth\n01/02/2020 03:04:05;red;0100;0200;3\n");
    QCOMPARE(got.items.size(), 2);
    QCOMPARE(got.report.issueCount, u64(0));
    QCOMPARE(nav(got, 0).latitude, 1.0);
    for (const float value :
        {nav(got, 0).heading, nav(got, 0).altitude, vehicle(got, 0).voltage, vehicle(got, 0).pressure})
        QVERIFY(std::isnan(value));
    QCOMPARE(vehicle(got, 0).navState, 0u);
}

void tst_ZrImportGlider::emptyFieldsAreNotKnown()
{
    const Imported got = importBytes(HeaderRow + "\n21/07/2019 23:24:49" + QByteArray(21, ';') + "\n");
    QCOMPARE(got.Issues(), QString());
    QCOMPARE(got.items.size(), 2);
    const ZrNavRecord record = nav(got, 0);
    QVERIFY(std::isnan(record.latitude) && std::isnan(record.longitude));
    for (const float value : {record.altitude, record.depth, record.heading, record.pitch, record.roll})
        QVERIFY(std::isnan(value));
    QCOMPARE(record.flags, 0u);
    QVERIFY(std::isnan(vehicle(got, 0).voltage) && std::isnan(vehicle(got, 0).declination));
}

void tst_ZrImportGlider::headingIsTrue_data()
{
    QTest::addColumn<QByteArray>("heading");
    QTest::addColumn<QByteArray>("declination");
    QTest::addColumn<float>("expected");
    const float nan = std::numeric_limits<float>::quiet_NaN();
    QTest::newRow("east") << QByteArray("100.5") << QByteArray("16") << 116.5f;
    QTest::newRow("over north") << QByteArray("350") << QByteArray("16") << 6.0f;
    QTest::newRow("west, below north") << QByteArray("5") << QByteArray("-10.5") << 354.5f;
    QTest::newRow("exactly north") << QByteArray("344") << QByteArray("16") << 0.0f;
    QTest::newRow("360 is 0") << QByteArray("360") << QByteArray("0") << 0.0f;
    QTest::newRow("no declination") << QByteArray("100") << QByteArray("") << nan;
    QTest::newRow("no heading") << QByteArray("") << QByteArray("16") << nan;
}

void tst_ZrImportGlider::headingIsTrue()
{
    QFETCH(QByteArray, heading);
    QFETCH(QByteArray, declination);
    QFETCH(float, expected);
    const Imported got = importBytes("Timestamp;Lat;Lon;Depth;Heading;Declination\n"
                                     "01/02/2020 03:04:05;100;200;3;"
        + heading + ";" + declination);
    QCOMPARE(got.items.size(), 2);
    if (std::isnan(expected))
        QVERIFY(std::isnan(nav(got, 0).heading));
    else
        QCOMPARE(nav(got, 0).heading, expected);
}

void tst_ZrImportGlider::anglesOfDegreesAndMinutes_data()
{
    QTest::addColumn<QByteArray>("lat");
    QTest::addColumn<QByteArray>("lon");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<QString>("issue");
    const QString none;
    QTest::newRow("south, west") << QByteArray("-4830.000") << QByteArray("-13045.000") << -48.5 << -130.75
                                 << none;
    QTest::newRow("north, east") << QByteArray("+4830") << QByteArray("04515") << 48.5 << 45.25 << none;
    QTest::newRow("just south of the equator")
        << QByteArray("-0000.600") << QByteArray("1") << -0.01 << 1.0 / 60 << none;
    QTest::newRow("pole and date line")
        << QByteArray("9000.000") << QByteArray("-18000") << 90.0 << -180.0 << none;
    QTest::newRow("60 minutes") << QByteArray("4860.000") << QByteArray("0") << 0.0 << 0.0
                                << "line 2: Lat \"4860.000\" has 60 or more minutes";
    QTest::newRow("99 minutes") << QByteArray("4800") << QByteArray("-13099.9") << 0.0 << 0.0
                                << "line 2: Lon \"-13099.9\" has 60 or more minutes";
    QTest::newRow("beyond the pole") << QByteArray("9000.001") << QByteArray("0") << 0.0 << 0.0
                                     << "line 2: Lat \"9000.001\" lies beyond 90 degrees";
    QTest::newRow("beyond the date line") << QByteArray("0100") << QByteArray("18100") << 0.0 << 0.0
                                          << "line 2: Lon \"18100\" lies beyond 180 degrees";
}

void tst_ZrImportGlider::anglesOfDegreesAndMinutes()
{
    QFETCH(QByteArray, lat);
    QFETCH(QByteArray, lon);
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QFETCH(QString, issue);
    const Imported got = importRows("01/02/2020 03:04:05;" + lat + ";" + lon + ";3\n");
    QCOMPARE(got.Issues(), issue);
    QCOMPARE(got.items.size(), issue.isEmpty() ? 2 : 0);
    if (issue.isEmpty()) {
        QVERIFY(std::fabs(nav(got, 0).latitude - latitude) < 1e-12);
        QVERIFY(std::fabs(nav(got, 0).longitude - longitude) < 1e-12);
    }
}

void tst_ZrImportGlider::repeatedPositionIsMarked()
{
    const QByteArray t("01/02/2020 03:04:05;");
    const Imported got = importRows(t + "100;200;50\n" // the first row never is
        + t + "100;200;50\n" // same and deep
        + t + "100;200;1.0\n" // same, but not deeper than 1 m
        + t + "100;200;1.01\n" // same and just deeper
        + t + "100;200;\n" // same, depth not known
        + t + "100;201;50\n" // moved
        + t + ";;50\n" // no position
        + t + ";;50\n" // still none
        + t + "100;201;50\n" // nothing before to compare with
        + t + "99999;201;50\n" // left out
        + t + "100;201;50\n"); // same as the last row taken
    const QVector<u32> expected = {0, 1, 0, 1, 0, 0, 0, 0, 0, 1};
    QCOMPARE(got.items.size(), 2 * expected.size());
    for (int i = 0; i < expected.size(); ++i)
        QVERIFY2(nav(got, i).flags == expected.at(i), qPrintable(QString::number(i)));
}

void tst_ZrImportGlider::positionZeroIsNotKnown()
{
    const Imported got = importRows("01/02/2020 03:04:05;0000.000;-00000.000;3\n");
    QCOMPARE(got.items.size(), 2);
    QVERIFY(std::isnan(nav(got, 0).latitude) && std::isnan(nav(got, 0).longitude));
    QCOMPARE(got.Note("the position is 0,0: taken as not known"), u64(1));
}

void tst_ZrImportGlider::altitudeBelowZeroIsNone()
{
    const Imported got = importBytes("Timestamp;Lat;Lon;Altitude;Depth\n"
                                     "01/02/2020 03:04:05;1;1;-1;3\n"
                                     "01/02/2020 03:04:06;1;1;0;3\n"
                                     "01/02/2020 03:04:07;1;1;25.5;3\n");
    QCOMPARE(got.items.size(), 6);
    QVERIFY(std::isnan(nav(got, 0).altitude));
    QCOMPARE(nav(got, 1).altitude, 0.0f);
    QCOMPARE(nav(got, 2).altitude, 25.5f);
}

void tst_ZrImportGlider::lineEndsAndMarks_data()
{
    QTest::addColumn<QByteArray>("content");
    const QByteArray second = QByteArray(Row).replace("23:24:49", "23:24:59");
    QTest::newRow("LF") << HeaderRow + "\n" + Row + "\n" + second + "\n";
    QTest::newRow("no final line end") << HeaderRow + "\n" + Row + "\n" + second;
    QTest::newRow("CR LF") << HeaderRow + "\r\n" + Row + "\r\n" + second + "\r\n";
    QTest::newRow("CR") << HeaderRow + "\r" + Row + "\r" + second + "\r";
    QTest::newRow("mixed, blank lines") << HeaderRow + "\n\r\n" + Row + "\r\r\n\n" + second + "\n\n";
    QTest::newRow("byte-order mark") << QByteArray("\xEF\xBB\xBF") + HeaderRow + "\r\n" + Row + "\r\n"
            + second;
    QTest::newRow("no separator at the end")
        << HeaderRow.chopped(1) + "\n" + Row.chopped(1) + "\n" + second.chopped(1);
    QTest::newRow("separator at the end of rows only")
        << HeaderRow.chopped(1) + "\n" + Row + "\n" + second + ";;";
    QTest::newRow("spaces") << QByteArray(HeaderRow).replace(";", " ; ") + "\n"
            + QByteArray(Row).replace(";", " ;\t") + "\n" + second;
}

void tst_ZrImportGlider::lineEndsAndMarks()
{
    QFETCH(QByteArray, content);
    const Imported got = importBytes(content);
    QVERIFY2(got.opened, qPrintable(got.error));
    QCOMPARE(got.Issues(), QString());
    QCOMPARE(got.items.size(), 4);
    QCOMPARE(got.items.at(0).time, 1563751489.0);
    QCOMPARE(got.items.at(2).time, 1563751499.0);
    QCOMPARE(nav(got, 1).pitch, 63.25f);
    QCOMPARE(vehicle(got, 1).voltage, 28.5f);
    QCOMPARE(got.report.bytes, u64(content.size()));
}

void tst_ZrImportGlider::damagedRowsAreLeftOut_data()
{
    QTest::addColumn<QByteArray>("row");
    QTest::addColumn<QString>("issue");
    QTest::newRow("too few fields") << QByteArray("01/02/2020 03:04:05;100;200")
                                    << "3 fields where 4 are expected";
    QTest::newRow("too many fields") << QByteArray("01/02/2020 03:04:05;100;200;3;4;5")
                                     << "6 fields where 4 are expected";
    QTest::newRow("one word") << QByteArray("noise") << "1 fields where 4 are expected";
    QTest::newRow("letters") << QByteArray("01/02/2020 03:04:05;100;200;deep")
                             << "Depth \"deep\" is no number";
    QTest::newRow("decimal comma") << QByteArray("01/02/2020 03:04:05;100;200;3,5")
                                   << "Depth \"3,5\" is no number";
    QTest::newRow("two signs") << QByteArray("01/02/2020 03:04:05;100;200;+-3")
                               << "Depth \"+-3\" is no number";
    QTest::newRow("infinite") << QByteArray("01/02/2020 03:04:05;100;200;inf")
                              << "Depth \"inf\" is no number";
    QTest::newRow("not a number") << QByteArray("01/02/2020 03:04:05;nan;200;3")
                                  << "Lat \"nan\" is no number";
    QTest::newRow("beyond single precision")
        << QByteArray("01/02/2020 03:04:05;100;200;1e39") << "Depth \"1e39\" is no number";
    QTest::newRow("beyond double precision")
        << QByteArray("01/02/2020 03:04:05;100;200;1e999") << "Depth \"1e999\" is no number";
    QTest::newRow("zero byte") << QByteArray("01/02/2020 03:04:05;100;200;3\0", 30)
                               << "Depth \"3?\" is no number";
    QTest::newRow("first fault counts")
        << QByteArray("32/02/2020 03:04:05;x;y;z") << "Timestamp \"32/02/2020 03:04:05\" is no date and time";
    for (const char* time : {"30/02/2020 03:04:05", "29/02/2019 03:04:05", "00/02/2020 03:04:05",
             "01/13/2020 03:04:05", "01/02/2020 24:00:00", "01/02/2020 03:60:05", "01/02/2020 03:04:60",
             "01/02/1969 03:04:05", "01/02/20 03:04:05", "2020-02-01 03:04:05", "01/02/2020",
             "01/02/2020 03:04", "1/2/2020 03:04:05", "01/02/2020 03:04:05 x", ""}) {
        QTest::newRow(qPrintable(QStringLiteral("time ") + QString::fromLatin1(time)))
            << QByteArray(time) + ";100;200;3"
            << QStringLiteral("Timestamp \"%1\" is no date and time").arg(QString::fromLatin1(time));
    }
}

void tst_ZrImportGlider::damagedRowsAreLeftOut()
{
    QFETCH(QByteArray, row);
    QFETCH(QString, issue);
    const QByteArray sound("01/02/2020 03:04:05;100;200;3\n");
    const Imported got = importRows(sound + row + "\n" + sound);
    QCOMPARE(got.items.size(), 4);
    QCOMPARE(got.report.records, u64(3));
    QCOMPARE(got.report.issueCount, u64(1));
    QCOMPARE(got.Issues(), QStringLiteral("line 3: ") + issue);
    QVERIFY(got.report.notes.isEmpty());
}

void tst_ZrImportGlider::numbersOfIssuesAreThoseOfLines()
{
    const Imported got = importBytes(HeaderRow + "\r\n\r\n" + Row + "\r\n21/07;1;2;3;4\r\n\r\nx\r\n" + Row);
    QCOMPARE(got.Issues(),
        QStringLiteral("line 4: 5 fields where 21 are expected\nline 6: 1 fields where 21 are expected"));
    QCOMPARE(got.items.size(), 4);
}

void tst_ZrImportGlider::repeatedHeaderRowIsPassedOver()
{
    const Imported got = importBytes(HeaderRow + "\n" + Row + "\n" + HeaderRow + "\n" + Row + "\n");
    QCOMPARE(got.items.size(), 4);
    QCOMPARE(got.report.issueCount, u64(0));
    QCOMPARE(got.Note("the header row is repeated"), u64(1));
}

void tst_ZrImportGlider::overlongRowIsAnIssue()
{
    const QByteArray longest = "01/02/2020 03:04:05;100;200;" + QByteArray(4096 - 29, ' ') + "3";
    QCOMPARE(longest.size(), 4096);
    const Imported got = importRows(longest + "\n " + longest + "\n" + longest);
    QCOMPARE(got.items.size(), 4);
    QCOMPARE(got.Issues(), QStringLiteral("line 3: longer than 4096 bytes"));
}

void tst_ZrImportGlider::headerAloneHoldsNothing()
{
    const Imported got = importBytes(HeaderRow);
    QVERIFY(got.opened);
    QCOMPARE(got.items.size(), 0);
    QCOMPARE(got.report.issueCount, u64(0));
    QCOMPARE(got.report.records, u64(0));
}

void tst_ZrImportGlider::missingColumnIsNamed()
{
    QTemporaryDir folder;
    const QString path = fixture::write(folder, QStringLiteral("file"), "Timestamp;Lat;Depth\n");
    QString error;
    QVERIFY(!ZrImporter::Create(path, QStringLiteral("glider"), {}, &error));
    QCOMPARE(error, path + QStringLiteral(": the first line does not name a column Lon"));
}

void tst_ZrImportGlider::cutAnywhere()
{
    const QByteArray whole = HeaderRow + "\n" + Row + "\n" + Row + "\n";
    QTemporaryDir folder;
    for (int size = 1; size <= whole.size(); ++size) {
        const Imported got = fixture::import(
            fixture::write(folder, QStringLiteral("cut"), whole.left(size)), QStringLiteral("glider"));
        QVERIFY(got.items.size() <= 4);
        QVERIFY(got.report.issueCount <= 1);
        if (size >= HeaderRow.size() + Row.size())
            QVERIFY(got.items.size() >= 2);
    }
}

QTEST_GUILESS_MAIN(tst_ZrImportGlider)
#include "tst_ZrImportGlider.moc"
