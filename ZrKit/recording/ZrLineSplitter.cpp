#include "ZrKit/recording/ZrLineSplitter.h"

#include <utility>

void ZrLineSplitter::Add(char c)
{
    if (m_tooLong)
        return;
    if (m_line.size() < MaxLine) {
        m_line += c;
        return;
    }
    m_tooLong = true;
    ++m_dropped;
    m_line.clear();
}

QByteArray ZrLineSplitter::Rest()
{
    m_tooLong = false;
    return std::exchange(m_line, QByteArray());
}

QByteArrayList ZrLineSplitter::Feed(const QByteArray& bytes)
{
    QByteArrayList lines;
    for (const char c : bytes) {
        if (c != '\n' && c != '\r') {
            Add(c);
            continue;
        }
        const QByteArray line = Rest();
        if (!line.isEmpty())
            lines += line;
    }
    return lines;
}
