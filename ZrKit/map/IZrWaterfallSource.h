#pragma once

#include "ZrKit/map/ZrWaterfallLine.h"
#include "ZrUtil/ZrTypes.h"

/// Where a `ZrWaterfallWindow` gets the lines of a long log from.
///
/// A line need not be a ping: one that stands for several gives an overview of a log that has more pings than
/// a ring has lines.
class IZrWaterfallSource
{
public:
    virtual ~IZrWaterfallSource() = default;

    virtual i64 LineCount() const = 0;

    /// Gives line \p line, 0 to before `LineCount`, when it is at hand. False when it must be loaded first:
    /// it is asked for again. Asked in the GUI thread for all lines in view, so it must not wait for a file.
    virtual bool Fetch(i64 line, ZrWaterfallLine& content) = 0;
};
