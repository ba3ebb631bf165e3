#include "apps/ZrSurvey/tour/TourExport.h"

#include "ZrKit/planning/ZrRouteFile.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/review/ZrEventList.h"
#include "ZrKit/review/ZrLogScan.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/ui/ZrChoicePanel.h"
#include "ZrKit/ui/ZrTimeBar.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrUtil/ZrWpts.h"
#include "apps/ZrSurvey/ReviewExport.h"
#include "apps/ZrSurvey/ReviewPage.h"
#include "apps/ZrSurvey/SurveyView.h"
#include "apps/ZrSurvey/tour/Tour.h"
#include "apps/ZrSurvey/tour/TourChanging.h"
#include "apps/ZrSurvey/tour/TourStations.h"

#include <QDateTime>
#include <QFile>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>

namespace {

constexpr double metresPerDegree = 111195.0; ///< of latitude, on the mean sphere
constexpr double near
    = 1e-4; ///< degrees, about 10 m: positions are smoothed on the screen, and recorded as they came

/// Commas of a quoted field do not part fields; no field of these tables spans lines.
QStringList Fields(const QString& line)
{
    QStringList fields(QString{});
    bool isQuoted = false;
    for (const QChar c : line) {
        if (c == QLatin1Char('"'))
            isQuoted = !isQuoted;
        else if (c == QLatin1Char(',') && !isQuoted)
            fields.append(QString());
        else
            fields.last() += c;
    }
    return fields;
}

QVector<QStringList> Table(const QByteArray& text)
{
    QVector<QStringList> rows;
    const QStringList lines = QString::fromUtf8(text).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
    for (const QString& line : lines)
        rows.append(Fields(line));
    return rows;
}

QVector<QPointF> FromGpx(const QString& path)
{
    QVector<QPointF> track;
    ZrRouteFile file;
    ZrWpts route;
    if (!file.Read(path, route))
        return track;
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        const ZrWpt* wpt = route.GetNext(pos);
        track.append({wpt->lng, wpt->lat});
    }
    return track;
}

QVector<QPointF> FromGeoJson(const QByteArray& text)
{
    QVector<QPointF> track;
    const QJsonArray features
        = QJsonDocument::fromJson(text).object().value(QLatin1String("features")).toArray();
    for (const QJsonValue& feature : features) {
        const QJsonObject geometry = feature.toObject().value(QLatin1String("geometry")).toObject();
        if (geometry.value(QLatin1String("type")).toString() != QLatin1String("LineString"))
            continue;
        const QJsonArray points = geometry.value(QLatin1String("coordinates")).toArray();
        for (const QJsonValue& point : points)
            track.append({point.toArray().at(0).toDouble(), point.toArray().at(1).toDouble()});
    }
    return track;
}

QVector<QPointF> FromCsv(const QByteArray& text)
{
    QVector<QPointF> track;
    const QVector<QStringList> rows = Table(text);
    for (const QStringList& row : rows) {
        if (row.value(0) == QLatin1String("track"))
            track.append({row.value(4).toDouble(), row.value(3).toDouble()});
    }
    return track;
}

/// Those of the lines; empty unless the whole file is well-formed.
QVector<QPointF> FromKml(const QByteArray& text)
{
    QVector<QPointF> track;
    QXmlStreamReader xml(text);
    bool isLine = false;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == QLatin1String("LineString"))
            isLine = true;
        else if (xml.isEndElement() && xml.name() == QLatin1String("LineString"))
            isLine = false;
        const bool isCoord = xml.isStartElement() && xml.name() == QLatin1String("coord");
        if (!isCoord && !(isLine && xml.isStartElement() && xml.name() == QLatin1String("coordinates")))
            continue;
        const QStringList points = isCoord ? QStringList(xml.readElementText())
                                           : xml.readElementText().simplified().split(QLatin1Char(' '));
        for (const QString& point : points) {
            const QStringList numbers = point.split(QLatin1Char(isCoord ? ' ' : ','));
            track.append({numbers.value(0).toDouble(), numbers.value(1).toDouble()});
        }
    }
    return xml.hasError() ? QVector<QPointF>() : track;
}

