#include "examples/gl_map/MapPage.h"

#include "ZrUtil/ZrAppView.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"

#include <QKeyEvent>
#include <QPainter>
#include <QTimer>
#include <QtMath>

#include <algorithm>
#include <cmath>

namespace {

constexpr int stepMs = 50; ///< of a vehicle that runs along the track

ZrMapMarker MarkerAt(const QPointF& position, int image, const QColor& colour)
{
    ZrMapMarker marker;
    marker.position = position;
    marker.image = image;
    marker.colour = colour;
    return marker;
}

ZrMapLabel LabelAt(const QPointF& position, const QString& text)
{
    ZrMapLabel label;
    label.position = position;
    label.text = text;
    label.offset = QPointF(16, 0);
    label.alignY = ZrMapLabel::alignMiddle;
    return label;
}

} // namespace

MapPage::MapPage(ZrAppView* view, const Track& track, int wanderCount)
    : ZrPage(view)
    , m_recorded(track)
    , m_vehicle(m_map.m_camera)
    , m_run(new QTimer(this))
    , m_panel(new ZrMapPanel(this, m_map))
{
    m_hasBackground = false;
    setFocusProxy(m_panel);
    // The map paints all of itself; the surface wants a picture that exists.
    m_map.m_background = QStringLiteral(":/back_light.png");
    m_map.m_layers = {&m_grid, &m_wander, &m_track, &m_markers, &m_labels, &m_grid.Marks()};
    m_grid.SetProjection(ZrUnits::wgs84, track.grid.Projection());

    const QPointF first = track.positions.front();
    const QPointF last = track.positions.back();
    m_track.m_track.Append(track.positions);
    m_track.m_casing = QColor(0, 0, 0, 160);
    m_trackBounds = m_track.m_track.Bounds();
    m_wander.m_track.Append(Wander(m_trackBounds.bottomRight() + QPointF(200, 0), wanderCount));
    m_wander.m_colour = ZrTheme::posB;
    m_wander.m_width = 1.5F;

    constexpr int circle = 3;
    m_markers.SetMarkers(
        {MarkerAt(first, circle, ZrTheme::goodCol), MarkerAt(last, circle, ZrTheme::errorCol)});
    m_markers.m_halo = QColor(0, 0, 0, 200);
    m_labels.SetLabels({LabelAt(first, tr("Start")), LabelAt(last, tr("End"))});
    m_labels.SetDeclutter(true);

    AddButton(QStringLiteral("zoom_in"), tr("Nearer (+)"), &MapPage::ZoomIn);
    AddButton(QStringLiteral("zoom_out"), tr("Farther (-)"), &MapPage::ZoomOut);
    AddButton(QStringLiteral("north"), tr("North up (N)"), &MapPage::TurnNorthUp);
    AddButton(QStringLiteral("target"), tr("The recording (R)"), &MapPage::ShowRecording);
    AddButton(QStringLiteral("fit"), tr("Both tracks (A)"), &MapPage::ShowAll);
    AddButton(QStringLiteral("info"), tr("Statistics of the frames (S)"), &MapPage::ToggleStatistics);

    connect(m_panel, &ZrMapPanel::Changed, view, [view] { view->update(); });
    connect(m_run, &QTimer::timeout, this, &MapPage::Step);
    connect(m_panel, &ZrMapPanel::CameraMoved, this, [this] {
        m_fitted = 0;
        m_vehicle.m_isFollowing = m_vehicle.IsCentred();
    });
    connect(m_panel, &ZrMapPanel::DoubleTapped, this, [this](const QPointF& /*world*/, const QPointF& pixel) {
        m_map.m_camera.ZoomAbout(pixel, 2.0);
        m_panel->Moved();
    });
    connect(m_panel, &ZrMapPanel::Tapped, this, [this](const QPointF& /*world*/, const QPointF& pixel) {
        if (m_grid.NorthArrowRect(m_map.m_camera).contains(pixel))
            TurnNorthUp();
    });
}

ZrBtn* MapPage::AddButton(const QString& icon, const QString& hint, void (MapPage::*action)())
{
    auto* button = new ZrBtn(this, ZrBtn::typeStd);
    button->img = QImage(QStringLiteral(":/icons/%1.png").arg(icon));
    button->setToolTip(hint);
    button->setAccessibleName(hint);
    connect(button, &ZrBtn::Clicked, this, action);
    m_buttons.append(button);
    return button;
}

void MapPage::ZoomIn()
{
    m_map.m_camera.ZoomAbout({m_map.m_camera.Width() / 2.0, m_map.m_camera.Height() / 2.0}, 1.5);
    m_panel->Moved();
}

void MapPage::ZoomOut()
{
    m_map.m_camera.ZoomAbout({m_map.m_camera.Width() / 2.0, m_map.m_camera.Height() / 2.0}, 1.0 / 1.5);
    m_panel->Moved();
}

void MapPage::TurnNorthUp()
{
    m_map.m_camera.SetRotation(0.0);
    m_panel->Moved();
}

void MapPage::Fit(const QRectF& world, float margin, int fitted)
{
    m_map.m_camera.Fit(world, ZrTheme::DpI(margin));
    m_panel->Moved();
    m_fitted = fitted;
}

void MapPage::ShowRecording()
{
    Fit(m_trackBounds, 100, 1);
}

