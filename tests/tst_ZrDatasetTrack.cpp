// The track of ZrDataset as CSV: the exact text, ranges, progress, local time, what cannot be written.

#include "ZrDatasetFixture.h"

#include <QDateTime>

#include <cmath>
#include <ctime>

namespace {

const double notANumber = std::numeric_limits<double>::quiet_NaN();

const QByteArray header
    = "#Rec, Time (hh:mm:ss), Dive Time (hrs), Latitude (\xc2\xba), Longitude (\xc2\xba), Depth(m), "
      "Seabed Depth(m), Heading (\xc2\xba),  Pitch (\xc2\xba),  Roll (\xc2\xba)\n";

/// 2021-03-03 14:05:09 UTC
constexpr double sampleTime = 1614780309.0;

ZrLogRec Record(double time, double latitude, double longitude, float depth, float altitude, float heading,
    float pitch, float roll)
{
    ZrLogRec rec;
    rec.time = time;
    rec.latitude = latitude;
    rec.longitude = longitude;
    rec.depth = depth;
    rec.altitude = altitude;
    rec.heading = heading;
    rec.pitch = pitch;
    rec.roll = roll;
    return rec;
}

/// The local time of this process is that of \p zone from here on.
void SetZone(const char* zone)
{
    qputenv("TZ", zone);
    tzset();
}

/// A line of the track, each field written by Qt's own functions, one after the other.
QByteArray PlainRow(const std::vector<ZrLogRec>& recs, int i)
{
    const ZrLogRec rec = recs[std::size_t(i)];
    const double start = recs.front().time;
    const float seabed = rec.depth + rec.altitude;
    QStringList fields;
    fields << QString::number(i)
           << QDateTime::fromMSecsSinceEpoch(qint64(rec.time * 1000))
                  .toString(QStringLiteral("dd/MM/yyyy hh:mm:ss"))
           << QString::number((rec.time - start) / 3600, 'g', 6) << QString::number(rec.latitude, 'f', 8)
           << QString::number(rec.longitude, 'f', 8);
    for (float value : {float(rec.depth), seabed, float(rec.heading), float(rec.pitch), float(rec.roll)})
        fields << QString::number(double(value), 'g', 6);
    return fields.join(QStringLiteral(", ")).toUtf8() + '\n';
}

/// Where a number of a track stands in its row.
constexpr int diveField = 2;
constexpr int latitudeField = 3;
constexpr int depthField = 5;
constexpr int seabedField = 6;

quint64 randomState = 1;

quint32 Random()
{
    randomState = randomState * 6364136223846793005ull + 1442695040888963407ull;
    return quint32(randomState >> 32);
}

/// A number that is often close to, or exactly at, the border between two texts.
double AwkwardNumber()
{
    switch (Random() % 6) {
    case 0:
        return std::ldexp(double(Random() % 20000000), -int(Random() % 14)); // few binary places
    case 1:
        return double(qint32(Random())) / std::pow(10.0, int(Random() % 12)); // few decimal places
    case 2:
        return std::ldexp(double(Random()) + 0.5, int(Random() % 80) - 60);
    case 3:
        return -std::ldexp(double(Random() % 4096), -12);
    case 4:
        return double(Random() % 2000) / 4.0 - 250.0;
    default:
        return (double(Random()) / 4294967296.0 - 0.5) * 360.0;
    }
}

} // namespace

class tst_ZrDatasetTrack : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void exactText();
    void noRecordsGiveTheHeader();
    void ranges_data();
    void ranges();
    void progressValues();
    void progressOfAPart();
    void progressMayReplaceTheTable();
    void outputReplacesALongerFile();
    void unwritablePath_data();
    void unwritablePath();
    void fullDisk();

    void numbers_data();
    void numbers();
    void numbersAreThoseOfQt();
    void seabedIsASumOfSinglePrecision();
    void diveTimeIsCountedFromTheFirstRecord();

    void timesAreTruncatedToMilliseconds();
    void timesThatAreNoTimes_data();
    void timesThatAreNoTimes();
    void localTimes_data();
    void localTimes();
    void localTimesAroundClockChanges();

