#include "CliTable.h"

#include <algorithm>

namespace {

const QString gap = QStringLiteral("  ");

QString WithoutTrailingBlanks(QString line)
{
    while (line.endsWith(QLatin1Char(' ')))
        line.chop(1);
    return line;
}

} // namespace

CliTable::CliTable(const QStringList& titles)
{
    QStringList row;
    for (const QString& title : titles) {
        const bool right = title.startsWith(QLatin1Char('>'));
        m_right << right;
        row << (right ? title.mid(1) : title);
    }
    m_rows << row;
}

void CliTable::Row(const QStringList& cells)
{
    m_rows << cells;
}

QStringList CliTable::Lines() const
{
    QVector<int> widths(m_right.size(), 0);
    for (const QStringList& row : m_rows) {
        for (int i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    }
    QStringList lines;
    for (const QStringList& row : m_rows) {
        QStringList cells;
        for (int i = 0; i < row.size(); ++i)
            cells << (m_right[i] ? row[i].rightJustified(widths[i]) : row[i].leftJustified(widths[i]));
        lines << WithoutTrailingBlanks(cells.join(gap));
    }
    return lines;
}
