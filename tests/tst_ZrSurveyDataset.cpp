// What the dataset of survey logs puts into its records.

#include "ZrKit/review/ZrSurveyDataset.h"
#include "ZrSurveyLog.h"
#include "ZrUtil/ZrPlayer.h"

namespace {

using survey::Nav;

/// Doubles or floats that are the same number, or both none.
bool Same(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

bool Same(float a, float b)
{
    return Same(static_cast<double>(a), static_cast<double>(b));
}

ZrLogItemInf Inf(quint16 type = 16, quint16 sub = 0, quint16 format = 1)
{
    ZrLogItemInf inf;
    inf.type = type;
    inf.sub = sub;
    inf.format = format;
    inf.time = 77.5;
    return inf;
}

/// The record that \p dataset makes of a payload, appended to its table as a scan does.
ZrLogRec Fill(ZrSurveyDataset& dataset, const ZrLogItemInf& inf, const QByteArray& payload)
{
    ZrLogRec rec;
    dataset.FillRec(rec, inf, Span(payload));
    dataset.recs.push_back(rec);
    return rec;
}

QByteArray FixPayload(double latitude, double longitude, quint8 quality)
{
    QByteArray bytes;
    AppendLe(bytes, latitude);
    AppendLe(bytes, longitude);
    bytes += QByteArray(8, '\0'); // height and dilution
    bytes += static_cast<char>(quality);
    bytes += QByteArray(3, '\0');
    return bytes;
}

constexpr Nav placed{44.5, -63.25, 3.5f, 12.25f, 271.5f, -4.5f, 2.25f, 0};

bool NothingButPosition(const ZrLogRec& rec)
{
    return std::isnan(rec.altitude) && std::isnan(rec.depth) && std::isnan(rec.heading)
        && std::isnan(rec.pitch) && std::isnan(rec.roll);
}

} // namespace

class tst_ZrSurveyDataset : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void defaultTypesAreTheDocumentedOnes();
    void typesCanBeChosen();
    void navigationFillsTheRecord();
    void longerNavigationOfALaterVersionIsUnderstood();
    void lastKnownPositionIsRepeated();
    void recordsBeforeTheFirstFixHaveNoPosition();
    void positionRepeatedByTheVehicleIsMarked();
    void implausiblePositionIsNotKnown_data();
    void implausiblePositionIsNotKnown();
    void edgesOfTheEarthAreKnown();
    void infiniteValuesAreNotKnown();
    void depthAndAltitudeAreNeverRepeated();
    void foreignPayloadLeavesTheTime_data();
    void foreignPayloadLeavesTheTime();
    void fixGivesThePosition();
    void compressedPayloadIsUnderstood();
    void damagedCompressionLeavesTheTime();
    void unknownPositionsDoNotPoisonExtents();
    void unknownDepthsDoNotPoisonTheSeabed();
    void positionIsNotHeldFromAnEarlierLog();
    void scannedAndIndexedTablesAreTheSame();
};

void tst_ZrSurveyDataset::defaultTypesAreTheDocumentedOnes()
{
    const ZrSurveyDataset dataset;
    QVERIFY(dataset.IdxType() == CRecType(0, 16));
    const std::array<CRecType, 8> expected{CRecType(0, 18), CRecType(0, 19), CRecType(0, 20), CRecType(0, 21),
        CRecType(0, 22), CRecType(0, 17), CRecType(1, 17), CRecType(0, 2)};
    QVERIFY(dataset.CrdTypes() == expected);
}

void tst_ZrSurveyDataset::typesCanBeChosen()
{
    const ZrSurveyDataset dataset(CRecType(3, 200), {CRecType(1, 4)});
    QVERIFY(dataset.idxType == CRecType(3, 200));
    QVERIFY(dataset.crdTypes[0] == CRecType(1, 4));
    QVERIFY(dataset.crdTypes[1] == CRecType());
}

