#pragma once

#include <QObject>
#include <QString>

/// Whether the source of the vehicle's data gives any, as the page "Record", which has it, tells it to the
/// others; and the way to ask for it to be opened.
class SurveyFeed : public QObject
{
    Q_OBJECT

public:
    enum eState : int
    {
        none = 0,
        opening = 1,
        waiting = 2, ///< open, and nothing has come yet
        receiving = 3,
        silent = 4, ///< nothing for too long
        unreadable = 5, ///< what comes is no data
        troubled = 6, ///< is tried again and again
        finished = 7,
        failed = 8
    };

    /// What is known of a source. Rates and ages that are not known are NaN.
    struct Facts
    {
        eState state = none;
        double perSecond = 0.0;
        bool isText = false; ///< sentences come, not records
        double age = 0.0; ///< seconds since the last of them
        quint64 badLines = 0;
        QString reason; ///< of a failure or a trouble, a sentence
    };

    using QObject::QObject;

    eState State() const { return m_facts.state; }

    QString Text() const { return TextOf(m_facts); }

    /// \param key of the source, see `SourceMaker::Key`: nothing is known of another one
    void Set(const QString& key, const Facts& facts);

    QString Key() const { return m_key; }

    void Want() { Q_EMIT Wanted(); } ///< asks for the source of the settings to be opened

    /// "receiving 12 sentences/s"
    static QString TextOf(const Facts& facts);

    static bool IsBad(eState state); ///< something is wrong that a person could put right

Q_SIGNALS:
    void Changed(); ///< what is told
    void Wanted();

private:
    QString m_key;
    Facts m_facts;
};
