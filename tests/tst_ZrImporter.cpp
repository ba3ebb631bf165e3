#include "ZrKit/import/ZrImporter.h"
#include "import_fixture.h"

#include <QtTest/QtTest>

#include <malloc.h>
#if defined(__SANITIZE_ADDRESS__)
// Part of the sanitizer's run-time library; its header is not installed everywhere.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace {

/// Bytes that the program holds from the heap at this moment.
std::size_t heapInUse()
{
#if defined(__SANITIZE_ADDRESS__)
    return __sanitizer_get_current_allocated_bytes();
#else
    return mallinfo2().uordblks;
#endif
}

/// Hands out items at given times, to watch the book-keeping of the base class.
class TimesImporter : public ZrImporter
{
public:
    explicit TimesImporter(const QVector<double>& times)
        : m_times(times)
    {
    }

    bool Next(ZrImportItem& item) override
    {
        if (m_at == m_times.size())
            return false;
        item = ZrImportItem();
        item.time = m_times.at(m_at++);
        Account(item);
        return true;
    }

    u64 FileSize() const override { return 0; }

protected:
    bool Open(const QString&, const ZrImportOptions&, QString*) override { return true; }

private:
    QVector<double> m_times;
    int m_at = 0;
};

} // namespace

class tst_ZrImporter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void formatsAreNamed();
    void formatIsChosenByContent_data();
    void formatIsChosenByContent();
    void realFilesAreRecognised_data();
    void realFilesAreRecognised();
    void nothingFits_data();
    void nothingFits();
    void unknownNameIsRefused();
    void namedFormatMustFit_data();
    void namedFormatMustFit();
    void unreadablePathsAreRefused();
    void errorMayBeNull();
    void nameOfTheFileDoesNotMatter();
    void sourceIsWrittenIntoEveryItem();
    void bytesReachTheSizeOfTheFile_data();
    void bytesReachTheSizeOfTheFile();
    void accountKeepsCountsExtentAndStepsBack();
    void reportKeepsTheFirstIssuesInWords();
    void issueTextNamesLineOrOffset();
    void millionLinesInConstantMemory();
};

void tst_ZrImporter::formatsAreNamed()
{
    QStringList names = ZrImporter::Formats();
    names.sort();
    QCOMPARE(names.join(QLatin1Char(' ')), QStringLiteral("glider gnss nmea xtf"));
}

void tst_ZrImporter::formatIsChosenByContent_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("format");
    const QByteArray glider = "Timestamp;NavState;Depth;Lat;Lon;\n";
    QTest::newRow("glider header only") << glider << "glider";
    QTest::newRow("glider with a byte-order mark and CR LF")
        << QByteArray("\xEF\xBB\xBFTimestamp;Depth;Lat;Lon\r\n") << "glider";
    QTest::newRow("glider, other order and case, blank line first")
        << QByteArray("\nlon;LAT;navstate;timestamp\n") << "glider";
    QTest::newRow("positions") << QByteArray("Timestamp;Longitude;Latitude\n") << "gnss";
    QTest::newRow("soundings without line end") << QByteArray("Timestamp;Depth") << "gnss";
    QTest::newRow("one sentence") << QByteArray("$SDMTW,12.6,C*01") << "nmea";
    QTest::newRow("AIS only") << QByteArray("!AIVDM,1,1,1,,13aI8e?P00PGpU:NR6s00?vT2000,0,0*1C\r\n")
                              << "nmea";
    QTest::newRow("sentence after noise") << QByteArray("\x01\x02zz\n,*77\n$SDMTW,12.6,C*01\n") << "nmea";
    QTest::newRow("sentence with time of reception")
        << QByteArray("2014-04-16T19:57:19.250Z\t$SDMTW,12.6,C*01\n") << "nmea";
    QTest::newRow("sentences without checksum") << QByteArray("$SDMTW,12.6,C\n$SDDPT,0.5,0.5,\n") << "nmea";
}

