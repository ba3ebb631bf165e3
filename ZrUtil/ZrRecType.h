#pragma once

#include "ZrUtil/ZrTypes.h"

/// Record types that the library itself knows; applications add their own numbers (0 to 65535) by
/// `static_cast<eRecordType>(n)` or by writing a `CRecType`.
enum eRecordType : int
{
    rtSerialText = 2, ///< Latin-1 text and a zero byte, written by `ZrLogger::LogSerStr`
    rtEvent = 3, ///< one event in its serial form
    rtMissionPlan = 70 ///< a mission plan as the text of a settings store
};

/// The key of a record type: a type and a sub-type of 16 bits each.
///
/// In memory `sub` (the low half) comes first. In a log file the halves stand apart, see `ZrLogItem`.
struct CRecType
{
    u16 sub = 0; ///< sub-type, the low half
    u16 type = 0; ///< record type, the high half

    constexpr CRecType() = default;

    constexpr CRecType(u16 subType, u16 recordType)
        : sub(subType)
        , type(recordType)
    {
    }

    /// {0, \p recordType}; implicit, so that a record type stands wherever a key is asked for.
    constexpr CRecType(eRecordType recordType)
        : type(static_cast<u16>(recordType))
    {
    }

    friend constexpr bool operator==(const CRecType& a, const CRecType& b)
    {
        return a.sub == b.sub && a.type == b.type;
    }

    friend constexpr bool operator!=(const CRecType& a, const CRecType& b) { return !(a == b); }
};

static_assert(sizeof(CRecType) == 4, "two 16-bit halves");
