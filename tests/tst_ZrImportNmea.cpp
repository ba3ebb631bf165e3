#include "ZrKit/import/ZrImporter.h"
#include "ZrKit/records/ZrDepthRecord.h"
#include "ZrKit/records/ZrFixRecord.h"
#include "ZrUtil/ZrRecType.h"
#include "import_fixture.h"

#include <QtTest/QtTest>

#include <cmath>

using fixture::Imported;

namespace {

/// A whole sentence: '$', \p body, its checksum.
QByteArray sentence(const QByteArray& body)
{
    unsigned sum = 0;
    for (const char c : body)
        sum ^= static_cast<unsigned char>(c);
    return "$" + body + "*" + QByteArray::number(sum, 16).rightJustified(2, '0').toUpper();
}

QByteArray gll(const QByteArray& time)
{
    return sentence("GPGLL,6005.071,N,02332.346,E," + time + ",A,D") + "\n";
}

QByteArray zda(const QByteArray& time, const QByteArray& date)
{
    return sentence("GPZDA," + time + "," + date + ",00,00") + "\n";
}

const QByteArray Depth = sentence("IIDBT,034.25,f,010.44,M,005.64,F") + "\n";

Imported importBytes(const QByteArray& bytes, const QDate& date = QDate(),
    const QDateTime& modified = QDateTime(QDate(2001, 9, 9), QTime(12, 0), Qt::UTC))
{
    QTemporaryDir folder;
    const QString path = fixture::write(folder, QStringLiteral("file"), bytes);
    fixture::setModified(path, modified);
    ZrImportOptions options;
    options.date = date;
    return fixture::import(path, QStringLiteral("nmea"), options);
}

double seconds(int year, int month, int day, int hour, int minute, int second)
{
    return static_cast<double>(
        QDateTime(QDate(year, month, day), QTime(hour, minute, second), Qt::UTC).toSecsSinceEpoch());
}

/// Times of the lines, each that of its serial text.
QVector<double> lineTimes(const Imported& got)
{
    QVector<double> times;
    for (const ZrImportItem& item : got.Of(rtSerialText))
        times.append(item.time);
    return times;
}

const char* const BeforeFirst = "the line comes before the first time and carries that";
const char* const DateOfFile = "no sentence tells the date: that of the file is taken";
const char* const TimeOfFile = "no line tells a time: that of the file is taken";

} // namespace

class tst_ZrImportNmea : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void realHarbourIsReadWhole();
    void realPassageIsReadWhole();
    void lineBecomesSerialTextAndRecords();
    void serialTextHoldsTheBytesOfTheLine();
    void damagedLinesAreLeftOut();
    void lineEnds_data();
    void lineEnds();
    void lineEndOnTheBorderOfABlockCountsOnce();
    void overlongLineIsNotHeld();
    void linesBeforeTheFirstTimeCarryIt();
    void manyLinesBeforeTheFirstTime();
    void dateOfTheData_data();
    void dateOfTheData();
    void dateToldLateIsUsedFromThereOn();
    void midnightIsPassed();
    void noTimeAtAll();
    void timeOfReception_data();
    void timeOfReception();
    void timeOfReceptionRulesTheFile();
    void whatIsNoTimeOfReception_data();
    void whatIsNoTimeOfReception();
    void unknownKindsAreBounded();
    void nothingButNoise();
};

