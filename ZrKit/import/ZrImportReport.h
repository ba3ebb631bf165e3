#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrTypes.h"

#include <QMap>
#include <QString>
#include <QVector>

/// What an importer met in one file: what it took, what it left out and why.
///
/// Nothing in a report is fatal. Memory is bounded: of the issues only the first `MaxIssues` are kept in
/// words, `issueCount` counts them all.
struct ZR_KIT_EXPORT ZrImportReport
{
    static constexpr int MaxIssues = 200;

    /// One line or packet that could not be taken.
    struct Issue
    {
        u64 place = 0; ///< line number from 1 (`byLine`), otherwise byte offset
        QString text; ///< what is wrong, as a sentence a person understands
    };

    QString path;
    QString format; ///< name of the importer, e.g. "xtf"
    bool byLine = true; ///< places are line numbers (text files) rather than byte offsets
    u64 bytes = 0; ///< bytes read so far
    u64 records = 0; ///< lines or packets looked at
    u64 items = 0; ///< items handed out
    u64 issueCount = 0; ///< lines or packets left out because they are damaged
    QVector<Issue> issues;
    QMap<QString, u64>
        ignored; ///< understood to be sound but not decoded: kind ("XTF packet 42", "AIVDM") and count
    QMap<QString, u64> notes; ///< quirks of the data that were handled: sentence and count
    u64 backwards = 0; ///< items whose time lay before that of the item before them
    double firstTime = 0.0; ///< earliest item time, seconds since the epoch; meaningless while `items` is 0
    double lastTime = 0.0; ///< latest item time

    /// Counts a damaged line or packet and keeps its words while there is room.
    void AddIssue(u64 place, const QString& text);

    /// "line 12: …" or "offset 4480: …".
    QString IssueText(const Issue& issue) const;
};
