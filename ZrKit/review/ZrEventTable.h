#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrLogEvt.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

#include <vector>

/// Events as a table for other programs: `time,source,code,uid,text,detail` (RFC 4180, UTF-8).
///
/// \code
/// QString error;
/// if (!ZrEventTable::Write(events, path, &error))
///     warn(error);
/// \endcode
///
/// Times are ISO 8601, UTC, to the millisecond; one that is not known is empty. Any thread.
class ZR_KIT_EXPORT ZrEventTable
{
    Q_DECLARE_TR_FUNCTIONS(ZrEventTable)

public:
    static QByteArray Heading(); ///< the first line, with its end

    static QByteArray Line(const ZrLogEvt& evt); ///< likewise, of one event

    /// Writes \p events in the order given; the file takes its place in one step. False, with a sentence in
    /// \p error (may be null) and what was there as it was, when it cannot be written or there are none.
    static bool Write(const std::vector<ZrLogEvt>& events, const QString& path, QString* error = nullptr);

    /// \p text as one field: in quotes where it needs them, without what text files do not hold.
    static QString Field(const QString& text);
};
