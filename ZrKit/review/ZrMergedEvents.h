#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrLogEvt.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <vector>

/// Which of the events that a log holds were taken over into its event file, kept beside that as log path +
/// ".evt.json".
///
/// One that was taken over and is no longer there has been removed, or is another one by an edit, and does
/// not come back when the log is scanned again: because it has grown, say, or for want of an index. It counts
/// together with the event file alone: without that all events of the log are new, see `ZrEventFile::Merged`.
///
/// A plain value; one thread at a time.
class ZR_KIT_EXPORT ZrMergedEvents
{
public:
    static QString PathOf(const QString& logPath);

    /// What makes two events the same: the uid or, of one without, time and text.
    static QString Identity(const ZrLogEvt& evt);

    /// Reads those of \p logPath. False, and there are none, when the file is missing or not understood.
    bool Read(const QString& logPath);

    /// Writes them, over what was there, in one step. False with the reason in \p error (may be null).
    bool Write(const QString& logPath, QString* error) const;

    bool IsEmpty() const { return m_counts.isEmpty(); }

    /// How many events that are the same as \p evt were taken over.
    int Count(const ZrLogEvt& evt) const;

    /// Whether \p found, the events that a log holds, were all taken over.
    bool HasAll(const std::vector<ZrLogEvt>& found) const;

    /// Adds those of \p found that are not among them; of several equal ones as many as there are.
    void Add(const std::vector<ZrLogEvt>& found);

private:
    QHash<QByteArray, int> m_counts; ///< by digest of the identity
};
