#pragma once

#include "ZrUtil/ZrTypes.h"

#include <QByteArray>
#include <QFile>
#include <QString>

/// A view of any part of a file that is read block by block. Not part of the interface for applications.
class ZrImportWindow
{
public:
    static constexpr u32 BlockSize = 65536; ///< bytes read at least

    /// Opens \p path; false with a sentence in \p error.
    bool Open(const QString& path, QString* error);

    u64 Length() const { return m_size; } ///< bytes of the file when it was opened

    /// The \p count bytes at \p offset, valid until the next call; null when the file does not hold them. The
    /// caller keeps \p count in bounds: a buffer of that size may be allocated once the file is known to hold
    /// as much.
    const u8* At(u64 offset, u32 count);

    /// Copies a few bytes without moving the view: for glances at far-off places.
    bool Peek(u64 offset, u8* out, u32 count);

private:
    bool ReadTo(u64 offset, char* out, u32 count);

    QFile m_file;
    QByteArray m_block;
    u64 m_begin = 0; ///< offset of the first byte of `m_block`
    u64 m_size = 0;
};
