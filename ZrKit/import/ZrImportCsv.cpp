#include "ZrKit/import/ZrImportCsv.h"

#include <QCoreApplication>
#include <QLatin1String>

#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace {

constexpr int MaxQuoted = 32; // characters of a bad field that a report repeats

QStringList namesOf(const QByteArray& row)
{
    QStringList names;
    for (const QByteArray& name : row.split(';'))
        names.append(QString::fromUtf8(name.trimmed()));
    while (!names.isEmpty() && names.last().isEmpty())
        names.removeLast();
    return names;
}

std::string_view trimmed(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string_view::npos)
        return std::string_view();
    return text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

} // namespace

QStringList ZrImportCsv::HeaderNames(const QByteArray& head)
{
    const QByteArray text = head.startsWith("\xEF\xBB\xBF") ? head.mid(3) : head;
    for (int begin = 0; begin < text.size();) {
        int end = begin;
        while (end < text.size() && text.at(end) != '\n' && text.at(end) != '\r')
            ++end;
        if (end > begin)
            return namesOf(text.mid(begin, end - begin));
        begin = end + 1;
    }
    return QStringList();
}

bool ZrImportCsv::OpenTable(const QString& path, const QStringList& required, QString* error)
{
    m_report.path = path;
    m_report.byLine = true;
    if (!m_lines.Open(path, error))
        return false;
    while (m_headerRow.isEmpty() && m_lines.Next())
        m_headerRow = QByteArray(m_lines.Text().constData(), m_lines.Text().size());
    m_names = namesOf(m_headerRow);
    for (const QString& name : required) {
        if (Column(name) < 0) {
            *error
                = QCoreApplication::translate("ZrImportCsv", "%1: the first line does not name a column %2")
                      .arg(path, name);
            return false;
        }
    }
    m_report.bytes = m_lines.Position();
    return true;
}

int ZrImportCsv::Column(const QString& name) const
{
    for (int i = 0; i < m_names.size(); ++i) {
        if (m_names.at(i).compare(name, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

bool ZrImportCsv::NextRow()
{
    while (m_lines.Next()) {
        m_report.bytes = m_lines.Position();
        if (m_lines.Text().isEmpty() && !m_lines.TooLong())
            continue;
        ++m_report.records;
        m_fault.clear();
        m_remarks.clear();
        if (m_lines.TooLong()) {
            Spoil(QCoreApplication::translate("ZrImportCsv", "longer than %1 bytes")
                      .arg(ZrImportLines::MaxLine));
        } else if (m_lines.Text() == m_headerRow) {
            Note(QCoreApplication::translate("ZrImportCsv", "the header row is repeated"));
            continue;
        } else {
            SplitRow();
            if (HasRightCount())
                return true;
            Spoil(QCoreApplication::translate("ZrImportCsv", "%1 fields where %2 are expected")
                      .arg(m_fields.size())
                      .arg(m_names.size()));
        }
        RowIsSound();
    }
    m_report.bytes = m_lines.Position();
    if (m_lines.Failed())
        m_report.AddIssue(m_lines.Number() + 1,
            QCoreApplication::translate("ZrImportCsv", "the file cannot be read any further"));
    return false;
}

void ZrImportCsv::SplitRow()
{
    const QByteArray& line = m_lines.Text();
    std::string_view rest(line.constData(), static_cast<std::size_t>(line.size()));
    m_fields.clear();
    for (;;) {
        const std::size_t end = rest.find(';');
        m_fields.push_back(trimmed(rest.substr(0, end)));
        if (end == std::string_view::npos)
            break;
        rest.remove_prefix(end + 1);
    }
    const std::size_t expected = static_cast<std::size_t>(m_names.size());
    while (m_fields.size() > expected && m_fields.back().empty())
        m_fields.pop_back();
}

bool ZrImportCsv::HasRightCount() const
{
    return m_fields.size() == static_cast<std::size_t>(m_names.size());
}

std::string_view ZrImportCsv::Text(int column) const
{
    return column < 0 ? std::string_view() : m_fields[static_cast<std::size_t>(column)];
}

double ZrImportCsv::Number(int column)
{
    std::string_view text = Text(column);
    if (text.empty())
        return std::numeric_limits<double>::quiet_NaN();
    if (text.size() > 1 && text.front() == '+' && text[1] != '-')
        text.remove_prefix(1);
    double value = 0.0;
    const char* end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, value);
    constexpr double Largest = std::numeric_limits<float>::max();
    if (result.ec == std::errc() && result.ptr == end && std::fabs(value) <= Largest)
        return value;
    Spoil(QCoreApplication::translate("ZrImportCsv", "%1 is no number").arg(Quoted(column)));
    return std::numeric_limits<double>::quiet_NaN();
}

u32 ZrImportCsv::Count(int column)
{
    const double value = Number(column);
    if (std::isnan(value))
        return 0;
    if (value >= 0.0 && value <= 4294967295.0 && value == std::floor(value))
        return static_cast<u32>(value);
    Spoil(QCoreApplication::translate("ZrImportCsv", "%1 is no whole number of 32 bits").arg(Quoted(column)));
    return 0;
}

void ZrImportCsv::Spoil(const QString& fault)
{
    if (m_fault.isEmpty())
        m_fault = fault;
}

QString ZrImportCsv::Quoted(int column) const
{
    const std::string_view text = Text(column);
    QString shown = QString::fromUtf8(text.data(), static_cast<int>(text.size())).left(MaxQuoted);
    for (QChar& c : shown) {
        if (!c.isPrint())
            c = QLatin1Char('?');
    }
    return QStringLiteral("%1 \"%2\"").arg(m_names.value(column), shown);
}

bool ZrImportCsv::RowIsSound()
{
    if (!m_fault.isEmpty()) {
        m_report.AddIssue(m_lines.Number(), m_fault);
        return false;
    }
    for (const QString& remark : m_remarks)
        Note(remark);
    return true;
}
