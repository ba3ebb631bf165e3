#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QByteArray>

class ZrWpts;

/// Tells whether two routes are run along the same way: for who follows one and has to begin anew when it is
/// another.
///
/// \code
/// if (ZrRouteKey::Of(plan.Route()) != m_key) // of the route that is being run
///     BeginAnew();
/// \endcode
///
/// What a route is shown by (colours, what is selected) is no part of it. Takes a small share of the time
/// that the form takes in which plans are recorded, `ZrPlanRecord`. Any thread, as long as nobody changes the
/// route.
struct ZR_KIT_EXPORT ZrRouteKey
{
    static constexpr int Size = 20; ///< bytes of a key

    static QByteArray Of(const ZrWpts& route);
};