void MapPage::ShowAll()
{
    Fit(m_trackBounds | m_wander.m_track.Bounds(), 60, 2);
}

void MapPage::ToggleStatistics()
{
    SetStatistics(!m_hasStatistics);
}

/// The vehicle sets out, or is taken off the map. The camera follows until the map is moved by hand.
void MapPage::ToggleRun()
{
    if (m_run->isActive()) {
        m_run->stop();
        m_vehicle.Clear();
    } else {
        m_map.m_layers = {&m_grid, &m_wander, &m_track, &m_vehicle.m_trail, &m_markers, &m_labels,
            &m_vehicle.m_vehicle, &m_grid.Marks()};
        m_vehicle.m_isFollowing = true;
        m_next = 0;
        m_run->start(stepMs);
    }
    m_panel->Moved();
}

/// To the next position, with what a vehicle itself would tell: latitude, longitude, heading.
void MapPage::Step()
{
    const std::vector<QPointF>& way = m_recorded.positions;
    if (m_next + 1 >= way.size()) {
        m_run->stop();
        return;
    }
    const QPointF at = way[m_next];
    const QPointF ahead = way[++m_next] - at;
    const double east = at.x();
    const double north = at.y();
    double lat = 0.0;
    double lng = 0.0;
    m_recorded.grid.ToLatLng({&east, 1}, {&north, 1}, {&lat, 1}, {&lng, 1});
    const double heading = qRadiansToDegrees(std::atan2(ahead.x(), ahead.y()))
        + ZrUnits::Convergence(ZrUnits::wgs84, m_recorded.grid.Projection(), lat, lng);
    m_vehicle.Append({{lng, lat}});
    m_vehicle.SetVehicle(lat, lng, heading, true);
    Q_EMIT m_panel->Changed();
}

void MapPage::SetStatistics(bool isOn)
{
    m_hasStatistics = isOn;
    m_frames = 0;
    m_seconds = 0.0;
    m_longest = 0.0;
    update();
}

QString MapPage::Statistics() const
{
    const int vertices = m_wander.Picture().VertexCount() + m_track.Picture().VertexCount();
    const QString counted = m_frames == 1 ? tr("%1 frame, mean %2 ms, longest %3 ms")
                                          : tr("%1 frames, mean %2 ms, longest %3 ms");
    const QString frames = m_frames == 0
        ? tr("no frame yet")
        : counted.arg(m_frames).arg(m_seconds / m_frames * 1e3, 0, 'f', 2).arg(m_longest * 1e3, 0, 'f', 2);
    return tr("%1; %2 vertices of %3 positions")
        .arg(frames)
        .arg(vertices)
        .arg(m_wander.m_track.Count() + m_track.m_track.Count());
}

void MapPage::zr_initializeGL()
{
    m_map.OnCreate();
}

void MapPage::zr_paintGL()
{
    QElapsedTimer timer;
    timer.start();
    m_map.Render();
    if (!m_hasStatistics)
        return;
    // Without it the time would be that of asking, not that of drawing.
    m_map.m_gl.glFinish();
    const double seconds = static_cast<double>(timer.nsecsElapsed()) * 1e-9;
    ++m_frames;
    m_seconds += seconds;
    m_longest = std::max(m_longest, seconds);
    update();
}

void MapPage::resizeEvent(QResizeEvent* event)
{
    ZrPage::resizeEvent(event);
    m_panel->setGeometry(rect());
    const int side = std::max(ZrTheme::DpI(64), 44);
    const int gap = ZrTheme::DpI(8);
    int y = (height() - m_buttons.size() * (side + gap) + gap) / 2;
    for (ZrBtn* button : qAsConst(m_buttons)) {
        button->setGeometry(width() - side - 2 * gap, y, side, side);
        y += side + gap;
    }
    m_grid.SetMargins(QMarginsF(gap, gap, side + 3 * gap, gap) * devicePixelRatioF());
    // A widget that was not shown yet learns its size later.
    m_panel->Match();
    if (m_fitted == 1)
        ShowRecording();
    else if (m_fitted == 2)
        ShowAll();
}

void MapPage::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    // The view's button in the corner has no ground of its own, and a map is not one.
    const int side = std::max(ZrTheme::DpI(48), 44);
    const int edge = ZrTheme::DpI(16);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(ZrTheme::formBdr, 1.5));
    painter.setBrush(ZrTheme::toolBack);
    painter.drawRoundedRect(QRectF(width() - side - edge, edge, side, side), edge / 4.0, edge / 4.0);
    if (!m_hasStatistics)
        return;
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setFont(ZrTheme::font);
    const QString text = Statistics();
    const int gap = ZrTheme::DpI(12);
    const QRect box = painter.fontMetrics().boundingRect(text).adjusted(-gap, -gap, gap, gap);
    const QRect at((width() - box.width()) / 2, height() - box.height() - gap, box.width(), box.height());
    painter.fillRect(at, ZrTheme::toolBack);
    painter.setPen(ZrTheme::ctrlCol);
    painter.drawText(at, Qt::AlignCenter, text);
}

void MapPage::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_R:
        ShowRecording();
        break;
    case Qt::Key_A:
        ShowAll();
        break;
    case Qt::Key_V:
        ToggleRun();
        break;
    case Qt::Key_S:
        ToggleStatistics();
        break;
    default:
        ZrPage::keyPressEvent(event);
        break;
    }
}
