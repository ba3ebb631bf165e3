#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/import/ZrImportItem.h"
#include "ZrKit/import/ZrImportReport.h"

#include <QDate>
#include <QString>
#include <QStringList>

#include <memory>

/// Wishes that a file itself cannot answer.
struct ZrImportOptions
{
    QDate date; ///< UTC date of data that carry only a time of day; invalid: from the data or the file's own
                ///< date
    u16 source = 0; ///< 16-bit source identifier written into every item of the file
};

/// Reads one foreign file and hands out log items one at a time, in constant memory.
///
/// \code
/// QString error;
/// std::unique_ptr<ZrImporter> in = ZrImporter::Create(path, QStringLiteral("auto"), {}, &error);
/// ZrImportItem item;
/// while (in && in->Next(item)) { … }
/// \endcode
///
/// A damaged line or packet is counted and described in the report and then passed over; it never ends the
/// import. One thread at a time; different importers are independent of each other.
class ZR_KIT_EXPORT ZrImporter
{
public:
    virtual ~ZrImporter();
    ZrImporter(const ZrImporter&) = delete;
    ZrImporter& operator=(const ZrImporter&) = delete;

    /// The names `Create` knows besides "auto": "xtf", "glider", "nmea", "gnss".
    static QStringList Formats();

    /// The importer for \p path, opened. \p format is one of `Formats`, or "auto" to choose by content.
    ///
    /// Null, with a sentence in \p error, when the file cannot be read, the name is unknown, or no format
    /// fits.
    static std::unique_ptr<ZrImporter> Create(
        const QString& path, const QString& format, const ZrImportOptions& options, QString* error);

    /// Fills \p item with the next item; false at the end of the file.
    virtual bool Next(ZrImportItem& item) = 0;

    /// Bytes of the file, for progress (`Report().bytes` of them have been read).
    virtual u64 FileSize() const = 0;

    const ZrImportReport& Report() const { return m_report; }

protected:
    ZrImporter() = default;

    /// Opens the file; false with a sentence in \p error.
    virtual bool Open(const QString& path, const ZrImportOptions& options, QString* error) = 0;

    /// Book-keeping of every item handed out: counts, extent of times, steps backwards.
    void Account(const ZrImportItem& item);

    ZrImportReport m_report;

private:
    double m_previousTime = 0.0;
};
