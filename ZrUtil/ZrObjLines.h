#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrTypes.h"

#include <cstddef>
#include <string_view>
#include <vector>

class QIODevice;

/// The lines of a Wavefront OBJ file, without their ends and, as in text mode, without any carriage return.
///
/// A mark of UTF-8 at the begin of the file is skipped. Of a line that fills the block of 256 KiB and is none
/// of the statements `v`, `vt`, `vn`, `f` and `o`, only "#" or a blank and its end are handed out, so that
/// lines which mean nothing take no memory. One thread at a time.
class ZR_UTIL_EXPORT ZrObjLines
{
public:
    /// Reads on in \p device, which is open and lives at least as long.
    explicit ZrObjLines(QIODevice& device);

    /// The next line, which lives until the call after it. False at the end, and where the device cannot be
    /// read on: its error tells which.
    bool Next(std::string_view& line);

    /// Of the last line, counted from 1; 0 before the first.
    u64 Number() const { return m_number; }

    /// The first of the words of \p line, which blanks part; empty when there are only blanks.
    static std::string_view FirstWord(std::string_view line);

private:
    bool Fill(std::size_t& added);
    void Shorten();

    QIODevice& m_device;
    std::vector<char> m_buffer;
    std::size_t m_begin = 0; ///< what is held and not handed out yet
    std::size_t m_end = 0;
    u64 m_number = 0;
};
