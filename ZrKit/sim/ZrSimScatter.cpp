#include "ZrKit/sim/ZrSimScatter.h"

#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrKit/sim/ZrSimRandom.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int wreckEvery = 6;
constexpr int firstWreck = 2; // so that a few targets have one among them

void SetSize(ZrSimTarget& target, int index, double range, ZrSimRandom& random)
{
    // What lies in a record of 25 m looks lost in one of 200 m.
    const double scale = std::clamp(range / 50.0, 0.3, 4.0);
    target.heading = 360.0 * random.Uniform();
    if (index % wreckEvery == firstWreck) {
        target.kind = ZrSimTarget::Wreck;
        target.length = scale * (12.0 + 6.0 * random.Uniform());
        target.width = target.length * (0.22 + 0.06 * random.Uniform());
        target.height = scale * (1.6 + 0.8 * random.Uniform());
    } else if (index % 2 == 0) {
        target.kind = ZrSimTarget::Cylinder;
        target.length = scale * (2.0 + 3.0 * random.Uniform());
        target.height = target.width = scale * (0.5 + 0.5 * random.Uniform());
    } else {
        target.kind = ZrSimTarget::Block;
        target.length = scale * (1.0 + 1.5 * random.Uniform());
        target.width = scale * (0.8 + 0.7 * random.Uniform());
        target.height = scale * (0.6 + 0.8 * random.Uniform());
    }
}

} // namespace

std::vector<ZrSimTarget> ZrSimScatter::Along(const ZrRoutePath& path, int count, double range, u64 seed)
{
    std::vector<ZrSimTarget> targets;
    double whole = 0.0;
    for (const ZrPathPiece& piece : path.Pieces())
        whole += piece.isArc ? 0.0 : piece.length;
    ZrSimRandom random(ZrSimRandom::Mix(seed));
    double before = 0.0; // metres of straights
    int laid = 0;
    for (const ZrPathPiece& piece : path.Pieces()) {
        if (piece.isArc)
            continue;
        for (; laid < count; ++laid) {
            const double way = whole * (laid + 0.5) / count;
            if (way > before + piece.length)
                break;
            const ZrLocalPoint at = piece.At((way - before) / piece.length);
            const double length = std::hypot(piece.to.x - piece.from.x, piece.to.y - piece.from.y);
            const double side = laid % 2 == 0 ? 1.0 : -1.0;
            const double away = side * range * (0.25 + 0.42 * random.Uniform());
            ZrSimTarget target;
            target.at = {at.x + away * (piece.to.y - piece.from.y) / length,
                at.y - away * (piece.to.x - piece.from.x) / length};
            SetSize(target, laid, range, random);
            targets.push_back(target);
        }
        before += piece.length;
    }
    return targets;
}
