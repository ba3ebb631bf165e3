#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/recording/ZrArrivalRate.h"
#include "ZrKit/recording/ZrRecordingSession.h"
#include "ZrKit/recording/ZrSourceFacts.h"

/// Watches the source of a recording session: whether it gives data, how many, and what is wrong.
///
/// \code
/// connect(&session, &ZrRecordingSession::SourceLost, this,
///     [this](const QString& why) { m_watch.Lose(why, session.Now()); });
/// connect(&session, &ZrRecordingSession::SourceBack, this,
///     [this] { m_watch.Lose(QString(), session.Now()); });
/// ...
/// const ZrSourceFacts facts = m_watch.Look(session); // twice a second
/// if (facts.IsBad()) // silent and unreadable sources have no reason
///     m_button->text = facts.reason.isEmpty() ? tr("No data") : facts.reason;
/// else
///     m_button->text = tr("%1 /s").arg(facts.perSecond);
/// \endcode
///
/// The thread of the session.
class ZR_KIT_EXPORT ZrSourceWatch
{
public:
    /// So many lines that are no sentences, and not one that is, tell of a wrong speed or a foreign language.
    static constexpr quint64 LeastBadLines = 3;

    void Clear(); ///< another source is opened

    /// The connection is lost, for \p reason, or back when that is empty; what comes after \p now, seconds of
    /// the clock of the session, ends a loss as well.
    void Lose(const QString& reason, double now);

    ZrSourceFacts Look(const ZrRecordingSession& session);

    /// \param now seconds of the clock that the times of \p news are of
    /// \param text of the source: why it failed
    ZrSourceFacts Look(
        ZrRecordingSession::eSource source, const QString& text, const ZrRecordingNews& news, double now);

private:
    ZrSourceFacts::eState OfOpen(const ZrSourceFacts& facts) const;

    ZrArrivalRate m_arrivals;
    ZrArrivalRate m_bytes;
    QString m_trouble;
    double m_lostAt = 0.0; ///< when it was told
};
