#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sonar/ZrSonarTarget.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

#include <vector>

/// Writes sonar targets with position and size for other programs.
///
/// \code
/// ZrTargetFile file;
/// if (!file.Write(targets, path))
///     return file.Error();
/// \endcode
///
/// By the suffix of the file: `.csv`, a table of name, time (UTC, ISO 8601), latitude, longitude (degrees,
/// WGS 84), side, ping, sample, slant_range, ground_range, altitude, length, width, height (metres) and
/// remark;
/// `.geojson` or `.json`, a feature for each target with the same properties and, where the position is
/// known, a point. What is not known is empty there and null here. The file is replaced in one step or stays
/// as it was. One thread at a time.
class ZR_KIT_EXPORT ZrTargetFile
{
    Q_DECLARE_TR_FUNCTIONS(ZrTargetFile)

public:
    /// False, with a sentence in `Error`, for another suffix and when the file cannot be written.
    bool Write(const std::vector<ZrSonarTarget>& targets, const QString& path);

    QString Error() const { return m_error; }

    static QByteArray Csv(const std::vector<ZrSonarTarget>& targets);
    static QByteArray GeoJson(const std::vector<ZrSonarTarget>& targets);

private:
    QString m_error;
};
