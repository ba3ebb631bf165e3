#include "ZrKit/recording/ZrSourceWatch.h"

#include <cmath>

void ZrSourceWatch::Clear()
{
    m_arrivals.Clear();
    m_bytes.Clear();
    m_trouble.clear();
}

void ZrSourceWatch::Lose(const QString& reason, double now)
{
    m_trouble = reason;
    m_lostAt = now;
}

ZrSourceFacts ZrSourceWatch::Look(const ZrRecordingSession& session)
{
    return Look(session.Source(), session.SourceText(), session.News(), session.Now());
}

ZrSourceFacts ZrSourceWatch::Look(
    ZrRecordingSession::eSource source, const QString& text, const ZrRecordingNews& news, double now)
{
    ZrSourceFacts facts;
    facts.isText = news.lineCount > 0;
    facts.badLines = news.damagedLines + news.droppedLines;
    facts.age = now - news.state.lastData;
    facts.positionAge = news.state.latitude.Age(now);
    m_arrivals.Look(now, facts.isText ? news.lineCount - news.damagedLines : news.recordCount);
    m_bytes.Look(now, news.byteCount);
    facts.perSecond = m_arrivals.PerSecond(now);
    facts.bytesPerSecond = m_bytes.PerSecond(now);
    // Not the last of what came before, however short ago that was.
    if (news.state.lastData > m_lostAt)
        m_trouble.clear();
    switch (source) {
    case ZrRecordingSession::sourceNone:
        facts.state = ZrSourceFacts::none;
        break;
    case ZrRecordingSession::sourceOpening:
        facts.state = ZrSourceFacts::opening;
        break;
    case ZrRecordingSession::sourceFailed:
        facts.state = ZrSourceFacts::failed;
        facts.reason = text;
        break;
    case ZrRecordingSession::sourceFinished:
        facts.state = ZrSourceFacts::finished;
        break;
    case ZrRecordingSession::sourceOpen:
        facts.reason = m_trouble;
        facts.state = OfOpen(facts);
        break;
    }
    return facts;
}

ZrSourceFacts::eState ZrSourceWatch::OfOpen(const ZrSourceFacts& facts) const
{
    if (!m_trouble.isEmpty())
        return ZrSourceFacts::troubled;
    if (std::isfinite(facts.age))
        return facts.age > ZrLiveValue::StaleAfter ? ZrSourceFacts::silent : ZrSourceFacts::receiving;
    return facts.badLines >= LeastBadLines ? ZrSourceFacts::unreadable : ZrSourceFacts::waiting;
}
