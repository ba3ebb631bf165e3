#include "ZrKit/map/ZrWaterfallPanel.h"

#include "ZrKit/map/ZrWaterfallLoader.h"
#include "ZrKit/map/ZrWaterfallWindow.h"
#include "ZrUtil/ZrTheme.h"

#include <QMouseEvent>
#include <QPainter>
#include <QTouchEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int ringLines = 3072;
constexpr int ringWidth = 2048; ///< samples
constexpr double tapDistance = 10.0; ///< design pixels
constexpr double zoomStep = 1.25; ///< for each notch of the wheel
constexpr double notch = 120.0; ///< eighths of a degree
constexpr int mostRounds = 6;

} // namespace

ZrWaterfallPanel::ZrWaterfallPanel(QWidget* parent)
    : ZrSfHolder(parent)
    , m_ring(ringLines, ringWidth, ZrWaterfallRing::reduceMax)
{
    setAttribute(Qt::WA_AcceptTouchEvents);
    setFocusPolicy(Qt::ClickFocus);
    setAccessibleName(tr("Side-scan waterfall"));
    m_view.speedCorrected = true;
    m_layer.SetRing(&m_ring);
    m_surface.m_layers = {&m_layer};
    m_surface.m_water = QColor(20, 26, 32);
    SetSurface(&m_surface);
}

ZrWaterfallPanel::~ZrWaterfallPanel() = default;

void ZrWaterfallPanel::SetLoader(ZrWaterfallLoader* loader)
{
    if (m_loader)
        disconnect(m_loader, nullptr, this, nullptr);
    m_loader = loader;
    m_window.reset();
    m_ring.Clear();
    m_cursor = 0.0;
    m_zoom = 1.0;
    m_offset = 0.0;
    if (loader) {
        m_window = std::make_unique<ZrWaterfallWindow>(m_ring, loader->Tiles());
        connect(loader, &ZrWaterfallLoader::Renewed, this,
            [this](qint64 first, qint64 end) { m_window->Renew(first, end); });
        connect(loader, &ZrWaterfallLoader::Loaded, this, &ZrWaterfallPanel::Refresh);
    }
    Refresh();
}

void ZrWaterfallPanel::SetCursor(double ping)
{
    if (ping == m_cursor || std::isnan(ping))
        return;
    m_cursor = ping;
    Refresh();
}

QSize ZrWaterfallPanel::Pixels() const
{
    const double ratio = devicePixelRatioF();
    return {qRound(width() * ratio), qRound(height() * ratio)};
}

void ZrWaterfallPanel::SetZoom(double zoom, const QPointF& about)
{
    const double before = m_zoom;
    m_zoom = std::clamp(zoom, 1.0, MostZoom);
    const double at = about.x() - m_offset;
    m_offset = about.x() - at * m_zoom / before;
    Refresh();
}

void ZrWaterfallPanel::Match()
{
    const double ratio = devicePixelRatioF();
    const int below = parentWidget() ? parentWidget()->height() - y() - height() : 0;
    const QRect viewport(
        qRound(x() * ratio), qRound(below * ratio), qRound(width() * ratio), qRound(height() * ratio));
    m_surface.ZrglSetViewport(viewport);
    m_surface.OnResize(viewport.width(), viewport.height());
    Refresh();
}

void ZrWaterfallPanel::moveEvent(QMoveEvent* /*event*/)
{
    Match();
}

void ZrWaterfallPanel::resizeEvent(QResizeEvent* /*event*/)
{
    Match();
}

void ZrWaterfallPanel::Refresh()
{
    if (m_window && !Pixels().isEmpty()) {
        LayOut();
        m_loader->Want(m_window->Missing());
    } else {
        m_view.rect = QRect();
        m_layout = ZrWaterfallLayout();
    }
    m_layer.m_view = m_view;
    update();
    Q_EMIT Changed();
}

