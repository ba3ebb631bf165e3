#include "ZrKit/import/ZrImportLines.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstddef>

bool ZrImportLines::Open(const QString& path, QString* error)
{
    m_file.setFileName(path);
    if (!m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        *error = QCoreApplication::translate("ZrImportLines", "%1: cannot be read: %2")
                     .arg(path, m_file.errorString());
        return false;
    }
    m_size = static_cast<u64>(m_file.size());
    m_line.reserve(MaxLine);
    if (Fill() && m_block.startsWith("\xEF\xBB\xBF"))
        m_at = 3;
    return true;
}

bool ZrImportLines::Next()
{
    m_line.resize(0);
    m_tooLong = false;
    SkipSecondHalfOfLineEnd();
    bool any = false;
    while (m_at < m_block.size() || Fill()) {
        any = true;
        const char* begin = m_block.constData() + m_at;
        const char* end = m_block.constData() + m_block.size();
        const char* stop = std::find_if(begin, end, [](char c) { return c == '\n' || c == '\r'; });
        Take(begin, stop);
        m_at += static_cast<int>(stop - begin);
        if (stop != end) {
            ++m_at;
            m_afterCr = *stop == '\r';
            break;
        }
    }
    if (any)
        ++m_number;
    return any;
}

bool ZrImportLines::Fill()
{
    m_at = 0;
    m_block.resize(BlockSize);
    const qint64 got = m_file.read(m_block.data(), BlockSize);
    m_failed = m_failed || got < 0;
    m_block.resize(static_cast<int>(std::max<qint64>(got, 0)));
    m_read += static_cast<u64>(m_block.size());
    return !m_block.isEmpty();
}

void ZrImportLines::SkipSecondHalfOfLineEnd()
{
    // The two halves of a CR LF may lie in different blocks.
    if (m_afterCr && (m_at < m_block.size() || Fill()) && m_block.at(m_at) == '\n')
        ++m_at;
    m_afterCr = false;
}

void ZrImportLines::Take(const char* begin, const char* end)
{
    if (m_tooLong)
        return;
    if (end - begin > static_cast<std::ptrdiff_t>(MaxLine - m_line.size())) {
        m_tooLong = true;
        m_line.resize(0);
        return;
    }
    m_line.append(begin, static_cast<int>(end - begin));
}