void tst_ZrSurveyDataset::navigationFillsTheRecord()
{
    ZrSurveyDataset dataset;
    const ZrLogRec rec = Fill(dataset, Inf(), placed.Bytes());
    QCOMPARE(double(rec.time), 77.5);
    QCOMPARE(double(rec.latitude), 44.5);
    QCOMPARE(double(rec.longitude), -63.25);
    QCOMPARE(float(rec.altitude), 3.5f);
    QCOMPARE(float(rec.depth), 12.25f);
    QCOMPARE(float(rec.heading), 271.5f);
    QCOMPARE(float(rec.pitch), -4.5f);
    QCOMPARE(float(rec.roll), 2.25f);
    QCOMPARE(u32(rec.spare40), 1u);
    QCOMPARE(u32(rec.spare44), 0u);
    QCOMPARE(float(rec.spare76), 0.0f);
    QCOMPARE(u32(rec.spare156), 0u);
}

void tst_ZrSurveyDataset::longerNavigationOfALaterVersionIsUnderstood()
{
    ZrSurveyDataset dataset;
    const ZrLogRec rec = Fill(dataset, Inf(), placed.Bytes() + QByteArray(100, '\x7F'));
    QCOMPARE(double(rec.latitude), 44.5);
    QCOMPARE(float(rec.roll), 2.25f);
}

void tst_ZrSurveyDataset::lastKnownPositionIsRepeated()
{
    ZrSurveyDataset dataset;
    Fill(dataset, Inf(), placed.Bytes());
    Nav submerged;
    submerged.depth = 80.0f;
    for (int i = 0; i < 3; ++i) {
        const ZrLogRec rec = Fill(dataset, Inf(), submerged.Bytes());
        QCOMPARE(double(rec.latitude), 44.5);
        QCOMPARE(double(rec.longitude), -63.25);
        QCOMPARE(float(rec.depth), 80.0f);
        QCOMPARE(u32(rec.spare40), 3u);
    }
    Nav surfaced = placed;
    surfaced.latitude = 45.0;
    const ZrLogRec rec = Fill(dataset, Inf(), surfaced.Bytes());
    QCOMPARE(double(rec.latitude), 45.0);
    QCOMPARE(u32(rec.spare40), 1u);
}

void tst_ZrSurveyDataset::recordsBeforeTheFirstFixHaveNoPosition()
{
    ZrSurveyDataset dataset;
    for (int i = 0; i < 2; ++i) {
        const ZrLogRec rec = Fill(dataset, Inf(), Nav().Bytes());
        QVERIFY(std::isnan(rec.latitude) && std::isnan(rec.longitude));
        QCOMPARE(u32(rec.spare40), 0u);
    }
}

void tst_ZrSurveyDataset::positionRepeatedByTheVehicleIsMarked()
{
    ZrSurveyDataset dataset;
    Nav nav = placed;
    nav.flags = 1;
    QCOMPARE(u32(Fill(dataset, Inf(), nav.Bytes()).spare40), 3u);
    nav.flags = 0xFFFFFFFE; // bits of no meaning
    QCOMPARE(u32(Fill(dataset, Inf(), nav.Bytes()).spare40), 1u);
}

void tst_ZrSurveyDataset::implausiblePositionIsNotKnown_data()
{
    const double nan = std::nan("");
    const double inf = std::numeric_limits<double>::infinity();
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::newRow("no latitude") << nan << 10.0;
    QTest::newRow("no longitude") << 10.0 << nan;
    QTest::newRow("north of the pole") << 90.0000001 << 10.0;
    QTest::newRow("south of the pole") << -90.0000001 << 10.0;
    QTest::newRow("too far east") << 10.0 << 180.0000001;
    QTest::newRow("too far west") << 10.0 << -180.0000001;
    QTest::newRow("infinite") << inf << 10.0;
    QTest::newRow("minus infinite") << 10.0 << -inf;
}

void tst_ZrSurveyDataset::implausiblePositionIsNotKnown()
{
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    ZrSurveyDataset dataset;
    Fill(dataset, Inf(), placed.Bytes());
    Nav nav = placed;
    nav.latitude = latitude;
    nav.longitude = longitude;
    const ZrLogRec rec = Fill(dataset, Inf(), nav.Bytes());
    QCOMPARE(double(rec.latitude), 44.5);
    QCOMPARE(double(rec.longitude), -63.25);
    QCOMPARE(float(rec.depth), 12.25f);
    QCOMPARE(u32(rec.spare40), 3u);
}

