#pragma once

#include "ZrUtil/ZrExport.h"

/// The vertices of texts laid out by `ZrGlSurface::ZrglAddText`, drawn by `ZrglRenderText`.
///
/// Each character takes `FloatsPerChar` floats: two triangles of x, y, s, t. The array is allocated by
/// `realloc`. One thread at a time.
class ZR_UTIL_EXPORT ZrGlTextBuffer
{
public:
    static constexpr int FloatsPerChar = 24;

    float* m_data = nullptr; ///< `m_count` × `FloatsPerChar` floats
    int m_count = 0; ///< characters

    ZrGlTextBuffer() = default;
    ~ZrGlTextBuffer();
    ZrGlTextBuffer(const ZrGlTextBuffer&) = delete;
    ZrGlTextBuffer& operator=(const ZrGlTextBuffer&) = delete;

    /// Makes room for \p more characters behind the last one and returns where they go, without counting
    /// them; null, and all stays, when there is no memory or \p more is below 1.
    float* Grow(int more);

    void Clear(); ///< no characters; the memory is kept

private:
    int m_room = 0; ///< characters that the array holds
};
