#include "ZrKit/planning/ZrRouteFinding.h"

QString ZrRouteFinding::CodeName() const
{
    // In the order of eCode.
    static const char* const names[]
        = {"empty", "single-point", "not-linked", "too-wide", "no-position", "position-out-of-range",
            "beyond-grid", "coincident", "bad-radius", "radius-at-end", "turn-beyond-leg", "turns-overlap",
            "doubles-back", "bad-speed", "zone-crossed", "antimeridian-crossed", "bad-margin", "bad-area",
            "area-crosses-itself", "outside-fence", "near-fence", "in-no-go", "near-no-go"};
    static_assert(sizeof names / sizeof *names == eNearNoGo + 1);
    return QLatin1String(names[code]);
}

QString ZrRouteFinding::SeverityName() const
{
    static const char* const names[] = {"info", "warning", "error"};
    static_assert(sizeof names / sizeof *names == eError + 1);
    return QLatin1String(names[severity]);
}