void tst_ZrImportNmea::realHarbourIsReadWhole()
{
    const Imported got = fixture::import(fixture::data("nmea-boat/gofree-merrimac.log"));
    QVERIFY2(got.opened, qPrintable(got.error));
    QCOMPARE(got.Issues(), QString());
    QCOMPARE(got.report.records, u64(6324));
    QCOMPARE(got.Count(rtSerialText), 6324);
    QCOMPARE(got.Count(krtFix), 426); // 142 each of GGA, GLL, RMC
    QCOMPARE(got.Count(krtDepth), 284); // 142 each of DBT, DPT
    QCOMPARE(got.Count(krtMotion), 1801); // RMC, VTG, VHW 142 each, HDG 1375
    QCOMPARE(got.Count(krtEnvironment), 565); // MTW 142, MWD 141, MWV 282
    QCOMPARE(got.items.size(), 9400);
    QCOMPARE(got.report.firstTime, 1397678239.0); // 2014-04-16 19:57:19
    QCOMPARE(got.report.lastTime, 1397678380.0);
    QCOMPARE(got.report.backwards, u64(0));
    QCOMPARE(got.Note(BeforeFirst), u64(10));
    QCOMPARE(got.report.notes.size(), 1);
    QCOMPARE(got.report.ignored.value(QStringLiteral("AIVDM")), u64(1507));
    QCOMPARE(got.report.ignored.value(QStringLiteral("GPGSV")), u64(426));
    QCOMPARE(got.report.ignored.value(QStringLiteral("GPGGA")), u64(0));
}

void tst_ZrImportNmea::realPassageIsReadWhole()
{
    const QByteArray content = fixture::contentOf(fixture::data("nmea-boat/plaka.log"));
    const Imported got = importBytes(content, QDate(), QDateTime(QDate(2015, 7, 1), QTime(18, 0), Qt::UTC));
    QCOMPARE(got.Issues(), QString());
    QCOMPARE(got.Count(rtSerialText), 3000);
    QCOMPARE(got.Count(krtFix), 187); // GLL
    QCOMPARE(got.Count(krtDepth), 187); // DBT
    QCOMPARE(got.Count(krtMotion), 376); // VTG 188, VHW 188 (speed only); HDM and HDT are empty
    QCOMPARE(got.Count(krtEnvironment), 375); // MWV 188, MWD 187 (speed only)
    QCOMPARE(got.items.size(), 4125);
    QCOMPARE(got.report.firstTime, 1435744559.0); // 09:55:59 on the day of the file
    QCOMPARE(got.report.lastTime, 1435744940.0); // 10:02:20
    QCOMPARE(got.report.backwards, u64(0));
    QCOMPARE(got.Note(BeforeFirst), u64(8));
    QCOMPARE(got.Note(DateOfFile), u64(3000));
}

void tst_ZrImportNmea::lineBecomesSerialTextAndRecords()
{
    const Imported got = importBytes(zda("095559", "16,04,2014") + gll("095600") + Depth);
    QCOMPARE(got.items.size(), 5);
    QVERIFY(got.items.at(0).type == CRecType(rtSerialText));
    QVERIFY(got.items.at(1).type == CRecType(rtSerialText));
    QVERIFY(got.items.at(2).type == CRecType(0, krtFix));
    QVERIFY(got.items.at(3).type == CRecType(rtSerialText));
    QVERIFY(got.items.at(4).type == CRecType(0, krtDepth));
    QCOMPARE(got.items.at(0).format, u16(0));
    const ZrFixRecord fix = fixture::decoded<ZrFixRecord>(got.items.at(2));
    QVERIFY(std::fabs(fix.latitude - 60.0845166666667) < 1e-9);
    QVERIFY(std::fabs(fix.longitude - 23.5391) < 1e-9);
    QCOMPARE(fixture::decoded<ZrDepthRecord>(got.items.at(4)).depth, 10.44f);
    const double first = seconds(2014, 4, 16, 9, 55, 59);
    const QVector<double> expected = {first, first + 1, first + 1, first + 1, first + 1};
    for (int i = 0; i < 5; ++i)
        QCOMPARE(got.items.at(i).time, expected.at(i));
}

void tst_ZrImportNmea::serialTextHoldsTheBytesOfTheLine()
{
    const QByteArray plain = "$GPZDA,095559,16,04,2014,00,00";
    const QByteArray tagged = "\\s:bow*1A\\" + sentence("SDMTW,12.6,C");
    const Imported got = importBytes("  " + plain + "\r\n\t" + tagged + "\r\n");
    QCOMPARE(got.Issues(), QString());
    QCOMPARE(got.items.size(), 3);
    QCOMPARE(got.items.at(0).payload, plain + '\0');
    QCOMPARE(got.items.at(1).payload, tagged + '\0');
}

