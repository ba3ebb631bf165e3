#include "ZrKit/planning/ZrPathPiece.h"

#include <cmath>

ZrLocalPoint ZrPathPiece::At(double fraction) const
{
    // The ends exactly, so that pieces meet.
    if (fraction == 0.0)
        return from;
    if (fraction == 1.0)
        return to;
    if (!isArc)
        return {from.x + fraction * (to.x - from.x), from.y + fraction * (to.y - from.y)};
    const double angle = start + fraction * sweep;
    return {centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)};
}

ZrPathPiece ZrPathPiece::Part(double first, double last) const
{
    ZrPathPiece part = *this;
    part.from = At(first);
    part.to = At(last);
    part.start = start + first * sweep;
    part.sweep = (last - first) * sweep;
    part.length = (last - first) * length;
    part.q = q + first * length;
    return part;
}
