#pragma once

#include <array>

/// The resources with the shapes of markers, see `ZrGlSurface::m_markers`: the order is the index by which
/// callers name a marker. Any thread.
struct ZrMarkerImages
{
    static constexpr std::array<const char*, 15> Paths = {
        ":/marker_alpha.png",
        ":/marker_arrow.png",
        ":/marker_square.png",
        ":/marker_circle.png",
        ":/marker_crosshair.png",
        ":/marker_waypoint.png",
        ":/marker_vector.png",
        ":/marker_pin.png",
        ":/handle_rotate.png",
        ":/handle_stretch.png",
        ":/handle_tick.png",
        ":/handle_trash.png",
        ":/handle_pan.png",
        ":/handle_a.png",
        ":/handle_b.png",
    };
};
