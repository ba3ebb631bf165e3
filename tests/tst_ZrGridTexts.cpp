// The texts of a grid beside what the map shows.

#include "ZrKit/map/ZrGridTexts.h"
#include "ZrKit/map/ZrMapObstacles.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/map/ZrMarkerLayer.h"
#include "ZrKit/map/ZrTrackLayer.h"
#include "ZrUtil/ZrUnits.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

const QRectF area(0, 0, 600, 400);
const QSizeF size(80, 16);
constexpr double inset = 5.0;

} // namespace

/// A map of 600 by 400 pixels, a metre each, with lines of every 200 m: eastings at x 100, 300 and 500,
/// northings at y 100 and 300.
class tst_ZrGridTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void places();
    void placesWithoutRoom();
    void placesAlongACurve();
    void nothingInTheWay();
    void otherSideOfTheLine();
    void noRoomForOne();
    void nextLineIsLabelled();
    void otherEdge();
    void alongTheLine();
    void overTheLineAtLast();
    void neverOverMarks();
    void besideOneAnother();
    void taken();
    void nothing();

private:
    std::vector<QString> Texts(const std::vector<QRectF>& taken = {});
    QRectF BoxOf(const QString& text) const;
    void AddMark(const QPointF& pixel, double half);
    void AddLine(const std::vector<QPointF>& pixels);

    ZrMapView m_view;
    std::vector<ZrGridTexts::Line> m_lines;
    std::vector<ZrMapMarker> m_marks;
    std::unique_ptr<ZrMarkerLayer> m_markers;
    std::unique_ptr<ZrTrackLayer> m_track;
    std::vector<ZrMapLabel> m_labels;
};

void tst_ZrGridTexts::init()
{
    ZrUnits::SetToMetric();
    m_view = ZrMapView();
    m_view.SetSize(600, 400);
    m_view.SetCentre({400200.0, 5000100.0});
    m_view.SetScale(1.0);
    m_marks.clear();
    m_markers = std::make_unique<ZrMarkerLayer>();
    m_track = std::make_unique<ZrTrackLayer>();
    m_lines.clear();
    for (const ZrGridLines::Line& line : ZrGridLines::Projected(m_view, 150.0)) {
        const auto found = ZrGridLines::Places(line, m_view, area, inset, size);
        if (!found.empty())
            m_lines.push_back({line.isNorthSouth, found});
    }
    QCOMPARE(m_lines.size(), std::size_t(5));
}

void tst_ZrGridTexts::AddMark(const QPointF& pixel, double half)
{
    ZrMapMarker marker;
    marker.position = m_view.ToWorld(pixel);
    marker.size = half;
    m_marks.push_back(marker);
    m_markers->SetMarkers(m_marks);
}

void tst_ZrGridTexts::AddLine(const std::vector<QPointF>& pixels)
{
    for (const QPointF& pixel : pixels) {
        const QPointF at = m_view.ToWorld(pixel);
        m_track->m_track.Append(at.x(), at.y());
    }
}

std::vector<QString> tst_ZrGridTexts::Texts(const std::vector<QRectF>& taken)
{
    ZrMapObstacles obstacles;
    obstacles.m_markers = {m_markers.get()};
    obstacles.m_tracks = {m_track.get()};
    obstacles.Look(m_view, 1.0);
    m_labels = ZrGridTexts::Choose(m_lines, taken, obstacles, 2.0);
    std::vector<QString> texts;
    for (const ZrMapLabel& label : m_labels) {
        texts.push_back(label.text);
        // Whatever was chosen lies on no mark and no other text.
        const QRectF box = BoxOf(label.text);
        if (obstacles.HasMark(box))
            texts.push_back(QStringLiteral("on a mark"));
        for (const ZrMapLabel& other : m_labels) {
            if (other != label && BoxOf(other.text).intersects(box))
                texts.push_back(QStringLiteral("on another"));
        }
    }
    return texts;
}

/// Of the text that was chosen.
QRectF tst_ZrGridTexts::BoxOf(const QString& text) const
{
    for (const ZrMapLabel& label : m_labels) {
        if (label.text != text)
            continue;
        for (const ZrGridTexts::Line& line : m_lines) {
            for (const ZrGridLines::Place& place : line.places) {
                if (place.label == label)
                    return place.box;
            }
        }
    }
    return {};
}

