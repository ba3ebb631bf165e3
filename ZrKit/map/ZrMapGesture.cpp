#include "ZrKit/map/ZrMapGesture.h"

#include "ZrKit/map/ZrMapView.h"

#include <QtMath>

#include <algorithm>
#include <cmath>

namespace {

/// Movements older than this say nothing about how fast a finger is, seconds.
constexpr double sampleSeconds = 0.1;

/// Fingers closer than this, pixels, neither zoom nor turn: their distance is noise.
constexpr double leastSpread = 4.0;

double Length(const QPointF& v)
{
    return std::hypot(v.x(), v.y());
}

bool IsFinite(const QPointF& point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

/// The angle from \p a to \p b as it is seen, counter-clockwise with y down, degrees, -180 to 180.
double Angle(const QPointF& a, const QPointF& b)
{
    const double cross = a.x() * b.y() - a.y() * b.x();
    return -qRadiansToDegrees(std::atan2(cross, a.x() * b.x() + a.y() * b.y()));
}

} // namespace

ZrMapGesture::Finger* ZrMapGesture::Find(int id)
{
    const auto at
        = std::find_if(m_fingers.begin(), m_fingers.end(), [id](const Finger& f) { return f.id == id; });
    return at == m_fingers.end() ? nullptr : &*at;
}

ZrMapGesture::eEvent ZrMapGesture::Press(int id, const QPointF& pixel, double seconds)
{
    if (!IsFinite(pixel))
        return nothing;
    m_isCoasting = false;
    m_samples.clear();
    if (Finger* finger = Find(id))
        finger->pixel = pixel;
    else
        m_fingers.push_back({id, pixel});
    m_isPressing = m_fingers.size() == 1;
    m_isTurning = false;
    m_turn = 0.0;
    if (m_isPressing) {
        m_pressed = pixel;
        m_pressTime = seconds;
    } else {
        m_hasTapped = false;
    }
    return nothing;
}

ZrMapGesture::eEvent ZrMapGesture::Move(ZrMapView& view, int id, const QPointF& pixel, double seconds)
{
    Finger* const finger = Find(id);
    if (!finger || !IsFinite(pixel))
        return nothing;
    if (m_fingers.size() > 1)
        return MoveTwo(view, *finger, pixel);
    if (m_isPressing) {
        if (Length(pixel - m_pressed) <= m_tapDistance)
            return nothing;
        m_isPressing = false;
        m_hasTapped = false;
    }
    // From where the finger went down: what the tap distance held back is made up.
    const QPointF way = pixel - finger->pixel;
    finger->pixel = pixel;
    if (way.isNull())
        return nothing;
    m_samples.push_back({way, seconds});
    view.Pan(way);
    return moved;
}

void ZrMapGesture::Turn(ZrMapView& view, const QPointF& about, double degrees)
{
    if (!m_canTurn)
        return;
    if (!m_isTurning) {
        m_turn += degrees;
        if (std::abs(m_turn) < TurnThreshold)
            return;
        // The map turns from here on, without a jump.
        m_isTurning = true;
        return;
    }
    view.RotateAbout(about, degrees);
}

ZrMapGesture::eEvent ZrMapGesture::MoveTwo(ZrMapView& view, Finger& finger, const QPointF& pixel)
{
    // A third finger is not followed.
    const bool isFirst = &finger == &m_fingers[0];
    if ((!isFirst && &finger != &m_fingers[1]) || pixel == finger.pixel)
        return nothing;
    const QPointF other = m_fingers[isFirst ? 1 : 0].pixel;
    const QPointF before = finger.pixel - other;
    const QPointF after = pixel - other;
    const QPointF middle = (pixel + other) / 2.0;
    view.Pan((pixel - finger.pixel) / 2.0);
    finger.pixel = pixel;
    if (Length(before) >= leastSpread && Length(after) >= leastSpread) {
        view.ZoomAbout(middle, Length(after) / Length(before));
        Turn(view, middle, Angle(before, after));
    }
    return moved;
}

QPointF ZrMapGesture::Velocity(double seconds) const
{
    QPointF way;
    double first = seconds;
    for (auto at = m_samples.rbegin(); at != m_samples.rend() && seconds - at->seconds <= sampleSeconds;
         ++at) {
        way += at->pixels;
        first = at->seconds;
    }
    // The oldest movement took time as well: at least that of a frame.
    constexpr double frame = 1.0 / 60.0;
    return way / (seconds - first + frame);
}

ZrMapGesture::eEvent ZrMapGesture::Release(ZrMapView& view, int id, const QPointF& pixel, double seconds)
{
    const eEvent last = Move(view, id, pixel, seconds);
    const auto at
        = std::find_if(m_fingers.begin(), m_fingers.end(), [id](const Finger& f) { return f.id == id; });
    if (at == m_fingers.end())
        return nothing;
    m_fingers.erase(at);
    m_isTurning = false;
    m_turn = 0.0;
    if (m_isPressing) {
        m_isPressing = false;
        m_where = m_pressed;
        const bool isDouble = m_hasTapped && seconds - m_tapTime <= DoubleTapSeconds
            && Length(m_pressed - m_tapped) <= 4.0 * m_tapDistance;
        m_hasTapped = !isDouble;
        m_tapped = m_pressed;
        m_tapTime = seconds;
        return isDouble ? doubleTap : tap;
    }
    if (m_fingers.empty()) {
        const QPointF velocity = Velocity(seconds);
        if (!m_samples.empty() && Length(velocity) >= SlowestCoast) {
            m_isCoasting = true;
            // The way of a cubic that starts at this speed and ends at none.
            m_coast = velocity * CoastSeconds / 3.0;
            m_coastStart = seconds;
            m_coastDone = 0.0;
        }
    }
    m_samples.clear();
    return last;
}

ZrMapGesture::eEvent ZrMapGesture::Wheel(ZrMapView& view, const QPointF& pixel, double notches)
{
    if (!std::isfinite(notches) || notches == 0.0)
        return nothing;
    m_isCoasting = false;
    view.ZoomAbout(pixel, std::pow(WheelFactor, std::clamp(notches, -20.0, 20.0)));
    return moved;
}

ZrMapGesture::eEvent ZrMapGesture::Tick(ZrMapView& view, double seconds)
{
    if (m_isPressing) {
        if (seconds - m_pressTime < LongPressSeconds)
            return nothing;
        m_isPressing = false;
        m_hasTapped = false;
        m_where = m_pressed;
        return longPress;
    }
    if (!m_isCoasting)
        return nothing;
    const double t = std::clamp((seconds - m_coastStart) / CoastSeconds, 0.0, 1.0);
    const double rest = 1.0 - t;
    const double done = 1.0 - rest * rest * rest;
    view.Pan(m_coast * (done - m_coastDone));
    m_coastDone = done;
    m_isCoasting = t < 1.0;
    return moved;
}

void ZrMapGesture::Cancel()
{
    m_fingers.clear();
    m_samples.clear();
    m_isPressing = false;
    m_hasTapped = false;
    m_isTurning = false;
    m_isCoasting = false;
}
