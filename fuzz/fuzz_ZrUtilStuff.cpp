// Byte stuffing: what was stuffed holds no zero inside and comes back unchanged; any bytes can be unstuffed.

#include "ZrUtil/ZrUtil.h"

#include <cstdlib>
#include <cstring>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const unsigned length = static_cast<unsigned>(size);
    std::vector<unsigned char> frame(size + size / 254 + 3, 0xEE);
    ZrUtil::StuffData(data, length, frame.data());
    // The frame ends at the last code's block: the first byte that was left unwritten or is zero.
    std::size_t end = 0;
    std::size_t decoded = 0;
    while (decoded < size + 1) {
        const unsigned char code = frame[end];
        if (code == 0)
            std::abort();
        end += code;
        decoded += code - 1u + (code < 255 ? 1u : 0u);
        if (code == 255 && decoded == size)
            break;
    }
    std::vector<unsigned char> back(size + frame.size() + 2, 0);
    ZrUtil::UnStuffData(frame.data(), static_cast<unsigned>(end), back.data());
    if (size != 0 && std::memcmp(back.data(), data, size) != 0)
        std::abort();
    ZrUtil::UnStuffData(data, length, std::vector<unsigned char>(2 * size + 2).data());
    return 0;
}
