#pragma once

// What the tests of plans share: an area, waypoints, and the bytes of files.

#include "FileBytes.h"
#include "ZrKit/planning/ZrPlanDocument.h"
#include "ZrKit/planning/ZrPlanReader.h"
#include "ZrUtil/ZrWpt.h"

#include <QByteArray>
#include <QString>

#include <cmath>

/// An area by a name that is not of one alphabet.
inline ZrArea Harbour()
{
    return {QStringLiteral("Häfen 港"), {{50.0, -4.0}, {50.01, -4.0}, {50.01, -3.99}, {50.0, -3.99}}};
}

/// A waypoint at a place of its own, an edit.
inline void AddOne(ZrPlanDocument& plan, int number = 0)
{
    plan.History().Add(50.0 + 0.001 * number, -4.0, eZrWptBlue, ZrWpts::eAddTail);
    plan.Edited();
}

/// Three waypoints with a corner at the second one, each an edit.
inline void AddThree(ZrPlanDocument& plan)
{
    for (int i = 0; i < 3; ++i) {
        plan.History().Add(50.0 + 0.01 * i, -4.0 + (i == 1 ? 0.01 : 0.0), eZrWptBlue, ZrWpts::eAddTail);
        plan.Edited();
    }
}

/// Whether the first waypoint is that of `AddOne`.
inline bool IsNumber(const ZrPlanDocument& plan, int number)
{
    const ZrWpt* first = plan.Route().GetHead();
    return first && std::fabs(first->lat - 50.0 - 0.001 * number) < 1e-7;
}

inline bool TakeState(ZrPlanDocument& plan, const QByteArray& state)
{
    ZrPlanReader reader;
    reader.FromDraft(state, QStringLiteral("State"));
    return plan.Take(reader);
}
