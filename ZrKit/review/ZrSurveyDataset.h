#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrUtil/ZrDataset.h"

#include <array>

/// The dataset of logs with the kit's records: one record per navigation item, filled with position, depth
/// and attitude.
///
/// The index type may also be a fix (type 18), which gives positions only; of any other type the records have
/// their times alone.
///
/// What is not known is NaN, so that it leaves extents and means alone, makes a gap in plots and stands as
/// "nan" in the exported track. The position is the exception: a submerged vehicle has none for hours, and
/// its records belong where it was seen last, so the last known position is repeated. Records before the
/// first known position have NaN. `spare40` of a record tells the two apart, see `eRecFlags`. Depth and
/// altitude are never repeated: the seabed under a vehicle that goes on is not the one measured before.
///
/// Values that are not finite, positions outside ±90° and ±180°, fixes of quality 0 and payloads that are
/// damaged or of an unknown format count as not known. Compressed payloads are understood.
///
/// \code
/// ZrSurveyDataset dataset;
/// dataset.ReadFile(path); // or with ZrDatasetLoader, which does not keep the screen waiting
/// \endcode
///
/// One thread at a time, like its base.
class ZR_KIT_EXPORT ZrSurveyDataset : public ZrDataset
{
    Q_OBJECT
    // Counted up whenever `FillRec` fills records differently: indexes of another number are made anew.
    Q_CLASSINFO("filler", "1")

public:
    /// Bits of `ZrLogRec::spare40`.
    enum eRecFlags : u32
    {
        rfPositionKnown = 1, ///< latitude and longitude are numbers
        rfPositionHeld = 2 ///< they are those of an earlier moment, repeated here or by the vehicle itself
    };

    /// Navigation, {0, 16}.
    static CRecType DefaultIdxType() { return zr::rec_type(krtNavigation); }

    /// Fix, depth, motion, environment, vehicle, ping to port, ping to starboard, serial text: what places
    /// the vehicle first, then what it measures, then the raw lines. A seek replays them in this order.
    static std::array<CRecType, 8> DefaultCrdTypes();

    /// With the default types.
    ZrSurveyDataset();
    ZrSurveyDataset(CRecType indexType, std::array<CRecType, 8> coordinateTypes);

    /// Fills \p rec, which follows the last one of `recs`, from a navigation or fix item.
    void FillRec(ZrLogRec& rec, const ZrLogItemInf& inf, zr::span<u8> payload) override;
};
