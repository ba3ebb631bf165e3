#include "apps/ZrSurvey/SurveyRecording.h"

#include "ZrKit/review/ZrTimeText.h"

#include <QDateTime>

#include <algorithm>
#include <cmath>

namespace {

/// Weight of the newest rate, for the time that is left not to flicker.
constexpr double newest = 0.1;

} // namespace

void SurveyRecording::Set(const ZrRecorder::Status& status)
{
    m_status = status;
    if (status.bytesPerSecond > 0.0)
        m_lastRate = status.bytesPerSecond;
    const bool wasOn = m_isOn;
    m_isOn = true;
    if (!wasOn) {
        Dismiss();
        Q_EMIT Switched(true);
    }
    Q_EMIT Changed();
}

void SurveyRecording::End()
{
    if (!m_isOn)
        return;
    m_isOn = false;
    Q_EMIT Switched(false);
    Q_EMIT Changed();
}

QString SurveyRecording::ElapsedText() const
{
    const auto seconds = static_cast<qint64>(std::max(m_status.seconds, 0.0));
    return QStringLiteral("%1:%2:%3")
        .arg(seconds / 3600)
        .arg(seconds / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

QString SurveyRecording::TimeNow()
{
    const double now = static_cast<double>(QDateTime::currentMSecsSinceEpoch()) * 1e-3;
    return tr("%1 UTC").arg(ZrTimeText::Clock(now));
}

void SurveyRecording::Tell(const Notice& notice)
{
    m_notice = notice;
    Q_EMIT NoticeChanged();
    Q_EMIT Changed();
}

void SurveyRecording::Dismiss()
{
    if (!m_notice.text.isEmpty())
        Tell(Notice());
}

void SurveyRecording::SetSourceRate(double rate)
{
    const bool isFirst = !(m_sourceRate > 0.0) || !(rate > 0.0);
    m_sourceRate = isFirst ? std::max(rate, 0.0) : m_sourceRate + newest * (rate - m_sourceRate);
}

void SurveyRecording::SetEarlierRate(double rate)
{
    m_earlierRate = std::isfinite(rate) ? rate : 0.0;
}

ZrSpaceLeft SurveyRecording::Left(qint64 freeBytes, qint64 stopBelow) const
{
    ZrSpaceLeft::Rates rates;
    rates.recording = m_isOn ? m_status.bytesPerSecond : -1.0;
    rates.source = m_sourceRate;
    rates.last = m_lastRate > 0.0 ? m_lastRate : m_earlierRate;
    return ZrSpaceLeft::Of(freeBytes, stopBelow, rates);
}
