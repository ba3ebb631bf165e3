// The texts of a grid where a map shows marks and lines.

#include "GlRecorder.h"
#include "GridLayerTest.h"
#include "ZrKit/map/ZrMapObstacles.h"
#include "ZrKit/map/ZrMarkerLayer.h"
#include "ZrKit/map/ZrTrackLayer.h"

class tst_ZrGridLayerData : public GridLayerTest
{
    Q_OBJECT

private Q_SLOTS:

    void initTestCase_data() { AddContexts(); }

    void init() { Begin(); }

    void cleanup() { End(); }

    void textsLeaveData_data();
    void textsLeaveData();
    void allAreShown();
    void comeBack();
    void uploadsOnlyOnChange();
    void followTheTrack();
    void marksOfTheirOwn();

private:
    /// The texts of one kind of lines: of latitudes, or of longitudes.
    int Count(bool isLatitude) const
    {
        const ZrLabelLayer& texts = m_layer->Texts();
        int count = 0;
        for (std::size_t i = 0; i < texts.Labels().size(); ++i) {
            const QString& text = texts.Labels()[i].text;
            const bool isOfGrid = text.size() > 3;
            const bool isLat = text.endsWith(QLatin1Char('N')) || text.endsWith(QLatin1Char('S'));
            count += texts.Shown()[i] && isOfGrid && isLat == isLatitude ? 1 : 0;
        }
        return count;
    }

    /// A way through the first text, as it is without anything in its way.
    void AddWay()
    {
        Paint();
        const QRectF box = m_layer->Texts().Boxes().front();
        for (const QPointF& pixel : {box.topLeft(), box.bottomRight()}) {
            const QPointF at = m_view.ToWorld(pixel);
            m_track.m_track.Append(at.x(), at.y());
        }
    }

    bool IsClear() const
    {
        ZrMapObstacles obstacles;
        obstacles.m_markers = {&m_markers};
        obstacles.m_tracks = {&m_track};
        obstacles.Look(m_view, 1.0);
        const std::vector<QRectF>& boxes = m_layer->Texts().Boxes();
        return std::none_of(boxes.begin(), boxes.end(), [&](const QRectF& box) {
            const bool isOfBarOrArrow = m_layer->ScaleBarRect(m_view).intersects(box)
                || m_layer->NorthArrowRect(m_view).intersects(box);
            return !isOfBarOrArrow && (obstacles.HasMark(box) || obstacles.HasLine(box));
        });
    }

    ZrMarkerLayer m_markers;
    ZrTrackLayer m_track;
};

void tst_ZrGridLayerData::textsLeaveData_data()
{
    QTest::addColumn<double>("rotation");
    QTest::addColumn<int>("style");
    for (const double rotation : {0.0, 30.0, 90.0, 200.0}) {
        for (const eGeoStyle style : {eGeoDMSFrac, eGeoDeg, eGeoUTM})
            QTest::addRow("%g degrees, style %d", rotation, int(style)) << rotation << int(style);
    }
}

/// A way over the middle and pins in a row below the upper edge: wherever the map is moved, the texts lie on
/// neither, and both kinds of lines have some.
void tst_ZrGridLayerData::textsLeaveData()
{
    QFETCH(double, rotation);
    QFETCH(int, style);
    ZrUnits::SetGeoStyle(static_cast<eGeoStyle>(style));
    m_view.SetRotation(rotation);
    m_track.m_track.Clear();
    std::vector<ZrMapMarker> pins;
    for (int i = 0; i < 6; ++i) {
        ZrMapMarker pin;
        pin.position = m_view.ToWorld({60.0 + i * width / 6.0, 30.0});
        pin.size = 14.0;
        pins.push_back(pin);
        const QPointF at = m_view.ToWorld({i * width / 5.0, i % 2 ? height * 0.3 : height * 0.6});
        m_track.m_track.Append(at.x(), at.y());
    }
    m_markers.SetMarkers(pins);
    bool isEver = false;
    for (int i = 0; i < 12; ++i) {
        m_layer->KeepClearOf({}, {});
        Paint();
        isEver = isEver || !IsClear();
        m_layer->KeepClearOf({&m_markers}, {&m_track});
        Paint();
        QVERIFY2(IsClear(), qPrintable(QString::number(i)));
        if (style != eGeoUTM) {
            QVERIFY(Count(true) > 0);
            QVERIFY(Count(false) > 0);
        }
        m_view.Pan({17.0, 11.0});
    }
    QVERIFY(isEver); // without it they would have lain there
}

