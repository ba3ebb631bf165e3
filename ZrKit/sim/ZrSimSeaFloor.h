#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrLocalFrame.h"
#include "ZrKit/sim/ZrSimSeaFloorSettings.h"
#include "ZrKit/sim/ZrSimTarget.h"

#include <cstddef>
#include <vector>

/// A sea floor made of noise: hills, sand with ripples, mud, patches of rock, and targets that lie on it.
///
/// Every value depends on the seed and the place alone. The noise is value noise: random numbers on a square
/// lattice, between them a blend by 3t² − 2t³, in octaves of half the length and half the height.
///
/// The plane is that of a `ZrLocalFrame`, metres; places that are not finite, or beyond `Farthest`, have the
/// mean depth of bare sand. Settings out of range are put into it. Never changes once made: any number of
/// threads.
class ZR_KIT_EXPORT ZrSimSeaFloor
{
public:
    static constexpr double Farthest = 1e8; ///< metres from the origin

    /// What a ray of sound meets.
    struct Spot
    {
        double depth = 0.0; ///< of the top of what lies there
        double reflectivity = 1.0; ///< backscatter, 1 for sand
    };

    explicit ZrSimSeaFloor(
        const ZrSimSeaFloorSettings& settings, std::vector<ZrSimTarget> targets = std::vector<ZrSimTarget>());

    /// Depth of water over the floor without targets, 0 or more. Of forms smaller than \p detail metres only
    /// the mean is told: 0 tells everything.
    double Depth(double x, double y, double detail = 0.0) const;

    /// Backscatter of the floor without targets: about 0.3 mud, 1 sand, 3 rock.
    double Reflectivity(double x, double y) const;

    /// Both, with those of \p targets that lie there on top.
    Spot At(double x, double y, double detail, const std::vector<const ZrSimTarget*>& targets) const;

    /// `At` for \p count places in a line, the first one \p from, each \p east and \p north metres behind
    /// the one before: the same to the last bit, and several times as fast.
    void Along(ZrLocalPoint from, double east, double north, double detail,
        const std::vector<const ZrSimTarget*>& targets, std::size_t count, std::vector<Spot>& spots) const;

    /// The valid ones of those given.
    const std::vector<ZrSimTarget>& Targets() const { return m_targets; }

    /// The targets that may be met within \p range metres of a place.
    std::vector<const ZrSimTarget*> TargetsNear(double x, double y, double range) const;

    const ZrSimSeaFloorSettings& Settings() const { return m_settings; } ///< as they are used

private:
    class Sampler;

    ZrSimSeaFloorSettings m_settings;
    std::vector<ZrSimTarget> m_targets;
};
