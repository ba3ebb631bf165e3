#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/import/ZrImportReport.h"
#include "ZrKit/import/ZrImporter.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <atomic>
#include <memory>
#include <vector>

class IZrProgress;

/// Imports several foreign files into one log, merged by item time, in constant memory.
///
/// Each file is read once from front to back; of several files the item with the earliest time is taken next
/// (equal times: the file named first). The log is written by `ZrLogWriter`, so an existing output is
/// replaced only when all is done. Its header says the time of the first item. An input of no bytes at all is
/// passed over with a note; an output that is one of the inputs, under whatever name, is refused. May run on
/// any thread; `cancel` may be set from another.
class ZR_KIT_EXPORT ZrImportSession
{
public:
    enum eResult : int
    {
        Done, ///< the log is in place
        BadInput, ///< a file cannot be read or its format is unknown, or nothing at all could be imported
        BadOutput, ///< the log cannot be written
        Cancelled ///< `cancel` was set; nothing was replaced
    };

    QString format = QStringLiteral("auto"); ///< one of `ZrImporter::Formats` or "auto"
    QDate date; ///< see `ZrImportOptions`
    bool compress = false; ///< store the payloads of sonar pings compressed
    std::atomic<bool> cancel{false}; ///< ends the import; `Run` never clears it

    /// Imports \p inputs into \p output. The n-th file's items get source n, counted from 1. \p progress may
    /// be null.
    eResult Run(const QStringList& inputs, const QString& output, IZrProgress* progress);

    const QVector<ZrImportReport>& Reports() const { return m_reports; } ///< one per input, in their order

    QString Error() const { return m_error; } ///< why `Run` failed, a sentence

    u64 Items() const { return m_items; }

    u64 Bytes() const { return m_bytes; } ///< size of the log

private:
    bool OpenInputs(const QStringList& inputs, std::vector<std::unique_ptr<ZrImporter>>& importers);
    eResult Merge(const std::vector<std::unique_ptr<ZrImporter>>& importers, const QString& output,
        IZrProgress* progress);
    QString Paths() const;
    eResult Fail(eResult result, const QString& error);

    QVector<ZrImportReport> m_reports;
    QString m_error;
    u64 m_items = 0;
    u64 m_bytes = 0;
};