void tst_ZrImportNmea::damagedLinesAreLeftOut()
{
    const QByteArray good = zda("095559", "16,04,2014");
    const Imported got = importBytes(
        good + "\n$SDMTW,12.6,C*02\n# a remark\n\n$SDMTW,12.\x80,C\n" + QByteArray(3, '\0') + "\n" + good);
    QCOMPARE(got.items.size(), 2);
    QCOMPARE(got.report.records, u64(6));
    QCOMPARE(got.report.issueCount, u64(4));
    QVector<u64> lines;
    for (const ZrImportReport::Issue& issue : got.report.issues) {
        lines.append(issue.place);
        QVERIFY(!issue.text.isEmpty());
    }
    QCOMPARE(lines, QVector<u64>({3, 4, 6, 7}));
    QVERIFY2(got.report.issues.first().text.contains(QStringLiteral("checksum")), qPrintable(got.Issues()));
}

void tst_ZrImportNmea::lineEnds_data()
{
    QTest::addColumn<QByteArray>("end");
    QTest::addColumn<bool>("last");
    QTest::newRow("LF") << QByteArray("\n") << true;
    QTest::newRow("CR LF") << QByteArray("\r\n") << true;
    QTest::newRow("CR") << QByteArray("\r") << true;
    QTest::newRow("blank lines between") << QByteArray("\r\n\r\n  \n") << true;
    QTest::newRow("no final line end") << QByteArray("\r\n") << false;
}

void tst_ZrImportNmea::lineEnds()
{
    QFETCH(QByteArray, end);
    QFETCH(bool, last);
    // More than two blocks of the reader, so that line ends fall on their borders.
    const QByteArray line = sentence("GPZDA,095559,16,04,2014,00,00");
    QByteArray content = "\xEF\xBB\xBF";
    for (int i = 0; i < 5000; ++i)
        content += line + (i == 4999 && !last ? QByteArray() : end);
    const Imported got = importBytes(content);
    QCOMPARE(got.Issues(), QString());
    QCOMPARE(got.items.size(), 5000);
    QCOMPARE(got.report.records, u64(5000));
    for (const ZrImportItem& item : got.items)
        QCOMPARE(item.payload, line + '\0');
}

void tst_ZrImportNmea::lineEndOnTheBorderOfABlockCountsOnce()
{
    // Blocks of 65536 bytes: the CR of line 1024 is the last byte of the first one.
    const auto line = [](int size) {
        const QByteArray empty = sentence("XXABC,");
        return sentence("XXABC," + QByteArray(size - 2 - empty.size(), 'x')) + "\r\n";
    };
    QByteArray content = line(65);
    for (int i = 1; i < 2000; ++i)
        content += line(64);
    QCOMPARE(content.mid(65535, 2), QByteArray("\r\n"));
    const Imported got = importBytes(content + "bad\r\n");
    QCOMPARE(got.items.size(), 2000);
    QCOMPARE(got.report.issueCount, u64(1));
    QCOMPARE(got.report.issues.first().place, u64(2001));
}

void tst_ZrImportNmea::overlongLineIsNotHeld()
{
    const QByteArray good = zda("095559", "16,04,2014");
    const Imported got = importBytes(
        good + "$" + QByteArray(10000000, 'x') + "\r\n" + good + "$" + QByteArray(4096, 'y') + "\n" + good);
    QCOMPARE(got.items.size(), 3);
    QCOMPARE(got.Issues(), QStringLiteral("line 2: longer than 4096 bytes\nline 4: longer than 4096 bytes"));
}

