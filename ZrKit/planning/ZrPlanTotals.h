#pragma once

/// What a plan comes to. A plain value.
struct ZrPlanTotals
{
    int waypoints = 0;
    int lines = 0; ///< survey lines, as `ZrPlanDocument::LineCount` counts them
    double length = 0.0; ///< metres along the way with its turns; NaN when it is not known
    double duration = 0.0; ///< seconds; NaN when it is not known
    bool isChecked = true; ///< findings were looked for
    int errors = 0; ///< findings
    int warnings = 0;
};
