#pragma once

#include "ZrUtil/ZrExport.h"

#include <QString>

namespace zr {

/// True when both paths lead to one existing file, through links of either kind too.
///
/// Whoever writes a file made from another asks first: opening the output would empty the input.
ZR_UTIL_EXPORT bool is_same_file(const QString& a, const QString& b);

/// False for an empty path and for one with a zero character in it: no file is called so, and Qt complains
/// aloud when it is asked to open one.
inline bool is_possible_path(const QString& path)
{
    return !path.isEmpty() && !path.contains(QChar(0));
}

} // namespace zr
