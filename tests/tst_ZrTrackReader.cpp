// Points of a track read piece by piece: back and forth, sources that fail, segments across the pieces.

#include "ZrKit/export/ZrTrackData.h"
#include "ZrKit/export/ZrTrackExport.h"
#include "ZrKit/export/ZrTrackPointSource.h"
#include "ZrKit/export/ZrTrackReader.h"
#include "ZrKit/export/ZrTrackSegments.h"

#include <QBuffer>
#include <QtTest/QtTest>

#include <cmath>
#include <limits>

namespace {

using Track = std::vector<ZrTrackPoint>;
using Indices = std::vector<std::size_t>;

constexpr std::size_t atOnce = 4096; ///< points of a piece

/// Points a second apart.
Track Points(std::size_t count)
{
    Track track(count);
    for (std::size_t i = 0; i < count; ++i) {
        track[i].time = static_cast<double>(i);
        track[i].latitude = 44.0 + static_cast<double>(i) * 1e-5;
        track[i].longitude = 8.0;
    }
    return track;
}

/// Remembers what it was asked for; from read \p badFrom on it fails or gives too few or too many points.
class Source final : public ZrTrackPointSource
{
public:
    explicit Source(const Track& track)
        : m_track(track)
    {
    }

    std::size_t Count() const override { return m_track.size(); }

    bool Read(std::size_t first, std::size_t end, Track& points) override
    {
        asked.emplace_back(first, end);
        const auto at = [this](std::size_t i) { return m_track.begin() + static_cast<std::ptrdiff_t>(i); };
        points.assign(at(first), at(end));
        if (asked.size() < badFrom)
            return true;
        if (surplus < 0)
            points.pop_back();
        else if (surplus > 0)
            points.push_back(points.back());
        return surplus != 0;
    }

    std::vector<std::pair<std::size_t, std::size_t>> asked;
    std::size_t badFrom = std::numeric_limits<std::size_t>::max();
    int surplus = 0;

private:
    const Track& m_track;
};

ZrTrackData DataOf(ZrTrackPointSource& source)
{
    ZrTrackData data;
    data.source = &source;
    return data;
}

/// First and end of each segment.
Indices Ends(ZrTrackSegments& segments)
{
    Indices ends;
    while (segments.Next()) {
        ends.push_back(segments.First());
        ends.push_back(segments.End());
    }
    return ends;
}

} // namespace

class tst_ZrTrackReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void inMemory();
    void pieceByPiece();
    void backToTheFirstPiece();
    void failures_data();
    void failures();
    void emptySource();
    void segmentsAtBorders_data();
    void segmentsAtBorders();
    void segmentsThatCannotBeRead();
    void exportsEndAtAFailure_data();
    void exportsEndAtAFailure();
};

void tst_ZrTrackReader::inMemory()
{
    const Track track = Points(3);
    ZrTrackReader points{zr::span<const ZrTrackPoint>(track)};
    QCOMPARE(points.Count(), std::size_t(3));
    for (const std::size_t i : {2, 0, 1})
        QCOMPARE(points.At(i).time, track[i].time);
    QVERIFY(!points.IsFailed());
}

void tst_ZrTrackReader::pieceByPiece()
{
    const Track track = Points(2 * atOnce + 1);
    Source source(track);
    ZrTrackReader points(DataOf(source));
    QCOMPARE(points.Count(), track.size());
    QVERIFY(source.asked.empty());
    for (std::size_t i = 0; i < points.Count(); ++i)
        QCOMPARE(points.At(i).time, track[i].time);
    QVERIFY(!points.IsFailed());
    QCOMPARE(source.asked.size(), std::size_t(3));
    QVERIFY(source.asked[0] == std::pair(std::size_t(0), atOnce));
    QVERIFY(source.asked[1] == std::pair(atOnce, 2 * atOnce));
    QVERIFY(source.asked[2] == std::pair(2 * atOnce, 2 * atOnce + 1));
}

void tst_ZrTrackReader::backToTheFirstPiece()
{
    const Track track = Points(2 * atOnce);
    Source source(track);
    ZrTrackReader points(DataOf(source));
    for (const std::size_t i :
        {std::size_t(0), atOnce - 1, atOnce, atOnce + 1, std::size_t(0), std::size_t(5), atOnce, atOnce - 1})
        QCOMPARE(points.At(i).time, track[i].time);
    QVERIFY(!points.IsFailed());
    QCOMPARE(source.asked.size(), std::size_t(5));
    QVERIFY(source.asked[2] == std::pair(std::size_t(0), atOnce));
    QVERIFY(source.asked[4] == std::pair(atOnce - 1, 2 * atOnce - 1));
}

void tst_ZrTrackReader::failures_data()
{
    QTest::addColumn<int>("surplus");
    QTest::newRow("false") << 0;
    QTest::newRow("too few") << -1;
    QTest::newRow("too many") << 1;
}