void tst_ZrImporter::formatIsChosenByContent()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, format);
    QTemporaryDir folder;
    const QString path = fixture::write(folder, QStringLiteral("file"), content);
    QString error;
    const auto importer = ZrImporter::Create(path, QStringLiteral("auto"), ZrImportOptions(), &error);
    QVERIFY2(importer, qPrintable(error));
    QCOMPARE(importer->Report().format, format);
    QCOMPARE(importer->Report().path, path);
    QCOMPARE(importer->FileSize(), u64(content.size()));
    QCOMPARE(importer->Report().byLine, format != QStringLiteral("xtf"));
}

void tst_ZrImporter::realFilesAreRecognised_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("format");
    QTest::newRow("xtf") << fixture::data("sidescan-xtf/iver2-scotsman-pings0-299.xtf") << "xtf";
    QTest::newRow("glider") << fixture::data("glider-nav/sea035.12.gli.sub.36.csv") << "glider";
    QTest::newRow("boat") << fixture::data("nmea-boat/plaka.log") << "nmea";
    QTest::newRow("boat with AIS") << fixture::data("nmea-boat/gofree-merrimac.log") << "nmea";
    QTest::newRow("positions") << fixture::data("gnss-echosounder/2022.05.30_201358_gnss.txt") << "gnss";
    QTest::newRow("soundings") << fixture::data("gnss-echosounder/2022.05.30_201358_sonar.txt") << "gnss";
}

void tst_ZrImporter::realFilesAreRecognised()
{
    QFETCH(QString, path);
    QFETCH(QString, format);
    QString error;
    const auto importer = ZrImporter::Create(path, QStringLiteral("auto"), ZrImportOptions(), &error);
    QVERIFY2(importer, qPrintable(error));
    QCOMPARE(importer->Report().format, format);
}

void tst_ZrImporter::nothingFits_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("zeros") << QByteArray(200000, '\0');
    QTest::newRow("prose") << QByteArray("Survey of the harbour.\nNo data, $5 paid.\n");
    QTest::newRow("object in braces") << QByteArray("{ \"a\": 1 }\n") + QByteArray(2000, ' ');
    QTest::newRow("brace and zeros") << QByteArray("{") + QByteArray(4000, '\0');
    QTest::newRow("table without header") << QByteArray("21/07/2019 23:24:49;117;4854.554;-13036.442;\n");
    QTest::newRow("other table") << QByteArray("Time;Temperature\n1;2\n");
    QTest::newRow("wrong checksum only") << QByteArray("$SDMTW,12.6,C*02\n");
    QTest::newRow("one byte") << QByteArray("$");
    QTest::newRow("blank lines") << QByteArray("\n\r\n\r");
    QTest::newRow("UTF-16") << QByteArray("\xFF\xFET\0i\0m\0e\0s\0t\0a\0m\0p\0;\0", 22);
}

void tst_ZrImporter::nothingFits()
{
    QFETCH(QByteArray, content);
    QTemporaryDir folder;
    const QString path = fixture::write(folder, QStringLiteral("file.xtf"), content);
    QString error;
    QVERIFY(!ZrImporter::Create(path, QStringLiteral("auto"), ZrImportOptions(), &error));
    QCOMPARE(error, path + QStringLiteral(": the content is of no format that can be imported"));
}

void tst_ZrImporter::unknownNameIsRefused()
{
    QString error;
    const QString path = fixture::data("nmea-boat/plaka.log");
    QVERIFY(!ZrImporter::Create(path, QStringLiteral("sonar"), ZrImportOptions(), &error));
    QCOMPARE(error,
        QStringLiteral(
            "\"sonar\" is not the name of an import format; these are: auto, xtf, glider, nmea, gnss"));
}

