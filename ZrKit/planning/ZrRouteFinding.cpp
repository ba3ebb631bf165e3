#include "ZrKit/planning/ZrRouteFinding.h"

#include <QCoreApplication>

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

QString ZrRouteFinding::Title() const
{
    // Likewise.
    static const char* const titles[] = {QT_TRANSLATE_NOOP("ZrRouteFinding", "No waypoint"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "One waypoint alone"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "Marks without a way"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "Too wide to be checked"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "Without a position"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "Position out of range"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "Beyond the grid"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "At the same place"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "Turn radius is no number"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "Turn at an end"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "Turn longer than its leg"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "Turns overlap"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "Doubles back"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "Speed cannot be sailed"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "Crosses a zone border"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "Crosses the antimeridian"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "Distance is no number"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "Area cannot be checked"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "Area crosses itself"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "Outside the fence"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "Close to the fence"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "In a no-go area"),
        QT_TRANSLATE_NOOP("ZrRouteFinding", "Close to a no-go area")};
    static_assert(sizeof titles / sizeof *titles == eNearNoGo + 1);
    return QCoreApplication::translate("ZrRouteFinding", titles[code]);
}

QString ZrRouteFinding::SeverityName() const
{
    static const char* const names[] = {"info", "warning", "error"};
    static_assert(sizeof names / sizeof *names == eError + 1);
    return QLatin1String(names[severity]);
}
