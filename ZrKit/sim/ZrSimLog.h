#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrTypes.h"

#include <QString>

#include <atomic>

class IZrProgress;
class ZrSimSurvey;

/// Writes a simulated survey into a log, as fast as possible or at a multiple of real time.
///
/// \code
/// ZrSimSurvey survey(route, settings);
/// ZrSimLog log;
/// if (log.Write(survey, path, nullptr) != ZrSimLog::Done)
///     return log.Error();
/// \endcode
///
/// The log is written by `ZrLogWriter`: it takes its place, and replaces another one, when it is complete.
/// Times are simulated, that of the header is the start of the survey. Any thread; `cancel` may be set from
/// another one or a signal handler.
class ZR_KIT_EXPORT ZrSimLog
{
public:
    enum eResult : int
    {
        Done, ///< the log is in place
        Incomplete, ///< the log is in place, but the vehicle did not come to the end: see `Error`
        BadPlan, ///< there is nothing to simulate; nothing was written
        BadOutput, ///< the log cannot be written
        Cancelled ///< `cancel` was set; nothing was replaced
    };

    double factor = 0.0; ///< times faster than real time; 0 or less, or NaN: without waiting
    bool compress = false; ///< store the payloads of pings compressed
    std::atomic<bool> cancel{false}; ///< ends the writing soon; never cleared here

    ZrSimLog() = default;
    ZrSimLog(const ZrSimLog&) = delete;
    ZrSimLog& operator=(const ZrSimLog&) = delete;

    /// Takes all records of \p survey. \p progress is told each whole percent of the way; may be null.
    eResult Write(ZrSimSurvey& survey, const QString& path, IZrProgress* progress);

    QString Error() const { return m_error; } ///< a sentence unless all was done

    u64 Items() const { return m_items; }

    u64 Pings() const { return m_pings; } ///< port and starboard count as one

    u64 Bytes() const { return m_bytes; } ///< of the log

    double Duration() const { return m_duration; } ///< seconds from the first to the last record, simulated

private:
    eResult Fail(eResult result, const QString& error);

    QString m_error;
    u64 m_items = 0;
    u64 m_pings = 0;
    u64 m_bytes = 0;
    double m_duration = 0.0;
};
