#pragma once

#include "ZrUtil/ZrTypes.h"

#include <QJsonValue>
#include <QString>

/// How values look, on every system and in every locale alike.
namespace cli {

/// Seconds since 1970-01-01 UTC as ISO 8601 with milliseconds, "2021-03-03T14:05:09.000Z". "-" when not
/// finite, and the bare number of seconds when the year does not have four digits.
QString time_text(double seconds);

/// Seconds as "1 h 02 min 03.456 s", with days in front when there are any.
QString duration_text(double seconds);

/// "512 bytes", "1.2 GiB".
QString size_text(u64 bytes);

/// The readable and the exact count: "1.2 GiB (1288490188 bytes)".
QString size_text_both(u64 bytes);

/// "1 item", "2 items".
QString count_text(u64 count, const char* singular, const char* plural);

/// The number, or null when it is not finite.
QJsonValue json_number(double value);

/// The count; exact up to 2^53.
QJsonValue json_count(u64 value);

} // namespace cli
