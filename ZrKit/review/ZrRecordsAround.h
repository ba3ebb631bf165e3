#pragma once

#include "ZrKit/ZrKitExport.h"

#include <cstddef>
#include <vector>

class ZrSteadyTime;

/// Which records of a log to read to find those nearest to some moments, without reading all of them.
///
/// \code
/// for (const ZrRecordsAround::Range& range : ZrRecordsAround::Of(&steady, steady.Count(), moments))
///     source.Read(range.first, range.end, records);
/// \endcode
///
/// Any thread.
class ZR_KIT_EXPORT ZrRecordsAround
{
public:
    /// Records \p first ... \p end - 1.
    struct Range
    {
        std::size_t first;
        std::size_t end;
    };

    /// Ranges, ascending and apart, that hold the record of log time nearest to each of \p moments (seconds
    /// since 1970-01-01 UTC, NaN for none), and all others as near. With \p times null or not of \p count
    /// records, and for moments that no record is anywhere near, that is all of them.
    static std::vector<Range> Of(
        const ZrSteadyTime* times, std::size_t count, const std::vector<double>& moments);
};
