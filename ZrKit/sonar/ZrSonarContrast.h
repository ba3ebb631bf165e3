#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <vector>

/// The range of sample values that an image shows from black to white, and the mapping to 8 bits.
///
/// \code
/// ZrSonarContrast contrast;
/// for (all samples shown)
///     contrast.Add(samples);
/// contrast.Measure();
/// contrast.Map(samples, bytes);
/// \endcode
///
/// The bytes are those of `SonarDataPkt`: by default its range too (one sample in 10,000 lies outside at each
/// end, the value 0 not counted) and its grey mapping, ((v − lo) / (hi − lo))^gamma × 256 with a gamma of
/// 0.6. A share of its own may be cut away instead: speckle has few, very bright samples. (Unlike there,
/// measuring again does not move the range a part of the way: it is that of all that was added.)
///
/// A `clip` that is not a number or below 0 counts as 0, one above 0.5 as 0.5; a `gamma` that is not a
/// positive finite number as 0.6. Black at or above white makes a step: nothing lies between them.
///
/// `Map` in any number of threads while nothing is measured or set.
class ZR_KIT_EXPORT ZrSonarContrast
{
public:
    ZrSonarContrast();

    double clip = 0.0001; ///< share of the samples outside the range at each end, 0 to 0.5
    double gamma = 0.6; ///< below 1 lifts what is dark; taken over by `Measure` and `SetRange`

    /// Counts samples for `Measure`.
    void Add(zr::span<const u16> samples);

    /// Sets the range from what was added since this object was made; it stays when that was nothing but
    /// zeros.
    void Measure();

    void SetRange(float lo, float hi); ///< by hand; ignored when either is not finite

    float Lo() const { return m_lo; }

    float Hi() const { return m_hi; }

    /// \p out gets as many bytes as \p in has samples, at most its size.
    void Map(zr::span<const u16> in, zr::span<u8> out) const;

private:
    void FillTable();

    float m_lo = 0.0F;
    float m_hi = 65535.0F;
    std::vector<u64> m_counts; ///< one for each sample value
    std::vector<u8> m_table; ///< byte of each sample value
};
