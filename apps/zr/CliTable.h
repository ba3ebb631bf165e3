#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// A table of aligned columns as text. The width of a column is that of its longest cell.
class CliTable
{
public:
    /// Columns by title; a leading '>' aligns the column to the right.
    explicit CliTable(const QStringList& titles);

    /// Appends a row of as many cells as there are columns.
    void Row(const QStringList& cells);

    /// Title line and rows, without trailing blanks.
    QStringList Lines() const;

private:
    QVector<QStringList> m_rows; ///< the titles are the first
    QVector<bool> m_right;
};