/// The recording of the simulator that the page "Review" shows.
struct RecordingTour
{
    explicit RecordingTour(Tour& of)
        : tour(of)
        , hand(of.Hand())
        , page(of.Page<ReviewPage>("Review"))
        , files(of)
    {
    }

    ZrSurveyRecording& Recording() const { return *page.Recording(); }

    double Begin() const { return std::min(page.Bar().RangeA(), page.Bar().RangeB()); }

    double End() const { return std::max(page.Bar().RangeA(), page.Bar().RangeB()); }

    void Act(int act) const { hand.Press(QStringLiteral("act%1").arg(act)); }

    /// Of the box around the way between A and B: its first corner and its size, degrees.
    QRectF Box() const
    {
        double west = 180.0;
        double east = -180.0;
        double south = 90.0;
        double north = -90.0;
        constexpr int steps = 1000;
        for (int i = 0; i <= steps; ++i) {
            const ZrGeoPoint at = Recording().PositionAt(Begin() + (End() - Begin()) * i / steps);
            west = std::min(west, at.lng);
            east = std::max(east, at.lng);
            south = std::min(south, at.lat);
            north = std::max(north, at.lat);
        }
        return QRectF(QPointF(west, south), QPointF(east, north));
    }

    /// How many items of the kind are in the log between the two times of the log.
    double Count(const QString& path, u16 type, double from, double to) const
    {
        ZrLogScan scan;
        ZrLogItem item;
        u64 pos = 0;
        double count = 0.0;
        tour.Expect(scan.Open(path), QStringLiteral("%1 is a log").arg(path), scan.Error());
        while (scan.Next(item, pos))
            count += item.type == type && item.time >= from && item.time <= to ? 1.0 : 0.0;
        tour.Expect(scan.State() == ZrLogScan::AtEnd, QStringLiteral("%1 is sound").arg(path), scan.Error());
        return count;
    }

    Tour& tour;
    TourHand& hand;
    ReviewPage& page;
    TourExport files;
};

/// From A to B all that was recorded, and nothing else but the state that goes before.
void check_part(RecordingTour& at)
{
    const QString name = QStringLiteral("recording-part.log");
    at.files.Write(QStringLiteral("Part of the log"), name);
    const QString part = at.files.Path(name);
    const double from = at.Recording().Times()->LogTime(at.Begin());
    const double to = at.Recording().Times()->LogTime(at.End());
    for (const u16 type : {u16(krtNavigation), u16(krtPing), u16(krtFix), u16(krtDepth)}) {
        const double whole = at.Count(at.Recording().Path(), type, from, to);
        at.tour.ExpectWithin(whole, 5.0, 1e6, QStringLiteral("records %1 from A to B").arg(type));
        at.tour.ExpectWithin(at.Count(part, type, from, to), whole - 1.0, whole + 1.0,
            QStringLiteral("records %1 of the part").arg(type));
        at.tour.ExpectWithin(at.Count(part, type, -1e300, from - 1.0) + at.Count(part, type, to + 1.0, 1e300),
            0.0, 3.0, QStringLiteral("records %1 before and behind the part").arg(type));
    }
}