void tst_ZrImporter::namedFormatMustFit_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("words");
    QTest::newRow("xtf") << "xtf"
                         << "has no XTF file header";
    QTest::newRow("glider") << "glider"
                            << "the first line does not name a column Timestamp";
    QTest::newRow("gnss") << "gnss"
                          << "the first line does not name a column Timestamp";
}

void tst_ZrImporter::namedFormatMustFit()
{
    QFETCH(QString, format);
    QFETCH(QString, words);
    const QString path = fixture::data("nmea-boat/plaka.log");
    QString error;
    QVERIFY(!ZrImporter::Create(path, format, ZrImportOptions(), &error));
    QCOMPARE(error, path + QStringLiteral(": ") + words);
}

void tst_ZrImporter::unreadablePathsAreRefused()
{
    QTemporaryDir folder;
    const QString empty = fixture::write(folder, QStringLiteral("empty"), QByteArray());
    const QString missing = folder.filePath(QStringLiteral("none"));
    for (const QString& format : QStringLiteral("auto xtf glider nmea gnss").split(QLatin1Char(' '))) {
        QString error;
        QVERIFY(!ZrImporter::Create(folder.path(), format, ZrImportOptions(), &error));
        QCOMPARE(error, folder.path() + QStringLiteral(": is a folder, not a file"));
        QVERIFY(!ZrImporter::Create(missing, format, ZrImportOptions(), &error));
        QVERIFY2(error.startsWith(missing + QStringLiteral(": cannot be read: ")), qPrintable(error));
        QVERIFY(!ZrImporter::Create(empty, format, ZrImportOptions(), &error));
        QCOMPARE(error, empty + QStringLiteral(": the file is empty"));
        QVERIFY(!ZrImporter::Create(QStringLiteral("/dev/zero"), format, ZrImportOptions(), &error));
        QCOMPARE(error, QStringLiteral("/dev/zero: is not a regular file"));
        QVERIFY(!ZrImporter::Create(QString(), format, ZrImportOptions(), &error));
        QCOMPARE(error, QStringLiteral("the name of the file is empty"));
    }
}

void tst_ZrImporter::errorMayBeNull()
{
    QVERIFY(!ZrImporter::Create(QStringLiteral("/nowhere"), QStringLiteral("auto"), {}, nullptr));
    QVERIFY(!ZrImporter::Create(QStringLiteral("/nowhere"), QStringLiteral("x"), {}, nullptr));
    const QString path = fixture::data("nmea-boat/plaka.log");
    QVERIFY(!ZrImporter::Create(path, QStringLiteral("xtf"), {}, nullptr));
    QVERIFY(ZrImporter::Create(path, QStringLiteral("auto"), {}, nullptr));
}

void tst_ZrImporter::nameOfTheFileDoesNotMatter()
{
    QTemporaryDir folder;
    const QByteArray content("Timestamp;Depth\n2022-05-30 20:14:00;4.8\n");
    for (const QString& name : {QStringLiteral("line.xtf"), QString::fromUtf8("Ærø – 海底 ☃ log"),
             QStringLiteral("a b;c'd\".nmea"), QString::fromUtf8("e\xCC\x81")}) {
        const fixture::Imported got = fixture::import(fixture::write(folder, name, content));
        QVERIFY2(got.opened, qPrintable(got.error));
        QCOMPARE(got.report.format, QStringLiteral("gnss"));
        QCOMPARE(got.items.size(), 1);
    }
}

void tst_ZrImporter::sourceIsWrittenIntoEveryItem()
{
    ZrImportOptions options;
    options.source = 65535;
    for (const char* name : {"sidescan-xtf/iver2-scotsman-pings0-299.xtf",
             "glider-nav/sea035.12.gli.sub.36.csv", "nmea-boat/plaka.log",
             "gnss-echosounder/2022.05.30_201358_gnss.txt", "gnss-echosounder/2022.05.30_201358_sonar.txt"}) {
        const fixture::Imported got = fixture::import(fixture::data(name), QStringLiteral("auto"), options);
        QVERIFY2(got.items.size() > 0, name);
        for (const ZrImportItem& item : got.items)
            QCOMPARE(item.source, u16(65535));
    }
}