private:
    QString Csv() const { return m_dir->filePath(QStringLiteral("track.csv")); }

    /// The lines behind the header, without their ends.
    QList<QByteArray> Rows() const
    {
        QByteArray text = ReadWhole(Csv());
        if (!text.startsWith(header) || !text.endsWith('\n'))
            return {"no track"};
        text = text.mid(header.size());
        text.chop(1);
        return text.isEmpty() ? QList<QByteArray>() : text.split('\n');
    }

    /// The field of the first line when \p value is its depth and its latitude.
    QByteArray TextOf(double value, int field)
    {
        ZrDataset dataset;
        dataset.recs = {Record(0.0, value, 0.0, float(value), 0.0f, 0.0f, 0.0f, 0.0f)};
        if (!dataset.ExportTrack(Csv(), nullptr))
            return "failed";
        return Rows().value(0).split(',').value(field).trimmed();
    }

    QScopedPointer<QTemporaryDir> m_dir;
};

void tst_ZrDatasetTrack::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
    SetZone("UTC");
}

void tst_ZrDatasetTrack::cleanup()
{
    m_dir.reset();
}

void tst_ZrDatasetTrack::exactText()
{
    ZrDataset dataset;
    dataset.recs = {Record(sampleTime, 60.39299, 5.32415, 12.5f, 7.25f, 359.5f, -1.25f, 0.0f),
        Record(sampleTime + 1.5, -33.9, -18.123456789, 100.125f, 0.0f, 0.1f, 12.0f, -0.5f),
        Record(sampleTime + 5400, 0.0, 180.0, 10935.25f, 1234.75f, 90.0f, 1e-7f, 1e7f)};
    QVERIFY(dataset.ExportTrack(Csv(), nullptr));
    QCOMPARE(ReadWhole(Csv()),
        QByteArray(
            "#Rec, Time (hh:mm:ss), Dive Time (hrs), Latitude (\xc2\xba), Longitude (\xc2\xba), Depth(m), "
            "Seabed Depth(m), Heading (\xc2\xba),  Pitch (\xc2\xba),  Roll (\xc2\xba)\n"
            "0, 03/03/2021 14:05:09, 0, 60.39299000, 5.32415000, 12.5, 19.75, 359.5, -1.25, 0\n"
            "1, 03/03/2021 14:05:10, 0.000416667, -33.90000000, -18.12345679, 100.125, 100.125, 0.1, 12, "
            "-0.5\n"
            "2, 03/03/2021 15:35:09, 1.5, 0.00000000, 180.00000000, 10935.3, 12170, 90, 1e-07, 1e+07\n"));
}

void tst_ZrDatasetTrack::noRecordsGiveTheHeader()
{
    ZrDataset dataset;
    ProgressList progress;
    QVERIFY(dataset.ExportTrack(Csv(), &progress));
    QCOMPARE(ReadWhole(Csv()), header);
    QCOMPARE(progress.values, QVector<int>{0});
    QVERIFY(dataset.ExportTrack(Csv(), 0, 10, nullptr));
    QCOMPARE(ReadWhole(Csv()), header);
}

void tst_ZrDatasetTrack::ranges_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::addColumn<QVector<int>>("rows");
    const int least = std::numeric_limits<int>::min();
    const int greatest = std::numeric_limits<int>::max();
    QTest::newRow("all") << 0 << 5 << QVector<int>{0, 1, 2, 3, 4};
    QTest::newRow("last is not included") << 1 << 3 << QVector<int>{1, 2};
    QTest::newRow("one") << 4 << 5 << QVector<int>{4};
    QTest::newRow("none") << 2 << 2 << QVector<int>{};
    QTest::newRow("reversed") << 3 << 1 << QVector<int>{};
    QTest::newRow("beyond the end") << 3 << greatest << QVector<int>{3, 4};
    QTest::newRow("behind the end") << 5 << 9 << QVector<int>{};
    QTest::newRow("far behind") << greatest << greatest << QVector<int>{};
    QTest::newRow("before the start") << -1 << 3 << QVector<int>{}; // record -1 is no record: it ends there
    QTest::newRow("far before") << least << greatest << QVector<int>{};
}

void tst_ZrDatasetTrack::ranges()
{
    QFETCH(int, first);
    QFETCH(int, last);
    QFETCH(QVector<int>, rows);
    ZrDataset dataset;
    SetTimes(dataset, {3600.0, 7200.0, 10800.0, 14400.0, 18000.0});
    QVERIFY(dataset.ExportTrack(Csv(), first, last, nullptr));
    QList<QByteArray> expected;
    for (int row : rows) // dive time counts from record 0 in every range
        expected << QStringLiteral("%1, 01/01/1970 0%2:00:00, %1, 0.00000000, 0.00000000, 0, 0, 0, 0, 0")
                        .arg(row)
                        .arg(row + 1)
                        .toUtf8();
    QCOMPARE(Rows(), expected);
}

