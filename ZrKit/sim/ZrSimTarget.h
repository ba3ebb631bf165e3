#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrLocalFrame.h"

#include <QString>

/// Something that lies on a simulated sea floor. A plain value; metres in the plane of the floor.
struct ZR_KIT_EXPORT ZrSimTarget
{
    enum eKind : int
    {
        Cylinder, ///< lying, half of its height is where it is widest
        Block, ///< with upright walls and a level top
        Wreck, ///< a hull with deckhouse, gunwale and open holds; the height is that of the deckhouse
    };

    eKind kind = Block;
    ZrLocalPoint at; ///< its middle
    double heading = 0.0; ///< of its length, degrees clockwise from the north of the plane
    double length = 2.0;
    double width = 1.0;
    double height = 1.0; ///< above the floor
    double strength = 3.0; ///< backscatter against that of sand

    /// Metres above the floor at a place; 0 outside of the outline.
    double HeightAt(double x, double y) const;

    /// The smallest circle around `at` that holds the outline has at most this radius.
    double Reach() const;

    /// Whether all numbers are finite and the lengths above 0 and at most 1000 m.
    bool IsValid() const;

    QString KindName() const; ///< "cylinder", "block", "wreck"
};