/// The first one is that of `Labels`; of a line from edge to edge there are two at each, and six along it.
void tst_ZrGridTexts::places()
{
    const ZrGridLines::Lines lines = ZrGridLines::Projected(m_view, 150.0);
    const auto labels
        = ZrGridLines::Labels(lines, m_view, area, inset, std::vector<QSizeF>(lines.size(), size));
    QCOMPARE(labels.size(), m_lines.size());
    for (std::size_t i = 0; i < labels.size(); ++i) {
        const auto& found = m_lines[i].places;
        QVERIFY(found.front().label == labels[i]);
        QCOMPARE(found.size(), std::size_t(10));
        for (std::size_t k = 0; k < found.size(); ++k) {
            QCOMPARE(int(found[k].kind),
                int(k < 2       ? ZrGridLines::atEdge
                        : k < 4 ? ZrGridLines::atOtherEdge
                                : ZrGridLines::alongLine));
            QVERIFY(area.contains(found[k].box));
            QCOMPARE(found[k].box.size(), size);
        }
    }
    // Eastings hang from the upper edge, on both sides of their line.
    QCOMPARE(m_lines[0].places[0].box, QRectF(105, 5, 80, 16));
    QCOMPARE(m_lines[0].places[1].box, QRectF(15, 5, 80, 16));
    QCOMPARE(m_lines[0].places[2].box.bottom(), 395.0);
    QCOMPARE(m_lines[0].places[4].box, QRectF(105, 205, 80, 16));
}

/// A place that would leave the area is none, unless it is the first.
void tst_ZrGridTexts::placesWithoutRoom()
{
    const ZrGridLines::Line line{
        true, QStringLiteral("x"), {m_view.ToWorld({50, -10}), m_view.ToWorld({50, 410})}};
    const auto found = ZrGridLines::Places(line, m_view, area, inset, size);
    QCOMPARE(found.size(), std::size_t(5)); // to the right of it alone
    for (const ZrGridLines::Place& place : found)
        QCOMPARE(place.box.left(), 55.0);
    const auto large = ZrGridLines::Places(line, m_view, area, inset, QSizeF(1000, 16));
    QCOMPARE(large.size(), std::size_t(2)); // of each end the first
    QVERIFY(ZrGridLines::Places(line, m_view, QRectF(), inset, size).empty());
    QVERIFY(ZrGridLines::Places(line, ZrMapView(), area, inset, size).empty());
    QVERIFY(ZrGridLines::Places({}, m_view, area, inset, size).empty());
}

/// Parallels far north bow away from the straight way between the edges: the texts are beside the line.
void tst_ZrGridTexts::placesAlongACurve()
{
    ZrProj projection;
    projection.SetupUTM(82.0, 15.0);
    double east = 0.0;
    double north = 0.0;
    ZrUnits::LLToEN(ZrUnits::wgs84, projection, 82.0, 15.0, east, north);
    m_view.SetCentre({east, north});
    m_view.SetScale(900.0);
    double mostBow = 0.0;
    int count = 0;
    for (const ZrGridLines::Line& line :
        ZrGridLines::Geographic(m_view, 60.0, eGeoDeg, ZrUnits::wgs84, projection)) {
        std::vector<QPointF> pixels;
        for (const QPointF& point : line.points)
            pixels.push_back(m_view.ToPixel(point));
        std::vector<QPointF> feet;
        for (const ZrGridLines::Place& place : ZrGridLines::Places(line, m_view, area, inset, size)) {
            if (place.kind != ZrGridLines::alongLine)
                continue;
            const QPointF foot = place.label.position
                - QPointF(place.label.alignX == ZrMapLabel::alignLeft ? inset : -inset,
                    place.label.alignY == ZrMapLabel::alignTop ? inset : -inset);
            double away = 1e9;
            for (std::size_t i = 1; i < pixels.size(); ++i) {
                for (int k = 0; k <= 1000; ++k) {
                    const QPointF off = pixels[i - 1] + (pixels[i] - pixels[i - 1]) * (k / 1000.0) - foot;
                    away = std::min(away, std::hypot(off.x(), off.y()));
                }
            }
            QVERIFY2(away < 0.1, qPrintable(QString::number(away)));
            feet.push_back(foot);
            ++count;
        }
        // Of a parallel that goes from edge to edge: the middle, a quarter, three quarters, each on both
        // sides.
        if (line.isNorthSouth || feet.size() != 6)
            continue;
        QVERIFY(std::fabs(feet[0].x() - 300.0) < 1.0);
        QVERIFY(std::fabs((feet[2].x() + feet[4].x()) / 2.0 - 300.0) < 1.0);
        QVERIFY(std::fabs(feet[2].x() - feet[4].x()) > 280.0);
        mostBow = std::max(mostBow, std::fabs(feet[0].y() - feet[2].y()));
    }
    QVERIFY2(mostBow > 10.0, qPrintable(QString::number(mostBow)));
    QVERIFY(count > 20);
}

void tst_ZrGridTexts::nothingInTheWay()
{
    QCOMPARE(Texts().size(), std::size_t(5));
    for (std::size_t i = 0; i < m_labels.size(); ++i)
        QVERIFY(m_labels[i] == m_lines[i].places.front().label);
}

/// As for a pin that a text would be printed over, and a way that it would cross.
void tst_ZrGridTexts::otherSideOfTheLine()
{
    AddMark({140, 12}, 14.0);
    AddLine({{10, 85}, {200, 88}});
    QCOMPARE(Texts().size(), std::size_t(5));
    QCOMPARE(BoxOf(m_lines[0].places[0].label.text), m_lines[0].places[1].box);
    const std::size_t northing = 4; // at y 100, the higher one of the two
    QCOMPARE(m_lines[northing].places[0].box.bottom(), 95.0);
    QCOMPARE(BoxOf(m_lines[northing].places[0].label.text), m_lines[northing].places[1].box);
    // The others are where they were.
    QCOMPARE(BoxOf(m_lines[1].places[0].label.text), m_lines[1].places[0].box);
}