void check_tracks(RecordingTour& at)
{
    const QRectF box = at.Box().adjusted(-near, -near, near, near);
    const ZrGeoPoint first = at.Recording().PositionAt(at.Begin());
    const ZrGeoPoint last = at.Recording().PositionAt(at.End());
    int points = -1;
    for (const char* suffix : {"gpx", "kml", "geojson", "csv"}) {
        const QString name = QStringLiteral("recording.") + QLatin1String(suffix);
        at.files.Write(QStringLiteral("Track"), name);
        const QVector<QPointF> track = at.files.Track(name);
        at.tour.ExpectWithin(track.size(), 100, 1e6, QStringLiteral("points of %1").arg(name));
        if (track.isEmpty())
            continue;
        points = points < 0 ? track.size() : points;
        at.tour.Expect(static_cast<qint64>(track.size()), points, QStringLiteral("points of %1").arg(name));
        const auto inside = std::count_if(
            track.begin(), track.end(), [&box](const QPointF& point) { return box.contains(point); });
        at.tour.Expect(static_cast<qint64>(inside), track.size(),
            QStringLiteral("points of %1 where the survey was").arg(name));
        const auto apart = [](const QPointF& point, const ZrGeoPoint& place) {
            return std::hypot(point.x() - place.lng, point.y() - place.lat);
        };
        at.tour.ExpectWithin(
            apart(track.front(), first), 0.0, near, QStringLiteral("degrees from the start of %1").arg(name));
        at.tour.ExpectWithin(
            apart(track.back(), last), 0.0, near, QStringLiteral("degrees from the end of %1").arg(name));
    }
}

void check_tables(RecordingTour& at)
{
    const double from = at.Recording().Times()->LogTime(at.Begin());
    const double to = at.Recording().Times()->LogTime(at.End());
    const auto times_are_right = [&](const QVector<QStringList>& rows, const QString& name) {
        for (int i = 1; i < rows.size(); ++i) {
            const auto time = QDateTime::fromString(rows[i].value(0), Qt::ISODateWithMs);
            const double seconds = static_cast<double>(time.toMSecsSinceEpoch()) / 1000.0;
            if (time.isValid() && seconds >= from - 0.01 && seconds <= to + 0.01)
                continue;
            at.tour.Expect(
                false, QStringLiteral("times of %1 within the recording").arg(name), rows[i].value(0));
            return;
        }
    };
    const QString records = QStringLiteral("recording-records.csv");
    at.files.Write(QStringLiteral("Records"), records);
    const QVector<QStringList> lines = Table(at.files.Read(records));
    at.tour.Expect(static_cast<qint64>(lines.size()),
        static_cast<qint64>(at.Recording().Series().Count()) + 1, QStringLiteral("lines of %1").arg(records));
    times_are_right(lines, records);

    const QString events = QStringLiteral("recording-events.csv");
    at.files.Write(QStringLiteral("Events"), events);
    const QVector<QStringList> rows = Table(at.files.Read(events));
    times_are_right(rows, events);
    QStringList told;
    for (int i = 1; i < rows.size(); ++i)
        told.append(rows[i].value(4));
    QStringList wanted;
    for (std::size_t i = 0; i < at.Recording().Events().Count(); ++i)
        wanted.append(at.Recording().Events().At(i).text);
    at.tour.Expect(told == wanted && wanted.size() >= 3, wanted.join(QStringLiteral(", ")),
        told.join(QStringLiteral(", ")));
}

/// From A to B. The mosaic holds the way and no more than the sonar reaches beside it.
void check_pictures(RecordingTour& at)
{
    at.files.Write(QStringLiteral("Waterfall picture"), QStringLiteral("recording-waterfall.png"));
    at.files.ExpectPicture(QStringLiteral("recording-waterfall.png"), 200);
    at.files.Write(QStringLiteral("Mosaic"), QStringLiteral("recording-mosaic.png"));
    at.files.ExpectPicture(QStringLiteral("recording-mosaic.png"), 50);
    const QImage image(at.files.Path(QStringLiteral("recording-mosaic.png")));
    const QString world
        = QString::fromLatin1(at.files.Read(QStringLiteral("recording-mosaic.pgw"))).simplified();
    const QStringList numbers = world.split(QLatin1Char(' '));
    at.tour.Expect(numbers.size(), 6, QStringLiteral("numbers of recording-mosaic.pgw"));
    const QRectF box = at.Box();
    const double wide = box.width() * metresPerDegree * std::cos(box.center().y() * M_PI / 180.0);
    const double high = box.height() * metresPerDegree;
    constexpr double reach = 400.0; // metres, to both sides
    at.tour.ExpectWithin(image.width() * numbers.value(0).toDouble(), wide, wide + reach,
        QStringLiteral("width of the mosaic, metres"));
    at.tour.ExpectWithin(image.height() * -numbers.value(3).toDouble(), high, high + reach,
        QStringLiteral("height of the mosaic, metres"));
    at.tour.ExpectFile(at.files.Path(QStringLiteral("recording-mosaic.prj")), 100);
}

} // namespace