void tst_ZrDatasetTrack::progressValues()
{
    ZrDataset dataset;
    SetTimes(dataset, std::vector<double>(7, 1.0));
    ProgressList progress;
    QVERIFY(dataset.ExportTrack(Csv(), &progress));
    // 0 at the start, then i x 100 / 7 for each row.
    QCOMPARE(progress.values, (QVector<int>{0, 0, 14, 28, 42, 57, 71, 85}));
}

void tst_ZrDatasetTrack::progressOfAPart()
{
    ZrDataset dataset;
    SetTimes(dataset, std::vector<double>(1000, 1.0));
    ProgressList progress;
    QVERIFY(dataset.ExportTrack(Csv(), 498, 502, &progress));
    QCOMPARE(progress.values, (QVector<int>{0, 49, 49, 50, 50})); // of the whole table
}

void tst_ZrDatasetTrack::progressMayReplaceTheTable()
{
    ZrDataset dataset;
    SetTimes(dataset, std::vector<double>(1000, 1.0));

    class Replacing final : public IZrProgress
    {
    public:
        explicit Replacing(ZrDataset& dataset)
            : m_dataset(dataset)
        {
        }

        void UpdateProgress(int percent) override
        {
            if (percent == 50)
                std::vector<ZrLogRec>().swap(m_dataset.recs);
        }

        int GetProgress() override { return 0; }

    private:
        ZrDataset& m_dataset;
    };

    Replacing progress(dataset);
    QVERIFY(dataset.ExportTrack(Csv(), &progress));
    QCOMPARE(Rows().size(), 501);
}

void tst_ZrDatasetTrack::outputReplacesALongerFile()
{
    QVERIFY(WriteWhole(Csv(), QByteArray(100000, 'x')));
    ZrDataset dataset;
    QVERIFY(dataset.ExportTrack(Csv(), nullptr));
    QCOMPARE(ReadWhole(Csv()), header);
}

void tst_ZrDatasetTrack::unwritablePath_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing folder") << QStringLiteral("missing/track.csv");
    QTest::newRow("folder") << QStringLiteral(".");
    QTest::newRow("empty") << QString();
}

void tst_ZrDatasetTrack::unwritablePath()
{
    QFETCH(QString, name);
    ZrDataset dataset;
    SetTimes(dataset, {1.0});
    ProgressList progress;
    const QString path = name.isEmpty() ? QString() : m_dir->filePath(name);
    const MessageCatcher quiet; // an empty name is a warning of Qt's
    QVERIFY(!dataset.ExportTrack(path, &progress));
    QVERIFY(!dataset.ExportTrack(path, 0, 1, nullptr));
    QVERIFY(progress.values.isEmpty());
}

void tst_ZrDatasetTrack::fullDisk()
{
#ifdef Q_OS_LINUX
    ZrDataset dataset;
    SetTimes(dataset, {1.0});
    QVERIFY(!dataset.ExportTrack(QStringLiteral("/dev/full"), nullptr));
    SetTimes(dataset, std::vector<double>(10000, 1.0));
    QVERIFY(!dataset.ExportTrack(QStringLiteral("/dev/full"), nullptr));
#endif
}

void tst_ZrDatasetTrack::numbers_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QByteArray>("shortText");
    QTest::addColumn<QByteArray>("degrees");
    const auto row = [](const char* name, double value, const char* shortText, const char* degrees) {
        QTest::newRow(name) << value << QByteArray(shortText) << QByteArray(degrees);
    };
    row("zero", 0.0, "0", "0.00000000");
    row("negative zero", -0.0, "0", "0.00000000");
    row("whole", 42.0, "42", "42.00000000");
    row("six digits", 123456.0, "123456", "123456.00000000");
    row("seven digits", 1234567.0, "1.23457e+06", "1234567.00000000");
    row("tie of six digits upwards", 12345.25, "12345.3", "12345.25000000");
    row("tie of six digits, negative", -12345.25, "-12345.3", "-12345.25000000");
    row("tie of six digits, odd", 12345.75, "12345.8", "12345.75000000");
    row("tie of seven digits", 1000005.0, "1.00001e+06", "1000005.00000000");
    row("tie of 2^-9", 0.001953125, "0.00195313", "0.00195313"); // to even it were ...12
    row("tie of 2^-9, negative", -0.001953125, "-0.00195313", "-0.00195313");
    row("tie of 2^-10", 0.0009765625, "0.000976563", "0.00097656");
    row("just below 10^6", 999999.5, "1e+06", "999999.50000000");
    row("small", 0.0000152587890625, "1.52588e-05", "0.00001526");
    row("tiny negative", -1e-9, "-1e-09", "-0.00000000");
    row("tiny", 1e-30, "1e-30", "0.00000000");
    row("below one", 0.5, "0.5", "0.50000000");
    row("not a number", notANumber, "nan", "nan");
    row("infinite", std::numeric_limits<double>::infinity(), "inf", "inf");
    row("negative infinite", -std::numeric_limits<double>::infinity(), "-inf", "-inf");
}

