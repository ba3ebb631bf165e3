#include "apps/ZrSurvey/SurveyFeed.h"

#include <cmath>

void SurveyFeed::Set(const QString& key, const Facts& facts)
{
    const bool isSame = key == m_key && facts.state == m_facts.state && TextOf(facts) == Text();
    m_key = key;
    m_facts = facts;
    if (!isSame)
        Q_EMIT Changed();
}

bool SurveyFeed::IsBad(eState state)
{
    return state == silent || state == unreadable || state == troubled || state == failed;
}

QString SurveyFeed::TextOf(const Facts& facts)
{
    QString text;
    switch (facts.state) {
    case none:
        return tr("no source");
    case opening:
        return tr("opening …");
    case waiting:
        return tr("waiting for data");
    case finished:
        return tr("at its end");
    case unreadable:
        return facts.isText ? tr("unreadable: no NMEA sentence in %1 lines").arg(facts.badLines)
                            : tr("unreadable");
    case troubled:
    case failed:
        return facts.reason;
    case silent:
        text = tr("silent for %1 s").arg(facts.age, 0, 'f', 0);
        break;
    case receiving:
        if (!std::isfinite(facts.perSecond))
            text = tr("receiving");
        else if (facts.isText)
            text
                = tr("receiving %1 sentences/s").arg(facts.perSecond, 0, 'f', facts.perSecond < 9.95 ? 1 : 0);
        else
            text = tr("receiving %1 records/s").arg(facts.perSecond, 0, 'f', facts.perSecond < 9.95 ? 1 : 0);
        break;
    }
    return facts.badLines > 0 ? tr("%1, %2 bad lines").arg(text).arg(facts.badLines) : text;
}
