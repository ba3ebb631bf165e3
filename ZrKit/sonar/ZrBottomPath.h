#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sonar/ZrBottomEcho.h"
#include "ZrKit/sonar/ZrBottomTrackerSettings.h"

#include <cstddef>
#include <vector>

/// Chooses one echo of every ping, or none, so that all together make the likeliest line.
///
/// Dynamic programming (Viterbi) with a limited look-ahead: a state of a ping is one of its echoes, the
/// altitude of an earlier ping carried on because none of the echoes is the seabed, or nothing at all. A
/// ping is decided once at least `LookAhead` pings follow it, or at the end, so memory is bounded whatever
/// the number of pings.
///
/// One thread at a time.
class ZR_KIT_EXPORT ZrBottomPath
{
public:
    static constexpr std::size_t LookAhead = 512; ///< pings

    /// \p settings must be in their ranges, as `ZrBottomTracker::Settings` has them.
    explicit ZrBottomPath(const ZrBottomTrackerSettings& settings);

    /// Adds the echoes of the next ping, in any order.
    void Add(const std::vector<ZrBottomEcho>& echoes);

    /// Decides about all pings added; another line may begin.
    void Finish();

    /// What was decided since the last call, ping by ping: the echo chosen, or a default one.
    std::vector<ZrBottomEcho> Take();

private:
    struct State
    {
        ZrBottomEcho echo; ///< altitude NaN: nothing
        double value = 0.0; ///< of the best line up to here
        std::size_t from = 0; ///< state of the ping before on that line
        int missed = 0; ///< pings since the echo; 0 when it is one of this ping
    };

    using Layer = std::vector<State>;

    double Cost(const State& from, double altitude) const;
    void AddCarried(const Layer& before, Layer& layer) const;
    void Decide(std::size_t pings);

    double m_step;
    double m_worth; ///< strength that an echo must have
    double m_jump; ///< what it costs to go on elsewhere
    std::vector<Layer> m_layers; ///< of the pings not decided yet
    Layer m_last; ///< of the last ping decided
    std::vector<ZrBottomEcho> m_decided;
};