void tst_ZrSurveyDataset::edgesOfTheEarthAreKnown()
{
    ZrSurveyDataset dataset;
    for (const auto& [latitude, longitude] : {std::pair(90.0, 180.0), std::pair(-90.0, -180.0)}) {
        Nav nav;
        nav.latitude = latitude;
        nav.longitude = longitude;
        const ZrLogRec rec = Fill(dataset, Inf(), nav.Bytes());
        QCOMPARE(double(rec.latitude), latitude);
        QCOMPARE(double(rec.longitude), longitude);
    }
}

void tst_ZrSurveyDataset::infiniteValuesAreNotKnown()
{
    constexpr float inf = std::numeric_limits<float>::infinity();
    ZrSurveyDataset dataset;
    const ZrLogRec rec = Fill(dataset, Inf(), Nav{44.5, -63.25, inf, -inf, inf, -inf, inf, 0}.Bytes());
    QVERIFY(NothingButPosition(rec));
    QCOMPARE(double(rec.latitude), 44.5);
}

void tst_ZrSurveyDataset::depthAndAltitudeAreNeverRepeated()
{
    ZrSurveyDataset dataset;
    Fill(dataset, Inf(), placed.Bytes());
    QVERIFY(NothingButPosition(Fill(dataset, Inf(), Nav().Bytes())));
}

void tst_ZrSurveyDataset::foreignPayloadLeavesTheTime_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("sub");
    QTest::addColumn<int>("format");
    QTest::addColumn<QByteArray>("payload");
    const QByteArray whole = placed.Bytes();
    QTest::newRow("nothing") << 16 << 0 << 1 << QByteArray();
    QTest::newRow("one byte short") << 16 << 0 << 1 << whole.left(39);
    QTest::newRow("other format") << 16 << 0 << 2 << whole;
    QTest::newRow("format 0") << 16 << 0 << 0 << whole;
    QTest::newRow("other sub-type") << 16 << 1 << 1 << whole;
    QTest::newRow("other type") << 200 << 0 << 1 << whole;
    QTest::newRow("fix too short") << 18 << 0 << 1 << FixPayload(1.0, 2.0, 1).left(27);
    QTest::newRow("fix of other format") << 18 << 0 << 2 << FixPayload(1.0, 2.0, 1);
}

void tst_ZrSurveyDataset::foreignPayloadLeavesTheTime()
{
    QFETCH(int, type);
    QFETCH(int, sub);
    QFETCH(int, format);
    QFETCH(QByteArray, payload);
    const ZrLogItemInf inf
        = Inf(static_cast<quint16>(type), static_cast<quint16>(sub), static_cast<quint16>(format));
    ZrSurveyDataset dataset;
    const ZrLogRec alone = Fill(dataset, inf, payload);
    QCOMPARE(double(alone.time), 77.5);
    QVERIFY(NothingButPosition(alone));
    QVERIFY(std::isnan(alone.latitude) && std::isnan(alone.longitude));
    Fill(dataset, Inf(), placed.Bytes());
    const ZrLogRec behind = Fill(dataset, inf, payload);
    QCOMPARE(double(behind.latitude), 44.5);
    QVERIFY(NothingButPosition(behind));
}

void tst_ZrSurveyDataset::fixGivesThePosition()
{
    ZrSurveyDataset dataset(CRecType(0, 18), {});
    const ZrLogRec rec = Fill(dataset, Inf(18), FixPayload(10.5, 20.25, 4));
    QCOMPARE(double(rec.time), 77.5);
    QCOMPARE(double(rec.latitude), 10.5);
    QCOMPARE(double(rec.longitude), 20.25);
    QVERIFY(NothingButPosition(rec));
    QCOMPARE(u32(rec.spare40), 1u);
    // A receiver without a fix may go on sending what it had.
    const ZrLogRec none = Fill(dataset, Inf(18), FixPayload(11.0, 21.0, 0));
    QCOMPARE(double(none.latitude), 10.5);
    QCOMPARE(u32(none.spare40), 3u);
    QCOMPARE(double(Fill(dataset, Inf(18), FixPayload(12.0, 22.0, 255)).latitude), 12.0);
}

void tst_ZrSurveyDataset::compressedPayloadIsUnderstood()
{
    ZrSurveyDataset dataset;
    for (const int level : {1, 6, 9}) {
        const ZrLogRec rec = Fill(dataset, Inf(), qCompress(placed.Bytes(), level));
        QCOMPARE(double(rec.latitude), 44.5);
        QCOMPARE(float(rec.roll), 2.25f);
    }
    const ZrLogRec fix = Fill(dataset, Inf(18), qCompress(FixPayload(10.5, 20.25, 1)));
    QCOMPARE(double(fix.latitude), 10.5);
}