void tst_ZrImportNmea::linesBeforeTheFirstTimeCarryIt()
{
    const Imported got
        = importBytes(Depth + Depth + gll("120000") + Depth + zda("120001", "16,04,2014") + Depth);
    const double noon = seconds(2014, 4, 16, 12, 0, 0);
    QCOMPARE(lineTimes(got), QVector<double>({noon, noon, noon, noon, noon + 1, noon + 1}));
    for (const ZrImportItem& item : got.Of(krtDepth))
        QVERIFY(item.time == noon || item.time == noon + 1);
    QCOMPARE(got.Note(BeforeFirst), u64(2));
    QCOMPARE(got.report.notes.size(), 1);
}

void tst_ZrImportNmea::manyLinesBeforeTheFirstTime()
{
    QByteArray content;
    constexpr int Lines = 150000; // 6 MB
    for (int i = 0; i < Lines; ++i)
        content += Depth;
    const Imported got = importBytes(content + zda("120000", "16,04,2014"));
    QCOMPARE(got.items.size(), 2 * Lines + 1);
    QCOMPARE(got.report.firstTime, seconds(2014, 4, 16, 12, 0, 0));
    QCOMPARE(got.report.lastTime, got.report.firstTime);
    QCOMPARE(got.Note(BeforeFirst), u64(Lines));
}

void tst_ZrImportNmea::dateOfTheData_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QDate>("date");
    QTest::addColumn<QDateTime>("modified");
    QTest::addColumn<double>("first");
    QTest::addColumn<double>("last");
    QTest::addColumn<int>("datesOfFile");
    const QDateTime modified(QDate(2001, 9, 9), QTime(12, 0), Qt::UTC);
    const QDate wish(2010, 6, 1);
    QTest::newRow("told at once") << zda("100000", "16,04,2014") + gll("100001") << wish << modified
                                  << seconds(2014, 4, 16, 10, 0, 0) << seconds(2014, 4, 16, 10, 0, 1) << 0;
    QTest::newRow("told later on the same day")
        << gll("095958") + gll("095959") + zda("100000", "16,04,2014") << QDate() << modified
        << seconds(2014, 4, 16, 9, 59, 58) << seconds(2014, 4, 16, 10, 0, 0) << 0;
    QTest::newRow("told after a midnight")
        << gll("235959") + gll("000001") + zda("000002", "01,01,2015") << QDate() << modified
        << seconds(2014, 12, 31, 23, 59, 59) << seconds(2015, 1, 1, 0, 0, 2) << 0;
    QTest::newRow("told by the sentence after midnight")
        << gll("235959") + zda("000002", "01,03,2016") << wish << modified << seconds(2016, 2, 29, 23, 59, 59)
        << seconds(2016, 3, 1, 0, 0, 2) << 0;
    QTest::newRow("told by RMC") << gll("100000")
            + sentence("GPRMC,100001,A,6005.07,N,02332.34,E,5.8,224.4,160414,,") + "\n"
                                 << QDate() << modified << seconds(2014, 4, 16, 10, 0, 0)
                                 << seconds(2014, 4, 16, 10, 0, 1) << 0;
    QTest::newRow("only wished") << gll("100000") + gll("100001") << wish << modified
                                 << seconds(2010, 6, 1, 10, 0, 0) << seconds(2010, 6, 1, 10, 0, 1) << 0;
    QTest::newRow("that of the file") << gll("100000") + gll("100001") << QDate() << modified
                                      << seconds(2001, 9, 9, 10, 0, 0) << seconds(2001, 9, 9, 10, 0, 1) << 2;
    QTest::newRow("the day before that of the file")
        << gll("130000") + gll("130001") << QDate() << modified << seconds(2001, 9, 8, 13, 0, 0)
        << seconds(2001, 9, 8, 13, 0, 1) << 2;
}

