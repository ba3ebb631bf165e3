#pragma once

#include "ZrUtil/ZrTypes.h"

#include <QByteArray>
#include <QFile>
#include <QString>

/// Reads a text file line by line in constant memory.
///
/// Lines end with LF, CR LF or CR, the last one perhaps with nothing; a byte-order mark at the beginning is
/// passed over. Of a line longer than `MaxLine` bytes only its length is looked at. Not part of the interface
/// for applications.
class ZrImportLines
{
public:
    static constexpr int MaxLine = 4096; ///< bytes
    static constexpr int BlockSize = 65536; ///< bytes read at once

    /// Opens \p path; false with a sentence in \p error.
    bool Open(const QString& path, QString* error);

    /// Goes to the next line; false when there is none.
    bool Next();

    /// The line without its end; empty when it is too long. Valid until the next call of `Next`.
    const QByteArray& Text() const { return m_line; }

    bool TooLong() const { return m_tooLong; } ///< the line exceeds `MaxLine`

    u64 Number() const { return m_number; } ///< number of the line, from 1

    u64 Position() const { return m_read - static_cast<u64>(m_block.size() - m_at); } ///< bytes passed so far

    u64 Length() const { return m_size; } ///< bytes of the file when it was opened

    bool Failed() const { return m_failed; } ///< the file could not be read to its end

private:
    bool Fill();
    void SkipSecondHalfOfLineEnd();
    void Take(const char* begin, const char* end);

    QFile m_file;
    QByteArray m_block;
    QByteArray m_line;
    int m_at = 0; ///< first byte of `m_block` that was not looked at
    u64 m_read = 0; ///< bytes read from the file
    u64 m_size = 0;
    u64 m_number = 0;
    bool m_tooLong = false;
    bool m_afterCr = false; ///< a LF that comes next belongs to the line before
    bool m_failed = false;
};
