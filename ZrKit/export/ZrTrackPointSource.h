#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/export/ZrTrackPoint.h"

#include <cstddef>
#include <vector>

/// Points of a track that are not all in memory: exports read them piece by piece, some of them several
/// times.
class ZR_KIT_EXPORT ZrTrackPointSource
{
public:
    virtual ~ZrTrackPointSource();

    virtual std::size_t Count() const = 0;

    /// Replaces \p points by those from \p first up to the one before \p end, which is not beyond `Count`.
    /// False ends the export.
    virtual bool Read(std::size_t first, std::size_t end, std::vector<ZrTrackPoint>& points) = 0;
};
