#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrLogItemInf.h"
#include "ZrUtil/ZrSpan.h"

#include <QJsonValue>
#include <QString>

#include <vector>

/// One field of a decoded payload for a person or a program to read.
///
/// Digits of `text`: latitude and longitude 7 (a centimetre), metres, m/s, volts and dilutions 2, other
/// angles, temperatures, frequencies and mechanical positions 1, pascals 0; coded values give their meaning
/// ("port"). `value` is a number, a text of valid Unicode or null, never NaN or infinite; a value stored in
/// binary32 is the shortest decimal that means it (12.6, not 12.600000381).
struct ZrRecordField
{
    QString name; ///< e.g. "latitude"; the member's name in the record's own class
    QString text; ///< the value with the digits that make sense, without its unit; "-" when not known
    QString unit; ///< e.g. "°", "m"; empty when there is none
    QJsonValue value; ///< the value itself; null when not known
};

namespace zr {

/// The fields of \p payload (decompressed already) by the record type in \p inf: serial text, mission plans,
/// events and the records of the kit. Of a ping all but its samples.
///
/// Empty, with a sentence in \p error (may be null), when type, sub-type or format are not known or the
/// payload does not fit them. Bytes behind the fields are not looked at. The payload is only read during the
/// call. Pure: any thread.
ZR_KIT_EXPORT std::vector<ZrRecordField> record_fields(
    const ZrLogItemInf& inf, zr::span<u8> payload, QString* error);

} // namespace zr