QString TourExport::Path(const QString& name) const
{
    return m_tour.Exports() + QLatin1Char('/') + name;
}

void TourExport::Write(const QString& kind, const QString& name) const
{
    TourHand& hand = m_tour.Hand();
    const ReviewExport& exports = m_tour.Page<ReviewPage>("Review").Export();
    hand.Press(QStringLiteral("export"));
    auto& choice = hand.FindAny<ZrChoicePanel>();
    hand.ChooseRow(hand.FindAny<ZrTouchList>(&choice), kind);
    hand.SaveAs(m_tour.Exports(), name);
    hand.Await(
        QStringLiteral("%1 is written").arg(name), [&exports] { return !exports.IsWorking(); }, 60000);
    m_tour.ExpectToast(name + QStringLiteral(" was written"));
    m_tour.ExpectFile(Path(name), 100);
}

QByteArray TourExport::Read(const QString& name) const
{
    QFile file(Path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QVector<QPointF> TourExport::Track(const QString& name) const
{
    if (name.endsWith(QLatin1String(".gpx")))
        return FromGpx(Path(name));
    const QByteArray text = Read(name);
    if (name.endsWith(QLatin1String(".geojson")))
        return FromGeoJson(text);
    return name.endsWith(QLatin1String(".kml")) ? FromKml(text) : FromCsv(text);
}

void TourExport::ExpectPicture(const QString& name, int leastWidth) const
{
    QImageReader reader(Path(name));
    const QImage image = reader.read();
    m_tour.Expect(image.width() >= leastWidth && image.height() >= 50,
        QStringLiteral("%1 is a picture").arg(name),
        image.isNull() ? reader.errorString()
                       : QStringLiteral("%1 x %2").arg(image.width()).arg(image.height()));
    int least = 255;
    int most = 0;
    for (int y = 0; y < image.height(); y += 7) {
        for (int x = 0; x < image.width(); x += 7) {
            least = std::min(least, qGray(image.pixel(x, y)));
            most = std::max(most, qGray(image.pixel(x, y)));
        }
    }
    m_tour.ExpectWithin(most - least, 100, 255, QStringLiteral("contrast of %1").arg(name));
}

void tour::recording_exports(Tour& tour)
{
    tour.Station(QStringLiteral("recording-part"), [&] {
        RecordingTour at(tour);
        at.hand.HideToast();
        tour.ExpectWithin(at.End() - at.Begin(), 20.0, 22.0, QStringLiteral("seconds from A to B"));
        check_part(at);
        check_pictures(at);
        at.hand.HideToast();
        recorded_changes(tour);
    });
    tour.Station(QStringLiteral("recording-exports"), [&] {
        RecordingTour at(tour);
        at.hand.Key(Qt::Key_Home);
        at.Act(ReviewTransport::setA);
        at.hand.Key(Qt::Key_End);
        at.Act(ReviewTransport::setB);
        tour.ExpectWithin(at.Begin(), at.Recording().Times()->Begin(), at.Recording().Times()->Begin(),
            QStringLiteral("A at the start"));
        tour.ExpectWithin(at.End(), at.Recording().Times()->End(), at.Recording().Times()->End(),
            QStringLiteral("B at the end"));
        check_tracks(at);
        check_tables(at);
        at.hand.HideToast();
        recorded_changes(tour);
    });
}
