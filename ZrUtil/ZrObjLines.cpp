#include "ZrUtil/ZrObjLines.h"

#include <QIODevice>

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t blockSize = 256 * 1024;
constexpr std::string_view mark = "\xEF\xBB\xBF"; ///< of UTF-8

bool IsStatement(std::string_view word)
{
    return word == "v" || word == "vt" || word == "vn" || word == "f" || word == "o";
}

} // namespace

ZrObjLines::ZrObjLines(QIODevice& device)
    : m_device(device)
    , m_buffer(blockSize)
{
}

bool ZrObjLines::Next(std::string_view& line)
{
    std::size_t searched = m_begin;
    for (;;) {
        const void* at = std::memchr(m_buffer.data() + searched, '\n', m_end - searched);
        if (at) {
            const auto end = static_cast<std::size_t>(static_cast<const char*>(at) - m_buffer.data());
            line = std::string_view(m_buffer.data() + m_begin, end - m_begin);
            m_begin = end + 1;
            break;
        }
        if (!Fill(searched)) {
            if (m_begin == m_end)
                return false;
            line = std::string_view(m_buffer.data() + m_begin, m_end - m_begin);
            m_begin = m_end;
            break;
        }
    }
    if (m_number++ == 0 && line.substr(0, mark.size()) == mark)
        line.remove_prefix(mark.size());
    return true;
}

std::string_view ZrObjLines::FirstWord(std::string_view line)
{
    std::size_t begin = 0;
    while (begin < line.size() && line[begin] == ' ')
        ++begin;
    std::size_t end = begin;
    while (end < line.size() && line[end] != ' ')
        ++end;
    return line.substr(begin, end - begin);
}

/// Appends a block to what is held, which becomes the begin of the buffer; \p added is where the block
/// begins. The buffer grows when one line fills it, if that is a statement.
bool ZrObjLines::Fill(std::size_t& added)
{
    std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
    m_end -= m_begin;
    m_begin = 0;
    if (m_end == m_buffer.size())
        Shorten();
    if (m_end == m_buffer.size())
        m_buffer.resize(2 * m_buffer.size());
    added = m_end;
    char* block = m_buffer.data() + m_end;
    const qint64 size = m_device.read(block, static_cast<qint64>(m_buffer.size() - m_end));
    if (size <= 0)
        return false;
    char* end = block + size;
    if (std::memchr(block, '\r', static_cast<std::size_t>(size)))
        end = std::remove(block, end, '\r');
    m_end += static_cast<std::size_t>(end - block);
    return true;
}

/// Makes a comment of the begin of a long line that is to be ignored, and one blank of many.
void ZrObjLines::Shorten()
{
    std::string_view line(m_buffer.data(), m_end);
    if (m_number == 0 && line.substr(0, mark.size()) == mark)
        line.remove_prefix(mark.size());
    const std::string_view statement = FirstWord(line);
    if (IsStatement(statement))
        return;
    m_buffer[0] = statement.empty() ? ' ' : '#';
    m_end = 1;
}