void tst_ZrImporter::bytesReachTheSizeOfTheFile_data()
{
    realFilesAreRecognised_data();
}

void tst_ZrImporter::bytesReachTheSizeOfTheFile()
{
    QFETCH(QString, path);
    const auto importer = ZrImporter::Create(path, QStringLiteral("auto"), {}, nullptr);
    QVERIFY(importer);
    ZrImportItem item;
    u64 before = 0;
    while (importer->Next(item)) {
        QVERIFY(importer->Report().bytes >= before);
        before = importer->Report().bytes;
        QVERIFY(before <= importer->FileSize());
    }
    QCOMPARE(importer->FileSize(), u64(QFileInfo(path).size()));
    QCOMPARE(importer->Report().bytes, importer->FileSize());
    QVERIFY(!importer->Next(item));
}

void tst_ZrImporter::accountKeepsCountsExtentAndStepsBack()
{
    TimesImporter importer({5.0, 7.0, 7.0, 6.5, 6.75, -3.0, 20.0});
    QCOMPARE(importer.Report().items, u64(0));
    ZrImportItem item;
    while (importer.Next(item)) { }
    QCOMPARE(importer.Report().items, u64(7));
    QCOMPARE(importer.Report().firstTime, -3.0);
    QCOMPARE(importer.Report().lastTime, 20.0);
    QCOMPARE(importer.Report().backwards, u64(2));
}

void tst_ZrImporter::reportKeepsTheFirstIssuesInWords()
{
    ZrImportReport report;
    for (u64 i = 1; i <= 1000; ++i)
        report.AddIssue(i, QStringLiteral("fault %1").arg(i));
    QCOMPARE(report.issueCount, u64(1000));
    QCOMPARE(report.issues.size(), ZrImportReport::MaxIssues);
    QCOMPARE(report.issues.last().place, u64(200));
    QCOMPARE(report.issues.last().text, QStringLiteral("fault 200"));
}

void tst_ZrImporter::issueTextNamesLineOrOffset()
{
    ZrImportReport report;
    QCOMPARE(report.IssueText({12, QStringLiteral("odd %2 %1")}), QStringLiteral("line 12: odd %2 %1"));
    report.byLine = false;
    QCOMPARE(report.IssueText({18446744073709551615u, QStringLiteral("odd")}),
        QStringLiteral("offset 18446744073709551615: odd"));
}

void tst_ZrImporter::millionLinesInConstantMemory()
{
    QTemporaryDir folder;
    QByteArray content("Timestamp;Depth\n");
    const QByteArray line("2022-05-30 20:14:00.952522;4.800\n");
    constexpr int Lines = 1000000;
    content.reserve(content.size() + Lines * line.size());
    for (int i = 0; i < Lines; ++i)
        content += line;
    const QString path = fixture::write(folder, QStringLiteral("long.txt"), content);
    content = QByteArray();

    const std::size_t before = heapInUse();
    std::size_t most = 0;
    const auto importer = ZrImporter::Create(path, QStringLiteral("auto"), {}, nullptr);
    QVERIFY(importer);
    ZrImportItem item;
    for (int i = 0; importer->Next(item); ++i) {
        if (i % 10000 == 0)
            most = std::max(most, heapInUse());
    }
    QCOMPARE(importer->Report().items, u64(Lines));
    QCOMPARE(importer->Report().records, u64(Lines));
    QCOMPARE(importer->Report().issueCount, u64(0));
    QVERIFY2(most < before + 1000000,
        qPrintable(QStringLiteral("%1 bytes before, at most %2").arg(before).arg(most)));
}

QTEST_GUILESS_MAIN(tst_ZrImporter)
#include "tst_ZrImporter.moc"
