#include "apps/ZrSurvey/SurveyFeed.h"

#include <cmath>

void SurveyFeed::Set(const QString& key, const ZrSourceFacts& facts)
{
    const bool isSame = key == m_key && facts.state == m_facts.state && TextOf(facts) == Text();
    m_key = key;
    m_facts = facts;
    if (!isSame)
        Q_EMIT Changed();
}

QString SurveyFeed::TextOf(const ZrSourceFacts& facts)
{
    QString text;
    switch (facts.state) {
    case ZrSourceFacts::none:
        return tr("no source");
    case ZrSourceFacts::opening:
        return tr("opening …");
    case ZrSourceFacts::waiting:
        return tr("waiting for data");
    case ZrSourceFacts::finished:
        return tr("at its end");
    case ZrSourceFacts::unreadable:
        return facts.isText ? tr("unreadable: no NMEA sentence in %1 lines").arg(facts.badLines)
                            : tr("unreadable");
    case ZrSourceFacts::troubled:
    case ZrSourceFacts::failed:
        return facts.reason;
    case ZrSourceFacts::silent:
        text = facts.age < 60.0 ? tr("silent")
                                : tr("silent for %1 min").arg(static_cast<int>(facts.age / 60.0));
        break;
    case ZrSourceFacts::receiving:
        if (facts.LacksPosition())
            text = tr("receiving, no position");
        else if (!std::isfinite(facts.perSecond))
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