/// Brings the cursor to the middle, as far as the view stays filled. How many lines are in view shows only
/// when they are laid out, since each is as high as the way that was made.
void ZrWaterfallPanel::LayOut()
{
    const QSize size = Pixels();
    const int wide = qRound(size.width() * m_zoom);
    m_offset = std::clamp(m_offset, static_cast<double>(size.width() - wide), 0.0);
    m_view.rect = QRect(qRound(m_offset), 0, wide, size.height());
    const double count = static_cast<double>(m_loader->Tiles().LineCount());
    if (std::isnan(m_view.end))
        m_view.end = std::min(m_cursor + size.height() / 2.0, count);
    for (int round = 0; round < mostRounds; ++round) {
        m_window->Update(m_view);
        m_layout = ZrWaterfallLayout(m_ring, m_view);
        const double end = std::clamp(WantedEnd(), std::min(1.0, count), count);
        if (std::fabs(end - m_view.end) < 1e-3)
            break;
        m_view.end = end;
    }
    m_window->Update(m_view);
    m_layout = ZrWaterfallLayout(m_ring, m_view);
}

/// The end of the view with which the cursor is in the middle of it, or the first line of the log at its
/// edge, as far as the layout there is can tell.
double ZrWaterfallPanel::WantedEnd() const
{
    const std::vector<ZrWaterfallLayout::Row>& rows = m_layout.Rows();
    const double last = static_cast<double>(m_loader->Tiles().LineCount() - 1);
    const double cursor = std::clamp(m_cursor, 0.0, std::max(last, 0.0));
    const double y = YOf(cursor);
    if (std::isnan(y) || rows.empty())
        return cursor + std::max<double>(static_cast<double>(rows.size()), 2.0) / 2.0;
    // Both are counted from the edge of the newest lines, as rows are; so is what comes in there.
    const double height = m_view.rect.height();
    const bool isDown = m_view.newest == ZrWaterfallSettings::newestTop;
    double further = height / 2.0 - (isDown ? y : height - y);
    if (rows.back().line == 0)
        further = std::max(further, height - rows.back().to);
    return m_layout.EndAfterPan(isDown ? further : -further);
}

double ZrWaterfallPanel::YOf(double ping) const
{
    const double at = ping + 0.5;
    const auto line = static_cast<i64>(std::floor(at));
    const std::vector<ZrWaterfallLayout::Row>& rows = m_layout.Rows();
    // Rows go from the newest line down, without holes in their numbers.
    if (rows.empty() || line > rows.front().line || line < rows.back().line)
        return std::numeric_limits<double>::quiet_NaN();
    const ZrWaterfallLayout::Row& row = rows[static_cast<std::size_t>(rows.front().line - line)];
    const double along = row.to - (at - static_cast<double>(line)) * (row.to - row.from);
    return m_view.newest == ZrWaterfallSettings::newestTop ? along : m_view.rect.height() - along;
}

// -- Input

double ZrWaterfallPanel::Reach(double distance) const
{
    return std::max(static_cast<double>(ZrTheme::DpF(static_cast<float>(distance))), distance)
        * devicePixelRatioF();
}

void ZrWaterfallPanel::Press(const QPointF& pixel)
{
    m_isPressed = true;
    m_isMoved = false;
    m_pressed = m_last = pixel;
    setFocus(Qt::MouseFocusReason);
}

void ZrWaterfallPanel::Move(const QPointF& pixel)
{
    if (!m_isPressed)
        return;
    if (!m_isMoved) {
        if ((pixel - m_pressed).manhattanLength() < Reach(tapDistance))
            return;
        m_isMoved = true;
        if (!m_isPointing)
            Q_EMIT ScrubBegan();
    }
    const QPointF by = pixel - m_last;
    m_last = pixel;
    if (m_isPointing) {
        Q_EMIT Drawn(m_pressed, pixel, false);
        return;
    }
    m_offset += by.x();
    if (by.y() != 0.0)
        Scrub(by.y());
    Refresh();
}

