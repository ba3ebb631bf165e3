#pragma once

#include "ZrUtil/ZrExport.h"

#include <QString>

/// A list of RGB colours, read from a colour-map text file.
///
/// The array is allocated by `realloc`. Assignment is shallow: both maps then share one array, and only one
/// of them may release it — set `m_rgb` to null and `m_count` to 0 in the other before it goes. There is no
/// copy constructor, so that maps are not copied unawares by containers and results.
///
/// Not synchronised: one thread at a time.
class ZR_UTIL_EXPORT LqColourMap
{
public:
    unsigned char* m_rgb = nullptr; ///< `m_count` entries of red, green, blue; 0 ... 255 each
    int m_count = 0; ///< number of entries

    LqColourMap() = default;
    ~LqColourMap();

    LqColourMap(const LqColourMap&) = delete;

    /// Copies the pointer and the count; what this map held is not released.
    LqColourMap& operator=(const LqColourMap& other);

    /// Appends the colours of a file; those that the map already holds stay.
    ///
    /// A line with at least three parts between commas is an entry, when the first part has four words and
    /// the second and third have three each: `{ "r" : 12 , "g" : 34 , "b" : 56 , …`. The last words are the
    /// values: decimal integers, of which the low 8 bits are taken; 0 where a word is no number. Other lines
    /// are skipped without a message. A file that cannot be opened leaves the map as it was and is reported
    /// on the debug output, as is the number of entries after reading.
    void ReadCMap(QString path);

    /// Resizes the array to \p n entries; those beyond the former count are not defined. 0 and below
    /// release it.
    void SetSize(int n);
};
