#pragma once

// What the tests of opened recordings share: logs of records, with events and without.

#include "ZrKit/records/ZrFixRecord.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrSonarTestLog.h"
#include "ZrUtil/ZrLogEvt.h"

#include <QTemporaryDir>

#include <cmath>
#include <limits>
#include <memory>

namespace survey_recording {

using sonar_test::Log;
using sonar_test::SonarLine;

const double unknown = std::numeric_limits<double>::quiet_NaN();

inline bool IsNear(double a, double b, double within)
{
    return std::fabs(a - b) <= within;
}

inline ZrNavRecord Nav(double lat, double lng)
{
    ZrNavRecord nav;
    nav.latitude = lat;
    nav.longitude = lng;
    nav.depth = 10.0F;
    return nav;
}

inline void AddFix(Log& log, int number)
{
    ZrFixRecord fix;
    fix.latitude = 44.0 + number * 1e-5;
    fix.longitude = -63.0;
    log.AddItem(ZrFixRecord::RecType, 0, ZrFixRecord::Format, sonar_test::startTime + number, fix.Encode());
}

inline void AddEvent(Log& log, double time, const QString& text)
{
    ZrLogEvt evt(time, esUser, text);
    QByteArray bytes;
    evt.Save(bytes);
    log.AddItem(rtEvent, 0, 0, time, bytes);
}

/// 20 records of a type, navigation, fixes or pings, a second apart, with events at 0, 8 and 16.
inline void AddWithEvents(Log& log, int type)
{
    for (int i = 0; i < 20; ++i) {
        const double time = sonar_test::startTime + i;
        if (type == ZrFixRecord::RecType)
            AddFix(log, i);
        else if (type == ZrNavRecord::RecType)
            log.AddNav(time, Nav(44.0 + i * 1e-5, -63.0));
        else
            log.AddPing(time, SonarLine().PingOf(i, sidePort));
        if (i % 8 == 0)
            AddEvent(log, time, QStringLiteral("event %1").arg(i));
    }
}

inline bool WriteWithEvents(const QString& path, int type)
{
    Log log(path);
    AddWithEvents(log, type);
    return log.Commit();
}

/// What each test function begins with: an empty folder.
class Folder
{
protected:
    void Begin() { m_folder = std::make_unique<QTemporaryDir>(); }

    QString File(const char* name) const { return m_folder->filePath(QString::fromUtf8(name)); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

} // namespace survey_recording
