#pragma once

#include "ZrKit/import/ZrImportLines.h"
#include "ZrKit/import/ZrImportQueue.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <string_view>
#include <vector>

/// Base of the importers of tables: fields between semicolons, the first line names the columns.
///
/// Columns are found by name (upper and lower case alike), so their order does not matter and unknown ones
/// are ignored; a separator at the end of a line makes no field. Lines that repeat the header row, as in
/// files that were joined, are passed over with a note. Not part of the interface for applications.
class ZrImportCsv : public ZrImportQueue
{
public:
    u64 FileSize() const override { return m_lines.Length(); }

    /// The names in the first line of \p head that is not empty, the first bytes of a file.
    static QStringList HeaderNames(const QByteArray& head);

protected:
    /// Opens \p path and reads the header row. False, with a sentence in \p error, when one of \p required is
    /// not named there.
    bool OpenTable(const QString& path, const QStringList& required, QString* error);

    /// Number of the column \p name for the functions below; -1 when there is none.
    int Column(const QString& name) const;

    /// Goes to the next row that has the right number of fields; false at the end of the file.
    bool NextRow();

    /// The field of the row without surrounding spaces; empty when \p column is -1.
    std::string_view Text(int column) const;

    /// The field as a number; NaN when it is empty or \p column is -1. A field that is no number, or one
    /// that the single precision of the records cannot hold, spoils the row.
    double Number(int column);

    /// As above for fields that are whole numbers of 32 bits; 0 when there is none.
    u32 Count(int column);

    /// Says what is wrong with the row; of several faults the first one counts.
    void Spoil(const QString& fault);

    /// Says what was odd about the row and handled; it becomes a note when the row turns out to be sound.
    void Remark(const QString& text) { m_remarks.append(text); }

    /// Names the field with its column, for use in a fault: `Depth "abc"`.
    QString Quoted(int column) const;

    /// True while nothing spoiled the row; otherwise the row is counted as an issue.
    bool RowIsSound();

private:
    void SplitRow();
    bool HasRightCount() const;

    ZrImportLines m_lines;
    QByteArray m_headerRow;
    QStringList m_names;
    std::vector<std::string_view> m_fields; ///< of the current row; they point into `m_lines`
    QString m_fault; ///< of the current row
    QStringList m_remarks; ///< on the current row
};
