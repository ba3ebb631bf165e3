#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrRecType.h"
#include "ZrUtil/ZrTypes.h"

#include <QByteArray>
#include <QString>

#include <array>

class ZrDataset;
class ZrRecordSource;

/// What an index file (log path + ".zri") was made from, kept beside it as log path + ".zri.json".
///
/// The index file itself names its record types and no more. The stamp says which log it belongs to, by size
/// and digest, which table, by a digest too, and which class filled the records. So an index is noticed that
/// belongs to another log of the same name, to the log before it grew, or to a dataset that decodes less. No
/// times of files are compared: they change when a folder is copied.
///
/// The digest of a log covers its size, its first and its last 64 KiB: it takes no time, and a log is never
/// changed in its middle alone by recording. That of a table covers up to 64 records, spread evenly.
struct ZR_KIT_EXPORT ZrIndexStamp
{
    u64 logSize = 0; ///< bytes of the log that were scanned
    QByteArray logDigest;
    u32 records = 0;
    QByteArray tableDigest;
    QString filler; ///< see `FillerOf`
    int logEvents = 0; ///< events that the log itself holds
    bool complete = true; ///< the log ended cleanly
    QString error; ///< else why not
    u64 errorPos = 0; ///< and the position of the item that cannot be read

    static QString IndexPathOf(const QString& logPath);
    static QString PathOf(const QString& logPath);

    /// SHA-1 of the first \p size bytes of the log, as said above; empty when it cannot be read or is
    /// shorter.
    static QByteArray DigestOfLog(const QString& logPath, u64 size);

    static QByteArray DigestOfTable(const ZrDataset& dataset);

    /// The same; empty when the records cannot be read.
    static QByteArray DigestOfTable(ZrRecordSource& records);

    /// The class of \p dataset with the number that it gives its way of filling records, by
    /// Q_CLASSINFO("filler", "…").
    static QString FillerOf(const ZrDataset& dataset);

    /// Reads the stamp of \p logPath. False when there is none or it cannot be understood.
    bool Read(const QString& logPath);

    /// Writes it, over what was there, in one step. False with the reason in \p error.
    bool Write(const QString& logPath, QString* error) const;

    /// Whether the log is the one that was scanned, unchanged.
    bool IsOf(const QString& logPath) const;

    /// The record types that the header of the index file names; false, and nothing changed, when there is no
    /// index file of the known version.
    static bool TypesOf(const QString& logPath, CRecType& idxType, std::array<CRecType, 8>& crdTypes);
};
