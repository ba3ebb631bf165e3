#include "ZrKit/import/ZrImportWindow.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstring>

bool ZrImportWindow::Open(const QString& path, QString* error)
{
    m_file.setFileName(path);
    if (!m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        *error = QCoreApplication::translate("ZrImportWindow", "%1: cannot be read: %2")
                     .arg(path, m_file.errorString());
        return false;
    }
    m_size = static_cast<u64>(m_file.size());
    return true;
}

const u8* ZrImportWindow::At(u64 offset, u32 count)
{
    if (offset > m_size || count > m_size - offset)
        return nullptr;
    const u64 held = static_cast<u64>(m_block.size());
    if (offset < m_begin || offset - m_begin > held || count > held - (offset - m_begin)) {
        const u32 wanted = static_cast<u32>(std::min<u64>(std::max(count, BlockSize), m_size - offset));
        m_begin = offset;
        m_block.resize(static_cast<int>(wanted));
        if (!ReadTo(offset, m_block.data(), wanted)) {
            m_block.clear();
            return nullptr;
        }
    }
    return reinterpret_cast<const u8*>(m_block.constData()) + (offset - m_begin);
}

bool ZrImportWindow::Peek(u64 offset, u8* out, u32 count)
{
    if (offset > m_size || count > m_size - offset)
        return false;
    const u64 held = static_cast<u64>(m_block.size());
    if (offset >= m_begin && offset - m_begin <= held && count <= held - (offset - m_begin)) {
        std::memcpy(out, m_block.constData() + (offset - m_begin), count);
        return true;
    }
    return ReadTo(offset, reinterpret_cast<char*>(out), count);
}

bool ZrImportWindow::ReadTo(u64 offset, char* out, u32 count)
{
    if (!m_file.seek(static_cast<qint64>(offset)))
        return false;
    for (u32 have = 0; have < count;) {
        const qint64 got = m_file.read(out + have, count - have);
        if (got <= 0)
            return false;
        have += static_cast<u32>(got);
    }
    return true;
}
