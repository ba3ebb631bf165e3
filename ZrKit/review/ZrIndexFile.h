#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/review/ZrIndexHeader.h"
#include "ZrKit/review/ZrRecordSource.h"
#include "ZrUtil/ZrSpan.h"

#include <QCoreApplication>
#include <QFile>

#include <memory>

class ZrDataset;

/// An index file (log path + ".zri") read and written piece by piece, with no more than a piece in memory.
///
/// Its bytes are those that `ZrDataset::WriteIndex` makes. Whether an index belongs to its log is not looked
/// at here; `ZrDatasetReader::Index` does.
///
/// \code
/// ZrIndexFile index;
/// if (!index.Open(ZrIndexStamp::IndexPathOf(log), dataset) || !index.Read(1000, 1100, records))
///     return index.Error();
/// \endcode
///
/// A new one is a temporary file, without a name where the system has such, until it is moved to its place in
/// one step. One thread at a time; several objects may read one file.
class ZR_KIT_EXPORT ZrIndexFile final : public ZrRecordSource
{
    Q_DECLARE_TR_FUNCTIONS(ZrIndexFile)

public:
    ZrIndexFile();
    ~ZrIndexFile() override;

    /// Opens \p path for reading. False, with the reason in `Error`, when it cannot be read, is damaged or
    /// its record types are not those of \p types.
    bool Open(const QString& path, const ZrDataset& types);

    /// Begins a file in \p folder for records of the types of \p types, which goes with this object.
    bool Create(const QString& folder, const ZrDataset& types);

    /// Adds \p records to it. False, with the reason in `Error`, when it does not take them all.
    bool Append(zr::span<const ZrLogRec> records);

    /// Completes the file and puts it in the place of \p path, readable for whom \p log is. False, with the
    /// reason in `Error`, and \p path is as it was, when that cannot be.
    bool MoveTo(const QString& path, const QString& log);

    /// Records that the file holds; 0 when none is open.
    std::size_t Count() const override { return m_header.count; }

    bool Read(std::size_t first, std::size_t end, std::vector<ZrLogRec>& records) override;

    QString Error() const override { return m_error; } ///< without the name of the file

private:
    bool Fail(const QString& reason);
    bool WriteHeader();

    std::unique_ptr<QFile> m_file;
    ZrIndexHeader m_header;
    std::vector<ZrLogRec> m_piece; ///< being written
    QString m_error;
};
