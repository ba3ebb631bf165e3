#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QString>

/// A number of bytes for people: three digits and a unit, "12.4" and "MB". Thousands, not 1024s. Any thread.
///
/// \code
/// const ZrByteText size = ZrByteText::Of(static_cast<double>(session.Status().bytes));
/// tile->Set(size.value, size.unit); // or size.Text() in a line: "12.4 MB"
/// \endcode
struct ZR_KIT_EXPORT ZrByteText
{
    QString value; ///< empty for a number that is not known: below 0 or not finite
    QString unit; ///< "B", "kB", "MB", "GB", "TB", translated

    static ZrByteText Of(double bytes);

    QString Text() const { return value.isEmpty() ? QString() : value + QLatin1Char(' ') + unit; }
};
