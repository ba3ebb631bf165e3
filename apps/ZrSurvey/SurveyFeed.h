#pragma once

#include "ZrKit/recording/ZrSourceFacts.h"

#include <QObject>
#include <QString>

/// Whether the source of the vehicle's data gives any, as the page "Record", which has it, tells it to the
/// others; and the way to ask for it to be opened.
class SurveyFeed : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    const ZrSourceFacts& Facts() const { return m_facts; }

    ZrSourceFacts::eState State() const { return m_facts.state; }

    QString Text() const { return TextOf(m_facts); }

    /// \param key of the source, see `SourceMaker::Key`: nothing is known of another one
    void Set(const QString& key, const ZrSourceFacts& facts);

    QString Key() const { return m_key; }

    void Want() { Q_EMIT Wanted(); } ///< asks for the source of the settings to be opened

    /// "receiving 12 sentences/s"; ages by minutes, for a page to which nothing comes to draw no more often
    static QString TextOf(const ZrSourceFacts& facts);

Q_SIGNALS:
    void Changed(); ///< what is told
    void Wanted();

private:
    QString m_key;
    ZrSourceFacts m_facts;
};
