#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QByteArray>
#include <QString>

namespace zr {

/// Makes \p bytes the content of the file \p path in one step: until it is complete, and after a failure, the
/// file is what it was, or not there. A device or a pipe stays one, and is written to.
///
/// False with "PATH: reason" in \p error (may be null). Any thread; of two at the same time one wins.
ZR_KIT_EXPORT bool replace_file(const QString& path, const QByteArray& bytes, QString* error);

} // namespace zr
