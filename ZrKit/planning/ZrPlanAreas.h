#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrArea.h"

#include <QJsonObject>
#include <QString>

#include <vector>

/// What a plan holds besides its route. A plain value.
struct ZR_KIT_EXPORT ZrPlanAreas
{
    std::vector<ZrArea> areas; ///< that surveys are planned over
    std::vector<ZrArea> noGo; ///< that the path must keep clear of
    double margin = 0.0; ///< metres to keep from the latter

    bool IsEmpty() const { return areas.empty() && noGo.empty() && margin == 0.0; }

    /// What there is of it, as a part of a sentence: "2 areas, 1 no-go area"; empty for nothing.
    QString Text() const;

    /// \name Form of the settings
    /// The members "areas", "no-go" and "margin", beside others. Corners that are no positions are left out
    /// when read, and areas without any; a margin that is none is 0.
    /// @{
    void ToJson(QJsonObject& root) const;
    static ZrPlanAreas FromJson(const QJsonObject& root);
    /// @}

    /// Whether both are the same bit for bit: NaN is itself.
    friend ZR_KIT_EXPORT bool operator==(const ZrPlanAreas& a, const ZrPlanAreas& b);

    friend bool operator!=(const ZrPlanAreas& a, const ZrPlanAreas& b) { return !(a == b); }
};