/// Nothing is left of the track, the points already read included, and the source is not asked again.
void tst_ZrTrackReader::failures()
{
    QFETCH(int, surplus);
    const Track track = Points(3 * atOnce);
    Source source(track);
    source.badFrom = 2;
    source.surplus = surplus;
    ZrTrackReader points(DataOf(source));
    QCOMPARE(points.At(7).time, 7.0);
    QVERIFY(!points.IsFailed());
    QVERIFY(!points.At(7 + atOnce).HasPosition());
    QVERIFY(points.IsFailed());
    QCOMPARE(points.Count(), std::size_t(0));
    source.badFrom = std::numeric_limits<std::size_t>::max();
    QVERIFY(std::isnan(points.At(7).time));
    QVERIFY(std::isnan(points.At(7 + atOnce).time));
    QVERIFY(points.IsFailed());
    QCOMPARE(points.Count(), std::size_t(0));
    QCOMPARE(source.asked.size(), std::size_t(2));
}

void tst_ZrTrackReader::emptySource()
{
    const Track track;
    Source source(track);
    ZrTrackReader points(DataOf(source));
    QCOMPARE(points.Count(), std::size_t(0));
    QVERIFY(!points.IsFailed());
    ZrTrackSegments segments(DataOf(source));
    QVERIFY(!segments.Next());
    QVERIFY(!segments.IsFailed());
    QVERIFY(source.asked.empty());
}

void tst_ZrTrackReader::segmentsAtBorders_data()
{
    QTest::addColumn<bool>("isGap");
    QTest::addColumn<int>("offset");
    for (const int offset : {-1, 0, 1}) {
        QTest::newRow(qPrintable(QStringLiteral("gap %1").arg(offset))) << true << offset;
        QTest::newRow(qPrintable(QStringLiteral("no position %1").arg(offset))) << false << offset;
    }
}

/// In front of, at and behind the border of two pieces.
void tst_ZrTrackReader::segmentsAtBorders()
{
    QFETCH(bool, isGap);
    QFETCH(int, offset);
    const std::size_t at = atOnce + static_cast<std::size_t>(offset + 1) - 1;
    const std::size_t count = 2 * atOnce + 10;
    Track track = Points(count);
    if (isGap) {
        for (std::size_t i = at; i < count; ++i)
            track[i].time += 100.0;
    } else {
        track[at].latitude = std::nan("");
    }
    Source source(track);
    ZrTrackData data = DataOf(source);
    data.maxGap = 60.0;
    ZrTrackSegments segments(data);
    QVERIFY(Ends(segments) == (Indices{0, at, isGap ? at : at + 1, count}));
    QVERIFY(!segments.IsFailed());
    ZrTrackSegments whole(track, 60.0);
    QVERIFY(Ends(whole) == (Indices{0, at, isGap ? at : at + 1, count}));
}

void tst_ZrTrackReader::segmentsThatCannotBeRead()
{
    Track track = Points(2 * atOnce);
    track[100].latitude = std::nan("");
    Source source(track);
    source.badFrom = 2;
    ZrTrackSegments segments(DataOf(source));
    QVERIFY(segments.Next());
    QCOMPARE(segments.End(), std::size_t(100));
    QVERIFY(!segments.Next()); // it would reach into the second piece
    QVERIFY(segments.IsFailed());
    QVERIFY(!segments.Next());
}

void tst_ZrTrackReader::exportsEndAtAFailure_data()
{
    QTest::addColumn<int>("format");
    QTest::newRow("GPX") << int(ZrTrackExport::Gpx);
    QTest::newRow("KML") << int(ZrTrackExport::Kml);
    QTest::newRow("GeoJSON") << int(ZrTrackExport::GeoJson);
    QTest::newRow("CSV") << int(ZrTrackExport::Csv);
}

/// The rest of a segment, whose points are not known, is not written.
void tst_ZrTrackReader::exportsEndAtAFailure()
{
    QFETCH(int, format);
    const Track track = Points(5 * atOnce);
    Source good(track);
    QBuffer whole;
    QVERIFY(whole.open(QIODevice::WriteOnly));
    QVERIFY(ZrTrackExport::WriteTo(whole, static_cast<ZrTrackExport::eFormat>(format), DataOf(good)));
    Source source(track);
    source.badFrom = 7; // the segments take five reads, then the points of the first piece come again
    QBuffer out;
    QVERIFY(out.open(QIODevice::WriteOnly));
    QVERIFY(!ZrTrackExport::WriteTo(out, static_cast<ZrTrackExport::eFormat>(format), DataOf(source)));
    QCOMPARE(source.asked.size(), std::size_t(7));
    QVERIFY2(out.size() < whole.size() / 4, qPrintable(QString::number(out.size())));
    QVERIFY(out.data().count('\n') <= whole.data().count('\n') / 4 + 20);
}

QTEST_GUILESS_MAIN(tst_ZrTrackReader)
#include "tst_ZrTrackReader.moc"
