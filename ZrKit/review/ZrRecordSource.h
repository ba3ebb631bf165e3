#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrLogRec.h"

#include <QString>

#include <cstddef>
#include <vector>

/// The records of a log, read piece by piece: those of a long one need not be in memory at once.
///
/// \code
/// std::vector<ZrLogRec> records;
/// for (std::size_t i = 0; i < source.Count(); i += ZrRecordSource::AtOnce) {
///     if (!source.Read(i, i + ZrRecordSource::AtOnce, records))
///         return source.Error();
///     …
/// }
/// \endcode
///
/// One thread at a time.
class ZR_KIT_EXPORT ZrRecordSource
{
public:
    static constexpr std::size_t AtOnce = 4096; ///< a piece that costs little memory and few calls

    virtual ~ZrRecordSource();

    virtual std::size_t Count() const = 0;

    /// Replaces \p records by those from \p first up to the one before \p end, as far as there are any.
    /// False, with the reason in `Error` and no records, when they cannot be read.
    virtual bool Read(std::size_t first, std::size_t end, std::vector<ZrLogRec>& records) = 0;

    virtual QString Error() const { return QString(); } ///< a sentence
};
