#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrLogRec.h"

#include <cstddef>
#include <utility>
#include <vector>

/// Finds the record of a dataset that is nearest to a time, also where the clock of the log was set back.
///
/// \code
/// const ZrRecordTimes times(dataset.recs);
/// const std::size_t i = times.Nearest(event.time);
/// if (i < dataset.recs.size())
///     Show(dataset.recs[i]);
/// \endcode
///
/// `ZrDataset::PosFromTime` starts from an estimate, which takes few steps in an even log and gives 0 at the
/// time of the last record. This class sorts once and is exact everywhere. Records whose times are not finite
/// are nearest to nothing. The records are not kept; memory is 16 bytes each. Any thread.
class ZR_KIT_EXPORT ZrRecordTimes
{
public:
    explicit ZrRecordTimes(const std::vector<ZrLogRec>& recs);

    /// Index of the record nearest to \p time, seconds since the epoch; the first one of several as near. The
    /// number of records when there is none or \p time is not a number.
    std::size_t Nearest(double time) const;

private:
    std::size_t m_count;
    std::vector<std::pair<double, std::size_t>> m_times; ///< ascending; of equal times the first record first
};