/// However near to one another the lines are: a line whose text has no room has none.
void tst_ZrGridLayerData::allAreShown()
{
    m_layer->SetSpacing(60.0);
    m_layer->m_hasScaleBar = m_layer->m_hasNorthArrow = false;
    double nearest = width;
    for (int i = 0; i < 120; ++i) {
        m_view.SetScale(0.4 * std::pow(1.01, i));
        Paint();
        const ZrLabelLayer& texts = m_layer->Texts();
        QCOMPARE(texts.Boxes().size(), texts.Labels().size());
        QVERIFY2(std::count(texts.Shown().begin(), texts.Shown().end(), false) == 0,
            qPrintable(QString::number(m_view.Scale())));
        for (const QRectF& a : texts.Boxes()) {
            for (const QRectF& b : texts.Boxes()) {
                if (a.left() < b.left() && a.top() < b.bottom() && b.top() < a.bottom())
                    nearest = std::min(nearest, b.left() - a.right());
            }
        }
    }
    QVERIFY2(nearest < 2.0, qPrintable(QString::number(nearest))); // they came that near
}

void tst_ZrGridLayerData::comeBack()
{
    m_track.m_track.Clear();
    m_markers.SetMarkers({});
    AddWay();
    const std::vector<QRectF> before = m_layer->Texts().Boxes();
    m_layer->KeepClearOf({}, {&m_track});
    Paint();
    QVERIFY(m_layer->Texts().Boxes() != before);
    m_track.m_isVisible = false;
    Paint();
    QCOMPARE(m_layer->Texts().Boxes(), before);
    m_track.m_isVisible = true;
    Paint();
    QVERIFY(m_layer->Texts().Boxes() != before);
    m_track.m_track.Clear();
    Paint();
    QCOMPARE(m_layer->Texts().Boxes(), before);
}

/// A frame of the same costs nothing; nor does a position that is in no text's way.
void tst_ZrGridLayerData::uploadsOnlyOnChange()
{
    m_track.m_track.Clear();
    m_markers.SetMarkers({});
    m_layer->KeepClearOf({&m_markers}, {&m_track});
    AddWay();
    Paint();
    gl::Recorder recorder;
    Paint();
    QCOMPARE(recorder.uploadedBytes, qint64(0));
    m_track.m_track.Append(m_view.Centre().x(), m_view.Centre().y());
    m_track.m_track.Append(m_view.Centre().x() + 1.0, m_view.Centre().y());
    Paint();
    QCOMPARE(recorder.uploadedBytes, qint64(0));
    QVERIFY(IsClear());
    // One that is in the way does.
    AddWay();
    Paint();
    QVERIFY(recorder.uploadedBytes > 0);
    QVERIFY(IsClear());
}

/// A trail grows into a text, which gives way.
void tst_ZrGridLayerData::followTheTrack()
{
    m_track.m_track.Clear();
    m_markers.SetMarkers({});
    m_layer->KeepClearOf({}, {&m_track});
    Paint();
    for (int i = 0; i <= 40; ++i) {
        const QPointF at = m_view.ToWorld({width * i / 40.0, 12.0 + i % 3});
        m_track.m_track.Append(at.x(), at.y());
        Paint();
        QVERIFY2(IsClear(), qPrintable(QString::number(i)));
        QVERIFY(Count(true) > 0 && Count(false) > 0);
    }
}

/// Where the texts are a layer of their own.
void tst_ZrGridLayerData::marksOfTheirOwn()
{
    m_track.m_track.Clear();
    m_markers.SetMarkers({});
    ZrMapLayer& marks = m_layer->Marks();
    Paint();
    marks.Paint(*m_surface, m_view);
    const std::vector<QRectF> before = m_layer->Texts().Boxes();
    QVERIFY(!before.empty());
    ZrMapMarker pin;
    pin.position = m_view.ToWorld(before.front().center());
    pin.size = 14.0;
    m_markers.SetMarkers({pin});
    m_layer->KeepClearOf({&m_markers}, {&m_track});
    Paint();
    marks.Paint(*m_surface, m_view);
    QVERIFY(m_layer->Texts().Boxes() != before);
    QVERIFY(IsClear());
    marks.Release(*m_surface);
}

GL_TEST_MAIN(tst_ZrGridLayerData)
#include "tst_ZrGridLayerData.moc"
