#include "ZrKit/sim/ZrSimLog.h"

#include "ZrKit/recording/ZrLogWriter.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/sim/ZrSimSurvey.h"
#include "ZrUtil/IZrProgress.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

/// How soon a wish to cancel is heard.
constexpr double longestNap = 0.05; // seconds

/// Waits until \p moment, or until \p cancel is set.
void WaitFor(double seconds, Clock::time_point since, const std::atomic<bool>& cancel)
{
    while (!cancel) {
        const double passed = std::chrono::duration<double>(Clock::now() - since).count();
        if (passed >= seconds)
            return;
        std::this_thread::sleep_for(std::chrono::duration<double>(std::min(longestNap, seconds - passed)));
    }
}

} // namespace

ZrSimLog::eResult ZrSimLog::Fail(eResult result, const QString& error)
{
    m_error = error;
    return result;
}

ZrSimLog::eResult ZrSimLog::Write(ZrSimSurvey& survey, const QString& path, IZrProgress* progress)
{
    m_error.clear();
    m_items = m_pings = m_bytes = 0;
    m_duration = 0.0;
    if (!survey.IsValid())
        return Fail(BadPlan, survey.Message());
    ZrLogWriter log;
    if (!log.Open(path, survey.Settings().start))
        return Fail(BadOutput, log.Error());
    const Clock::time_point began = Clock::now();
    int shown = -1;
    ZrSimRecord record;
    while (!cancel && survey.Next(record)) {
        m_duration = record.time - survey.Settings().start;
        if (factor > 0.0)
            WaitFor(m_duration / factor, began, cancel);
        const bool isPing = record.type.type == static_cast<u16>(krtPing);
        if (isPing && record.type.sub == 0)
            ++m_pings;
        if (!log.Write(record.type, record.source, record.format, record.time, compress && isPing,
                zr::bytes_of(record.payload)))
            return Fail(BadOutput, log.Error());
        if (progress && survey.Percent() != shown) {
            shown = survey.Percent();
            progress->UpdateProgress(shown);
        }
    }
    if (cancel)
        return Fail(Cancelled, QCoreApplication::translate("ZrSimLog", "The simulation was cancelled"));
    m_items = log.Items();
    m_bytes = log.Bytes();
    if (!log.Commit())
        return Fail(BadOutput, log.Error());
    return survey.Message().isEmpty() ? Done : Fail(Incomplete, survey.Message());
}