void tst_ZrImportNmea::dateOfTheData()
{
    QFETCH(QByteArray, content);
    QFETCH(QDate, date);
    QFETCH(QDateTime, modified);
    QFETCH(double, first);
    QFETCH(double, last);
    QFETCH(int, datesOfFile);
    const Imported got = importBytes(content, date, modified);
    QCOMPARE(got.Issues(), QString());
    QCOMPARE(lineTimes(got).first(), first);
    QCOMPARE(lineTimes(got).last(), last);
    QCOMPARE(got.report.backwards, u64(0));
    QCOMPARE(got.Note(DateOfFile), u64(datesOfFile));
    QCOMPARE(got.report.notes.size(), datesOfFile > 0 ? 1 : 0);
}

void tst_ZrImportNmea::dateToldLateIsUsedFromThereOn()
{
    QByteArray content;
    for (int i = 0; i < 25000; ++i)
        content += gll("100000");
    const Imported got
        = importBytes(content + zda("100001", "16,04,2014") + gll("100002"), QDate(2010, 6, 1));
    QCOMPARE(lineTimes(got).first(), seconds(2010, 6, 1, 10, 0, 0));
    QCOMPARE(lineTimes(got).at(24999), seconds(2010, 6, 1, 10, 0, 0));
    QCOMPARE(lineTimes(got).at(25000), seconds(2014, 4, 16, 10, 0, 1));
    QCOMPARE(lineTimes(got).last(), seconds(2014, 4, 16, 10, 0, 2));
}

void tst_ZrImportNmea::midnightIsPassed()
{
    const Imported got = importBytes(
        zda("235958", "31,12,2014") + gll("235959") + gll("000000") + Depth + gll("000001") + gll("235900"));
    const double midnight = seconds(2015, 1, 1, 0, 0, 0);
    const QVector<double> times = lineTimes(got);
    QCOMPARE(
        times.mid(0, 5), QVector<double>({midnight - 2, midnight - 1, midnight, midnight, midnight + 1}));
}

void tst_ZrImportNmea::noTimeAtAll()
{
    const QDateTime modified(QDate(2001, 9, 9), QTime(1, 46, 40), Qt::UTC);
    const Imported got = importBytes(Depth + Depth, QDate(2010, 6, 1), modified);
    QCOMPARE(got.items.size(), 4);
    for (const ZrImportItem& item : got.items)
        QCOMPARE(item.time, 1000000000.0);
    QCOMPARE(got.Note(TimeOfFile), u64(2));
    QCOMPARE(got.report.notes.size(), 1);
}

void tst_ZrImportNmea::timeOfReception_data()
{
    QTest::addColumn<QByteArray>("prefix");
    QTest::addColumn<double>("time");
    const double t = seconds(2014, 4, 16, 19, 57, 19);
    QTest::newRow("T, Z and a space") << QByteArray("2014-04-16T19:57:19Z ") << t;
    QTest::newRow("decimals and a tab") << QByteArray("2014-04-16T19:57:19.250Z\t") << t + 0.25;
    QTest::newRow("two spaces") << QByteArray("2014-04-16 19:57:19  ") << t;
    QTest::newRow("comma") << QByteArray("2014-04-16 19:57:19.5,") << t + 0.5;
    QTest::newRow("comma after whole seconds") << QByteArray("2014-04-16 19:57:19,") << t;
    QTest::newRow("decimal comma, semicolon") << QByteArray("2014-04-16T19:57:19,125;") << t + 0.125;
    QTest::newRow("offset") << QByteArray("2014-04-16T21:57:19+02:00 ") << t;
    QTest::newRow("offset in hours") << QByteArray("2014-04-16T17:57:19-02 ") << t;
    QTest::newRow("seconds since the epoch") << QByteArray("1397678239 ") << t;
    QTest::newRow("with decimals") << QByteArray("1397678239.75;") << t + 0.75;
    QTest::newRow("milliseconds since the epoch") << QByteArray("1397678239500, ") << t + 0.5;
    QTest::newRow("tag block, seconds") << QByteArray("\\s:r1,c:1397678239*00\\") << t;
    QTest::newRow("tag block, milliseconds") << QByteArray("\\c:1397678239500*00\\") << t + 0.5;
}

