#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QDateTime>
#include <QString>

/// Names of the logs of a recording.
///
/// "survey_20210303_140509.log" as `ZrLogger::OpenLog` makes it, "survey_20210303_140509_001.log" and so on
/// for parts. A name that is taken, as after two starts within a second, gets a number,
/// "survey_20210303_140509-2.log": nothing is ever overwritten. Any thread.
class ZR_KIT_EXPORT ZrLogName
{
public:
    /// The name without part and suffix, of which no log is in \p dir yet.
    static QString Stem(const QString& dir, const QString& prefix, const QDateTime& time);

    /// \p part from 1; 0 for a log without parts.
    static QString Of(const QString& stem, int part);
};