void tst_ZrSurveyDataset::damagedCompressionLeavesTheTime()
{
    ZrSurveyDataset dataset;
    MessageCatcher messages; // Qt tells of what does not decompress
    const QByteArray packed = qCompress(placed.Bytes());
    QVERIFY(packed.size() > 40); // its bytes would do for a plain record
    for (const QByteArray& damaged : {Flipped(packed, 15, 0xFF), packed.left(20), packed.left(6)}) {
        const ZrLogRec rec = Fill(dataset, Inf(), damaged);
        QCOMPARE(double(rec.time), 77.5);
        QVERIFY(NothingButPosition(rec));
        QVERIFY(std::isnan(rec.latitude));
    }
}

void tst_ZrSurveyDataset::unknownPositionsDoNotPoisonExtents()
{
    ZrSurveyDataset dataset;
    const auto at = [&dataset](double latitude, double longitude) {
        Nav nav;
        nav.latitude = latitude;
        nav.longitude = longitude;
        Fill(dataset, Inf(), nav.Bytes());
    };
    const double nan = std::nan("");
    at(nan, nan);
    at(10.0, 20.0);
    at(nan, nan); // held at 10, 20
    at(13.0, 26.0);
    dataset.UpdateExtents();
    QCOMPARE(dataset.minLatitude, 10.0);
    QCOMPARE(dataset.maxLatitude, 13.0);
    QCOMPARE(dataset.minLongitude, 20.0);
    QCOMPARE(dataset.maxLongitude, 26.0);
    QCOMPARE(dataset.meanLatitude, 11.0);
    QCOMPARE(dataset.meanLongitude, 22.0);
}

void tst_ZrSurveyDataset::unknownDepthsDoNotPoisonTheSeabed()
{
    ZrSurveyDataset dataset;
    Fill(dataset, Inf(), Nav().Bytes());
    Fill(dataset, Inf(), placed.Bytes());
    dataset.UpdateExtents();
    QCOMPARE(dataset.maxSeabed, 15.75f * 1.1f);
    QCOMPARE(dataset.seabedPlot.size(), std::size_t(8));
    QVERIFY(std::isnan(dataset.seabedPlot[3])); // a gap in the plot
    QCOMPARE(dataset.seabedPlot[7], 15.75f);
    QVERIFY(std::isnan(dataset.altitudePlot[1]));
    QCOMPARE(dataset.altitudePlot[3], 3.5f);
}

void tst_ZrSurveyDataset::positionIsNotHeldFromAnEarlierLog()
{
    ZrSurveyDataset dataset;
    Fill(dataset, Inf(), placed.Bytes());
    dataset.ClearData();
    QVERIFY(std::isnan(Fill(dataset, Inf(), Nav().Bytes()).latitude));
}

void tst_ZrSurveyDataset::scannedAndIndexedTablesAreTheSame()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("dive äß.log"));
    QVERIFY(WriteWhole(path, survey::SurveyLog(20).Bytes()));
    MessageCatcher messages;
    ZrSurveyDataset scanned;
    scanned.ReadFile(path);
    ZrSurveyDataset indexed;
    indexed.ReadFile(path);
    QVERIFY(messages.Take().last().startsWith(QLatin1String("Read 20 from index file:")));
    QCOMPARE(scanned.recs.size(), std::size_t(20));
    QCOMPARE(indexed.recs.size(), std::size_t(20));
    QCOMPARE(std::memcmp(scanned.recs.data(), indexed.recs.data(), 20 * sizeof(ZrLogRec)), 0);
    for (int i = 0; i < 20; ++i) {
        const ZrLogRec& rec = indexed.recs[static_cast<std::size_t>(i)];
        QVERIFY(Same(rec.latitude, 44.0 + i * 0.001));
        QVERIFY(Same(float(rec.depth), 10.0f + static_cast<float>(i)));
        QVERIFY(std::isnan(rec.roll));
    }
}

QTEST_GUILESS_MAIN(tst_ZrSurveyDataset)
#include "tst_ZrSurveyDataset.moc"
