#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrGeoPoint.h"

#include <QJsonObject>

#include <vector>

/// A ring that is being drawn and no area of its plan yet. A plain value.
struct ZR_KIT_EXPORT ZrPlanSketch
{
    std::vector<ZrGeoPoint> ring; ///< corners so far
    bool isNoGo = false; ///< it is to become an area to keep clear of
    int edited = -1; ///< index of the area whose corners are being moved; -1 for a new one
    bool isEditedNoGo = false; ///< that area is one to keep clear of

    bool IsEmpty() const { return ring.empty(); }

    QJsonObject ToJson() const;

    /// Corners that are no positions are left out.
    static ZrPlanSketch FromJson(const QJsonObject& object);

    friend ZR_KIT_EXPORT bool operator==(const ZrPlanSketch& a, const ZrPlanSketch& b);

    friend bool operator!=(const ZrPlanSketch& a, const ZrPlanSketch& b) { return !(a == b); }
};
