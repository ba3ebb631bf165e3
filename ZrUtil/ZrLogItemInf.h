#pragma once

#include "ZrUtil/ZrLogItem.h"
#include "ZrUtil/ZrRecType.h"
#include "ZrUtil/ZrTypes.h"

#include <QMetaType>

/// What a reader of a log hands on with each payload: the record type (`sub` and `type` of the base), its
/// source, its format and its time. A plain value, copied freely.
///
/// Whether the payload is compressed is not part of it: the receiver gets the payload as it is stored and
/// knows from the record type what to expect.
/// Comparing two of these compares their record types alone, as the base does.
struct ZrLogItemInf : CRecType
{
    u16 source = 0; ///< the 16-bit source identifier given to `ZrLogger::LogData`
    u16 format = 0; ///< the 16-bit qualifier given to `ZrLogger::LogData`
    double time = 0.0; ///< seconds since 1970-01-01T00:00:00 UTC

    ZrLogItemInf() = default;

    explicit ZrLogItemInf(const ZrLogItem& item)
        : CRecType(item.sub, item.type)
        , source(item.source)
        , format(item.format)
        , time(item.time)
    {
    }
};

Q_DECLARE_METATYPE(ZrLogItemInf)
