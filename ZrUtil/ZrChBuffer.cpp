#include "ZrUtil/ZrChBuffer.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

void ZrChBuffer::InitBuffer(int newWidth, int newLines)
{
    const std::lock_guard<std::mutex> guard(mutex);
    width = 0;
    lines = 0;
    if (newWidth <= 0 || newLines <= 0) {
        std::vector<u8>().swap(data);
        std::vector<ZrChEntry>().swap(entries);
        return;
    }
    const auto count = static_cast<std::size_t>(newLines);
    data.assign(static_cast<std::size_t>(newWidth) * count, 0x0F);
    entries.assign(count, ZrChEntry{});
    width = newWidth;
    lines = newLines;
    next = 0;
    dirty = 1;
}

ZrChEntry* ZrChBuffer::AddData(double time, int n, u8* bytes)
{
    const std::lock_guard<std::mutex> guard(mutex);
    const int length = std::min(width, n);
    if (next < 0 || next >= lines || length <= 0)
        return nullptr;
    const auto line = static_cast<std::size_t>(next);
    std::memcpy(
        data.data() + line * static_cast<std::size_t>(width), bytes, static_cast<std::size_t>(length));
    ZrChEntry& entry = entries[line];
    entry.time = static_cast<float>(time);
    dirty = 1;
    next = (next + 1) % lines;
    return &entry;
}