void tst_ZrDatasetTrack::numbers()
{
    QFETCH(double, value);
    QFETCH(QByteArray, shortText);
    QFETCH(QByteArray, degrees);
    QCOMPARE(TextOf(value, depthField), shortText);
    QCOMPARE(TextOf(value, latitudeField), degrees);
}

void tst_ZrDatasetTrack::numbersAreThoseOfQt()
{
    ZrDataset dataset;
    for (int i = 0; i < 60000; ++i) {
        // The times reach over hours, so that the dive time takes all kinds of values as well.
        const double time = i ? AwkwardNumber() * 3600.0 : 0.0;
        dataset.recs.push_back(Record(std::fabs(time) < 1e10 ? time : 0.0, AwkwardNumber(), AwkwardNumber(),
            float(AwkwardNumber()), float(AwkwardNumber()), float(AwkwardNumber()), float(AwkwardNumber()),
            float(AwkwardNumber())));
    }
    QVERIFY(dataset.ExportTrack(Csv(), nullptr));
    QByteArray expected = header;
    for (int i = 0; i < 60000; ++i)
        expected += PlainRow(dataset.recs, i);
    const QByteArray written = ReadWhole(Csv());
    if (written != expected) {
        const QList<QByteArray> a = written.split('\n');
        const QList<QByteArray> b = expected.split('\n');
        for (int i = 0; i < b.size(); ++i)
            QCOMPARE(a.value(i), b[i]);
    }
}

void tst_ZrDatasetTrack::seabedIsASumOfSinglePrecision()
{
    // In single precision the neighbours above 65536 are 1/128 apart: the sum is 65536.046875, not
    // 65536.0505.
    ZrDataset dataset;
    dataset.recs = {Record(0.0, 0.0, 0.0, 65536.0f, 0.0505f, 0.0f, 0.0f, 0.0f)};
    QVERIFY(dataset.ExportTrack(Csv(), nullptr));
    QCOMPARE(Rows().at(0).split(',').at(seabedField), QByteArray(" 65536"));
}

void tst_ZrDatasetTrack::diveTimeIsCountedFromTheFirstRecord()
{
    ZrDataset dataset;
    SetTimes(dataset, {sampleTime, sampleTime - 3600.0, sampleTime + 0.036, sampleTime + 12345678.0});
    QVERIFY(dataset.ExportTrack(Csv(), 1, 4, nullptr));
    const QList<QByteArray> rows = Rows();
    QCOMPARE(rows.size(), 3);
    QCOMPARE(rows[0].split(',').at(diveField), QByteArray(" -1"));
    QCOMPARE(rows[1].split(',').at(diveField), QByteArray(" 1e-05"));
    QCOMPARE(rows[2].split(',').at(diveField), QByteArray(" 3429.36"));
}

void tst_ZrDatasetTrack::timesAreTruncatedToMilliseconds()
{
    ZrDataset dataset;
    // Truncation is towards zero: -0.0009 s are 0 ms, -0.001 s one millisecond before 1970.
    SetTimes(dataset, {0.9999, 59.9999, -0.0009, -0.001, -1.0, 1614780309.9996});
    QVERIFY(dataset.ExportTrack(Csv(), nullptr));
    const QList<QByteArray> rows = Rows();
    const char* const texts[] = {"01/01/1970 00:00:00", "01/01/1970 00:00:59", "01/01/1970 00:00:00",
        "31/12/1969 23:59:59", "31/12/1969 23:59:59", "03/03/2021 14:05:09"};
    for (int i = 0; i < 6; ++i)
        QCOMPARE(rows.value(i).split(',').value(1).trimmed(), QByteArray(texts[i]));
}

void tst_ZrDatasetTrack::timesThatAreNoTimes_data()
{
    QTest::addColumn<double>("time");
    QTest::addColumn<QByteArray>("row");
    const QByteArray rest = ", 0.00000000, 0.00000000, 0, 0, 0, 0, 0";
    QTest::newRow("not a number") << notANumber << "0, , nan" + rest;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << "0, , nan" + rest;
    QTest::newRow("1e300") << 1e300 << "0, , 0" + rest;
    QTest::newRow("-1e300") << -1e300 << "0, , 0" + rest;
    QTest::newRow("2^63 ms") << std::ldexp(1.0, 63) / 1000.0 << "0, , 0" + rest;
}