/// Tells the ping that is so many pixels up from the cursor: as long as the cursor is in the middle, the
/// image moves with the finger, one to one. Where the image has come to the end of the log the cursor goes
/// on, the same way along the log.
void ZrWaterfallPanel::Scrub(double pixels)
{
    const std::vector<ZrWaterfallLayout::Row>& rows = m_layout.Rows();
    const double y = YOf(m_cursor);
    if (std::isnan(y) || rows.empty())
        return;
    const double target = y - pixels;
    const double along
        = m_view.newest == ZrWaterfallSettings::newestTop ? target : m_view.rect.height() - target;
    const auto row = std::find_if(
        rows.begin(), rows.end(), [along](const ZrWaterfallLayout::Row& r) { return along <= r.to; });
    const ZrWaterfallLayout::Row& at = row == rows.end() ? rows.back() : *row;
    const double share = std::clamp((at.to - along) / (at.to - at.from), 0.0, 1.0);
    // A log ends in the middle of its first and its last line.
    const double last = static_cast<double>(m_loader->Tiles().LineCount() - 1);
    Q_EMIT Scrubbed(std::clamp(static_cast<double>(at.line) + share - 0.5, 0.0, std::max(last, 0.0)));
}

void ZrWaterfallPanel::Release(const QPointF& pixel)
{
    if (!m_isPressed)
        return;
    m_isPressed = false;
    if (m_isMoved) {
        if (m_isPointing)
            Q_EMIT Drawn(m_pressed, pixel, true);
        else
            Q_EMIT ScrubEnded();
        return;
    }
    Q_EMIT Tapped(m_layout.ToSonar(pixel), pixel);
}

void ZrWaterfallPanel::Pinch(const QTouchEvent& event)
{
    const auto points = event.touchPoints();
    const double ratio = devicePixelRatioF();
    const auto length = [](const QPointF& a, const QPointF& b) {
        return std::max(std::hypot(a.x() - b.x(), a.y() - b.y()), 10.0);
    };
    const QPointF middle = (points[0].pos() + points[1].pos()) / 2.0 * ratio;
    const QPointF before = (points[0].lastPos() + points[1].lastPos()) / 2.0 * ratio;
    m_offset += middle.x() - before.x();
    SetZoom(
        m_zoom * length(points[0].pos(), points[1].pos()) / length(points[0].lastPos(), points[1].lastPos()),
        middle);
}

bool ZrWaterfallPanel::event(QEvent* event)
{
    const double ratio = devicePixelRatioF();
    switch (event->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd: {
        event->accept();
        const auto& touch = static_cast<const QTouchEvent&>(*event);
        const auto points = touch.touchPoints();
        if (points.size() >= 2) {
            // A second finger never draws or taps.
            if (m_isPressed && m_isMoved && !m_isPointing)
                Q_EMIT ScrubEnded();
            m_isPressed = false;
            m_isPinching = true;
            Pinch(touch);
        } else if (points.size() == 1 && !m_isPinching) {
            const QPointF pixel = points[0].pos() * ratio;
            if (event->type() == QEvent::TouchBegin)
                Press(pixel);
            else if (event->type() == QEvent::TouchUpdate)
                Move(pixel);
            else
                Release(pixel);
        }
        if (event->type() == QEvent::TouchEnd)
            m_isPinching = false;
        return true;
    }
    case QEvent::TouchCancel:
        m_isPressed = m_isPinching = false;
        event->accept();
        return true;
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease: {
        const auto& mouse = static_cast<const QMouseEvent&>(*event);
        event->accept();
        if (mouse.source() != Qt::MouseEventNotSynthesized)
            return true;
        const QPointF pixel = mouse.localPos() * ratio;
        if (event->type() == QEvent::MouseButtonPress && mouse.button() == Qt::LeftButton)
            Press(pixel);
        else if (event->type() == QEvent::MouseMove)
            Move(pixel);
        else if (event->type() == QEvent::MouseButtonRelease && mouse.button() == Qt::LeftButton)
            Release(pixel);
        return true;
    }
    case QEvent::Wheel: {
        const auto& wheel = static_cast<const QWheelEvent&>(*event);
        event->accept();
        SetZoom(m_zoom * std::pow(zoomStep, wheel.angleDelta().y() / notch), wheel.position() * ratio);
        return true;
    }
    default:
        return ZrSfHolder::event(event);
    }
}

void ZrWaterfallPanel::paintEvent(QPaintEvent* /*event*/)
{
    if (!m_overlay)
        return;
    QPainter painter(this);
    const double ratio = devicePixelRatioF();
    painter.scale(1.0 / ratio, 1.0 / ratio);
    m_overlay(painter, m_layout);
}
