#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrArea.h"
#include "ZrKit/planning/ZrRouteFinding.h"
#include "ZrKit/planning/ZrRouteSpeeds.h"

#include <atomic>
#include <optional>
#include <vector>

class ZrWpts;

/// Looks a route over before it is run.
///
/// \code
/// ZrRouteCheck::Options options;
/// options.noGo = wrecks;
/// options.margin = 25.0;
/// for (const ZrRouteFinding& finding : ZrRouteCheck::Run(route, options))
///     show(finding.index, finding.text);
/// \endcode
///
/// Checked is the path of `ZrRoutePath`: turn arcs where they fit, the leg that closes a closed route. Edges
/// of areas are straight in the frame of that path, close to the shortest line between their corners; along a
/// parallel in middle latitudes that bows to the pole by some 2 m in 10 km, 200 m in 100 km. Areas may be
/// concave, lie across the antimeridian and overlap; one that crosses itself counts by the even-odd rule. The
/// outermost centimetre of an area is border, which is neither inside nor outside.
///
/// Findings are ordered: first those on the whole route and on the areas, then those on waypoints by their
/// index. A set of markers is checked as if it was to be run. Any thread, as long as no other one changes the
/// route meanwhile.
class ZR_KIT_EXPORT ZrRouteCheck
{
public:
    struct Options
    {
        std::vector<ZrArea> fences; ///< the path must stay inside each of them
        std::vector<ZrArea> noGo; ///< the path must stay outside all of them
        std::optional<ZrRouteSpeeds> speeds; ///< without them those of the process at the time of the check
        double margin = 0.0; ///< metres that the path must keep from the borders of both
        /// Ends the check soon once it is true: what was found until then is all there is. May be null.
        const std::atomic<bool>* cancel = nullptr;
    };

    static std::vector<ZrRouteFinding> Run(const ZrWpts& route, const Options& options);
    static std::vector<ZrRouteFinding> Run(const ZrWpts& route);
};
