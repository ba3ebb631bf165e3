#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QPointF>

#include <vector>

class ZrMapView;

/// Turns what fingers, mouse and wheel do into movements of a map view, and tells taps from them.
///
/// One finger moves the map as far as it moves itself; let go in motion, the map coasts on. Two fingers move,
/// zoom and turn it about their middle; turning sets in beyond `TurnThreshold`, lest every pinch turn the map
/// a little. A finger that stays within `m_tapDistance` is a tap, a second one soon after it a double tap, a
/// finger held still a long press. Neither a second finger nor a movement ever ends as a tap.
///
/// Positions are pixels of the view, times are seconds of any clock that does not run backward. One thread at
/// a time.
class ZR_KIT_EXPORT ZrMapGesture
{
public:
    static constexpr double CoastSeconds = 0.75;
    static constexpr double SlowestCoast = 60.0; ///< pixels per second; a slower finger leaves the map alone
    static constexpr double TurnThreshold = 12.0; ///< degrees
    static constexpr double DoubleTapSeconds = 0.4;
    static constexpr double LongPressSeconds = 0.7;
    static constexpr double WheelFactor = 1.25; ///< for each notch of the wheel

    enum eEvent : int
    {
        nothing = 0,
        moved = 1, ///< the view has changed
        tap = 2, ///< at `Where`
        doubleTap = 3, ///< at `Where`; the tap before it was told as one
        longPress = 4 ///< at `Where`, the finger still down
    };

    bool m_canTurn = true;
    double m_tapDistance = 10.0; ///< pixels

    eEvent Press(int id, const QPointF& pixel, double seconds);
    eEvent Move(ZrMapView& view, int id, const QPointF& pixel, double seconds);
    eEvent Release(ZrMapView& view, int id, const QPointF& pixel, double seconds);
    eEvent Wheel(ZrMapView& view, const QPointF& pixel, double notches); ///< up is positive and zooms in

    /// Lets the map coast on and time pass for a long press. Call it for each frame while `IsBusy`.
    eEvent Tick(ZrMapView& view, double seconds);

    void Cancel(); ///< the fingers are taken away; nothing comes of it

    bool IsBusy() const { return m_isCoasting || m_isPressing; } ///< wants `Tick`

    bool IsCoasting() const { return m_isCoasting; }

    int FingerCount() const { return static_cast<int>(m_fingers.size()); }

    QPointF Where() const { return m_where; } ///< of the last tap or press

private:
    struct Finger
    {
        int id;
        QPointF pixel;
    };

    struct Sample
    {
        QPointF pixels;
        double seconds;
    };

    Finger* Find(int id);
    void Turn(ZrMapView& view, const QPointF& about, double degrees);
    eEvent MoveTwo(ZrMapView& view, Finger& finger, const QPointF& pixel);
    QPointF Velocity(double seconds) const;

    std::vector<Finger> m_fingers;
    std::vector<Sample> m_samples; ///< of the one finger that pans
    QPointF m_where;
    QPointF m_pressed; ///< where the first finger went down
    double m_pressTime = 0.0;
    bool m_isPressing = false; ///< may become a tap or a long press
    bool m_hasTapped = false;
    QPointF m_tapped;
    double m_tapTime = 0.0;
    bool m_isTurning = false;
    double m_turn = 0.0; ///< degrees, before turning sets in
    bool m_isCoasting = false;
    QPointF m_coast; ///< all of the way, pixels
    double m_coastStart = 0.0;
    double m_coastDone = 0.0; ///< part of the way, 0 to 1
};