void tst_ZrDatasetTrack::timesThatAreNoTimes()
{
    QFETCH(double, time);
    QFETCH(QByteArray, row);
    ZrDataset dataset;
    SetTimes(dataset, {time});
    QVERIFY(dataset.ExportTrack(Csv(), nullptr));
    QCOMPARE(Rows(), QList<QByteArray>{row});
}

void tst_ZrDatasetTrack::localTimes_data()
{
    QTest::addColumn<QByteArray>("zone");
    for (const char* zone : {"UTC", "CET-1CEST,M3.5.0,M10.5.0/3", "EST5EDT,M3.2.0,M11.1.0", "IST-5:30",
             "UVW-0:19:32", "AAA+12", "BBB-14", "LHST-10:30LHDT-11,M10.1.0,M4.1.0"})
        QTest::newRow(zone) << QByteArray(zone);
}

void tst_ZrDatasetTrack::localTimes()
{
    QFETCH(QByteArray, zone);
    SetZone(zone.constData());
    ZrDataset dataset;
    for (int i = 0; i < 4000; ++i) {
        const double span = i % 4 == 0 ? 2e9 : i % 4 == 1 ? 4e8 : i % 4 == 2 ? 1e5 : 1e11;
        dataset.recs.push_back(TimedRec(sampleTime + (double(Random()) / 4294967296.0 - 0.5) * span));
    }
    // Ordered stretches as in a log, over days, at different rates.
    for (double rate : {0.04, 1.0, 59.9, 3599.0, 86399.5})
        for (int i = 0; i < 1000; ++i)
            dataset.recs.push_back(TimedRec(sampleTime + rate * i));
    // Far from any recording: around the eras' change, before the common calendar, millions of years ahead.
    for (double time : {-62135596800.0, -62135596801.5, -62167219200.0, -1e12, 1e12, 253402300799.5,
             253402300800.0, -1e15, 1e15, -8.9e15, 8.9e15})
        dataset.recs.push_back(TimedRec(time));
    QVERIFY(dataset.ExportTrack(Csv(), nullptr));
    const QList<QByteArray> rows = Rows();
    QCOMPARE(rows.size(), int(dataset.recs.size()));
    for (int i = 0; i < rows.size(); ++i)
        QCOMPARE(rows[i] + '\n', PlainRow(dataset.recs, i));
}

void tst_ZrDatasetTrack::localTimesAroundClockChanges()
{
    SetZone("CET-1CEST,M3.5.0,M10.5.0/3");
    ZrDataset dataset;
    // 2021-03-28 01:00 UTC: 02:00 becomes 03:00. 2021-10-31 01:00 UTC: 03:00 becomes 02:00.
    SetTimes(dataset,
        {1616893199.0, 1616893199.999, 1616893200.0, 1635638400.0, 1635641999.5, 1635642000.0, 1635645600.0});
    QVERIFY(dataset.ExportTrack(Csv(), nullptr));
    const char* const texts[] = {"28/03/2021 01:59:59", "28/03/2021 01:59:59", "28/03/2021 03:00:00",
        "31/10/2021 02:00:00", "31/10/2021 02:59:59", "31/10/2021 02:00:00", "31/10/2021 03:00:00"};
    QList<QByteArray> rows = Rows();
    for (int i = 0; i < 7; ++i)
        QCOMPARE(rows.value(i).split(',').value(1).trimmed(), QByteArray(texts[i]));

    // Clocks that change in the middle of an hour of universal time.
    SetZone("LHST-10:30LHDT-11,M10.1.0,M4.1.0");
    dataset.recs.clear();
    for (double change : {1617462000.0, 1633188600.0})
        for (int i = -4000; i < 4000; i += 7)
            dataset.recs.push_back(TimedRec(change + i));
    QVERIFY(dataset.ExportTrack(Csv(), nullptr));
    rows = Rows();
    QSet<qint64> offsets;
    for (int i = 0; i < rows.size(); ++i) {
        QCOMPARE(rows[i] + '\n', PlainRow(dataset.recs, i));
        offsets << QDateTime::fromMSecsSinceEpoch(qint64(dataset.recs[std::size_t(i)].time * 1000))
                       .offsetFromUtc();
    }
    QCOMPARE(offsets.size(), 2); // both sides of a change were met
}

QTEST_GUILESS_MAIN(tst_ZrDatasetTrack)
#include "tst_ZrDatasetTrack.moc"
