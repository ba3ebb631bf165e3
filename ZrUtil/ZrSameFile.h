#pragma once

#include "ZrUtil/ZrExport.h"

#include <QString>

namespace zr {

/// True when both paths lead to one existing file, through links of either kind too.
///
/// Whoever writes a file made from another asks first: opening the output would empty the input.
ZR_UTIL_EXPORT bool is_same_file(const QString& a, const QString& b);

} // namespace zr