/// A line whose text has no room on either side goes without; the others stay where they are.
void tst_ZrGridTexts::noRoomForOne()
{
    AddMark({100, 12}, 60.0);
    QCOMPARE(Texts().size(), std::size_t(4));
    QVERIFY(BoxOf(m_lines[0].places[0].label.text).isNull());
    for (std::size_t i = 1; i < 5; ++i)
        QCOMPARE(BoxOf(m_lines[i].places[0].label.text), m_lines[i].places[0].box);
}

/// Of two lines that have room for one text the second one has it where the first cannot.
void tst_ZrGridTexts::nextLineIsLabelled()
{
    const ZrGridTexts::Line first = m_lines[0];
    ZrGridTexts::Line next = m_lines[1];
    for (ZrGridLines::Place& place : next.places)
        place.box.moveLeft(first.places[0].box.left() + 40.0);
    m_lines = {first, next};
    QCOMPARE(Texts(), std::vector<QString>{first.places[0].label.text});
    AddMark({50, 12}, 60.0);
    QCOMPARE(Texts(), std::vector<QString>{next.places[0].label.text});
}

/// Where all of a kind are blocked one of them is at the other end of its line; the other kind stays.
void tst_ZrGridTexts::otherEdge()
{
    for (double y = 60.0; y < 400.0; y += 20.0)
        AddMark({20, y}, 10.0);
    const std::vector<QString> texts = Texts();
    QCOMPARE(texts.size(), std::size_t(4));
    QCOMPARE(BoxOf(texts.back()).right(), 595.0);
}

void tst_ZrGridTexts::alongTheLine()
{
    for (double y = 60.0; y < 400.0; y += 20.0) {
        AddMark({20, y}, 10.0);
        AddMark({580, y}, 10.0);
    }
    const std::vector<QString> texts = Texts();
    QCOMPARE(texts.size(), std::size_t(4));
    QCOMPARE(BoxOf(texts.back()).left(), 305.0);
}

/// A survey of close lines over all of the map: a text is better than none, one of each kind.
void tst_ZrGridTexts::overTheLineAtLast()
{
    for (double y = 0.0; y <= 400.0; y += 10.0)
        AddLine({{0, y}, {600, y}});
    const std::vector<QString> texts = Texts();
    QCOMPARE(texts.size(), std::size_t(2));
    QVERIFY(texts[0].endsWith(QLatin1Char('E')));
    QVERIFY(texts[1].endsWith(QLatin1Char('N')));
}

void tst_ZrGridTexts::neverOverMarks()
{
    AddMark({300, 200}, 400.0);
    QVERIFY(Texts().empty());
}

/// As far apart as labels are: one nearer would be chosen and not be shown.
void tst_ZrGridTexts::besideOneAnother()
{
    ZrGridLines::Place place;
    place.box = QRectF(100, 10, 80, 16);
    const auto besideBy = [&](const QPointF& way) {
        ZrGridLines::Place other = place;
        other.box.translate(way);
        m_lines = {{true, {place}}, {true, {other}}};
        return Texts().size();
    };
    for (const double side : {-1.0, 1.0}) {
        QCOMPARE(besideBy({side * 84.5, 0.0}), std::size_t(2));
        QCOMPARE(besideBy({side * 83.5, 0.0}), std::size_t(1));
        QCOMPARE(besideBy({0.0, side * 18.5}), std::size_t(2));
        QCOMPARE(besideBy({0.0, side * 17.5}), std::size_t(1));
    }
    // From what else there is half of it.
    m_lines = {{true, {place}}};
    QCOMPARE(Texts({QRectF(182.5, 0, 20, 40)}).size(), std::size_t(1));
    QCOMPARE(Texts({QRectF(181.5, 0, 20, 40)}).size(), std::size_t(0));
}

void tst_ZrGridTexts::taken()
{
    // As by the scale bar and the arrow.
    const std::vector<QString> texts = Texts({QRectF(0, 280, 200, 120), QRectF(280, 0, 320, 60)});
    for (const QString& text : texts) {
        QVERIFY(!BoxOf(text).intersects(QRectF(0, 280, 200, 120)));
        QVERIFY(!BoxOf(text).intersects(QRectF(280, 0, 320, 60)));
    }
    QCOMPARE(texts.size(), std::size_t(2)); // the first easting, the upper northing
}

void tst_ZrGridTexts::nothing()
{
    const ZrMapObstacles obstacles;
    QVERIFY(ZrGridTexts::Choose({}, {}, obstacles, 2.0).empty());
    QVERIFY(ZrGridTexts::Choose({ZrGridTexts::Line(), ZrGridTexts::Line()}, {}, obstacles, 2.0).empty());
}

QTEST_GUILESS_MAIN(tst_ZrGridTexts)
#include "tst_ZrGridTexts.moc"
