#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrRouteFile.h"

#include <QCoreApplication>
#include <QStringList>

class ZrWpt;
class ZrWpts;

/// What a file of another form than the settings does not hold of a route.
///
/// \code
/// const QStringList lost = ZrRouteLoss::Of(ZrRouteFile::List, route); // "depths", "names"
/// \endcode
///
/// Found by writing the route and reading it again, so that it is true whatever the forms hold. Numbers may
/// differ by 1e-5 of their value, positions by 1e-6 degrees; colours, UUIDs and what is computed do not
/// count. Takes about as long as writing and reading. Any thread.
class ZR_KIT_EXPORT ZrRouteLoss
{
    Q_DECLARE_TR_FUNCTIONS(ZrRouteLoss)

public:
    /// In words, parts of a sentence, each once; empty when nothing is lost, and for a route without
    /// waypoints.
    static QStringList Of(ZrRouteFile::eFormat format, const ZrWpts& route);

private:
    static void Compare(const ZrWpt& wpt, const ZrWpt& read, QStringList& lost);
};
