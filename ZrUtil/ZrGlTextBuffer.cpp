#include "ZrUtil/ZrGlTextBuffer.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

ZrGlTextBuffer::~ZrGlTextBuffer()
{
    std::free(m_data);
}

float* ZrGlTextBuffer::Grow(int more)
{
    constexpr int most = std::numeric_limits<int>::max() / FloatsPerChar;
    if (more < 1 || more > most - m_count)
        return nullptr;
    const int needed = m_count + more;
    if (needed > m_room) {
        // Twice as much each time: texts are added one by one.
        const int room = std::max(needed, m_room > most / 2 ? needed : m_room * 2);
        const std::size_t bytes = static_cast<std::size_t>(room) * FloatsPerChar * sizeof(float);
        auto* data = static_cast<float*>(std::realloc(m_data, bytes));
        if (!data)
            return nullptr;
        m_data = data;
        m_room = room;
    }
    return m_data + static_cast<std::size_t>(m_count) * FloatsPerChar;
}

void ZrGlTextBuffer::Clear()
{
    m_count = 0;
}
