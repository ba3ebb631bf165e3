// A colour map of any bytes: it is read without harm, and again with the same colours behind the first ones.

#include "FuzzFile.h"
#include "ZrUtil/LqColourMap.h"

#include <cstdlib>
#include <cstring>

namespace {

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size)
{
    SilenceDebugOutput();
    const QString path = FuzzFile(data, size);
    LqColourMap map;
    map.ReadCMap(path);
    const int count = map.m_count;
    Require(count >= 0 && (count == 0) == (map.m_rgb == nullptr));
    // A colour takes at least three parts of ten words.
    Require(static_cast<std::size_t>(count) <= size / 21 + 1);
    map.ReadCMap(path);
    Require(map.m_count == 2 * count);
    const std::size_t bytes = 3 * static_cast<std::size_t>(count);
    Require(count == 0 || std::memcmp(map.m_rgb, map.m_rgb + bytes, bytes) == 0);
    return 0;
}
