#pragma once

#include "ZrKit/planning/ZrLocalFrame.h"

/// The seabed that one side of two neighbouring pings encloses: the bilinear patch between their two rays.
/// Neighbouring strips share an edge exactly, so that a mosaic of them has no seams, at turns neither.
///
/// The place at share u from the first to the second ping and ground range g is
/// (1 − u)(A0 + g d0) + u (A1 + g d1), with the points A beneath the sonar and the directions d outwards.
/// Metres of one plane. A plain value.
struct ZrMosaicStrip
{
    ZrLocalPoint start0; ///< beneath the sonar at the first ping
    ZrLocalPoint start1;
    ZrLocalPoint ray0; ///< for one metre of ground range
    ZrLocalPoint ray1;
    double reach = 0.0; ///< ground range to which the strip goes

    /// The northings that the strip covers.
    void Rows(double& south, double& north) const;

    /// The eastings within which the strip lies at a northing. False when it does not reach there.
    bool Columns(double northing, double& west, double& east) const;

    /// Share and ground range of a place. False when it lies outside. Where the strip is folded, on the inner
    /// side of a sharp turn, the nearer of both layers counts.
    bool Find(ZrLocalPoint at, double& share, double& range) const;
};