void tst_ZrImportNmea::timeOfReception()
{
    QFETCH(QByteArray, prefix);
    QFETCH(double, time);
    const bool tagged = prefix.startsWith('\\');
    if (tagged) {
        const QByteArray body = prefix.mid(1, prefix.size() - 5);
        prefix = "\\" + sentence(body).mid(1) + "\\";
    }
    const QByteArray line = sentence("SDMTW,12.6,C");
    const Imported got = importBytes(prefix + line + "\r\n");
    QCOMPARE(got.Issues(), QString());
    QCOMPARE(got.items.size(), 2);
    QVERIFY2(got.items.at(0).time == time, qPrintable(QString::number(got.items.at(0).time, 'f', 6)));
    QVERIFY(got.items.at(1).time == time);
    QCOMPARE(got.items.at(0).payload, (tagged ? prefix : QByteArray()) + line + '\0');
    QVERIFY(got.report.notes.isEmpty());
}

void tst_ZrImportNmea::timeOfReceptionRulesTheFile()
{
    // The clock of the receiver differs from that of the logger; the logger's holds.
    const Imported got = importBytes(Depth + gll("080000") + "2014-04-16T10:00:00Z " + gll("095000") + Depth
        + "2014-04-16T10:00:01Z " + zda("095001", "01,01,2000"));
    const double ten = seconds(2014, 4, 16, 10, 0, 0);
    QCOMPARE(lineTimes(got), QVector<double>({ten, ten, ten, ten, ten + 1}));
    QCOMPARE(got.Note(BeforeFirst), u64(2));
    QCOMPARE(got.report.notes.size(), 1);
}

void tst_ZrImportNmea::whatIsNoTimeOfReception_data()
{
    QTest::addColumn<QByteArray>("prefix");
    QTest::newRow("word") << QByteArray("COM1 ");
    QTest::newRow("nine digits") << QByteArray("139767823 ");
    QTest::newRow("eleven digits") << QByteArray("13976782390 ");
    QTest::newRow("fourteen digits") << QByteArray("13976782395000 ");
    QTest::newRow("no separator") << QByteArray("1397678239");
    QTest::newRow("impossible date") << QByteArray("2014-02-30T19:57:19Z ");
    QTest::newRow("date only") << QByteArray("2014-04-16 ");
    QTest::newRow("words behind") << QByteArray("2014-04-16T19:57:19Z RX ");
}

void tst_ZrImportNmea::whatIsNoTimeOfReception()
{
    QFETCH(QByteArray, prefix);
    const Imported got = importBytes(prefix + sentence("SDMTW,12.6,C") + "\n" + zda("095559", "16,04,2014"));
    QCOMPARE(got.report.issueCount, u64(1));
    QCOMPARE(got.report.issues.first().place, u64(1));
    QCOMPARE(got.items.size(), 1);
}

void tst_ZrImportNmea::unknownKindsAreBounded()
{
    QByteArray content = zda("095559", "16,04,2014");
    for (int i = 0; i < 5000; ++i)
        content += sentence("XX" + QByteArray::number(10000 + i) + ",1") + "\n";
    const Imported got = importBytes(content);
    QCOMPARE(got.items.size(), 5001);
    QVERIFY(got.report.ignored.size() <= 300);
    u64 all = 0;
    for (const u64 count : got.report.ignored)
        all += count;
    QCOMPARE(all, u64(5000));
}

void tst_ZrImportNmea::nothingButNoise()
{
    const Imported zeros = importBytes(QByteArray(300000, '\0'));
    QVERIFY(zeros.opened);
    QCOMPARE(zeros.items.size(), 0);
    QCOMPARE(zeros.report.issueCount, u64(1));
    const Imported blank = importBytes("\r\n\n\n  \n\t\n");
    QCOMPARE(blank.items.size(), 0);
    QCOMPARE(blank.report.issueCount, u64(0));
    QCOMPARE(blank.report.records, u64(0));
}

QTEST_GUILESS_MAIN(tst_ZrImportNmea)
#include "tst_ZrImportNmea.moc"
