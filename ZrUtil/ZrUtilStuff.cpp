#include "ZrUtil/ZrTypes.h"
#include "ZrUtil/ZrUtil.h"

#include <QtAlgorithms>
#include <QtEndian>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

// Both directions work a machine word at a time where the data allow it. Frames are often full of zeros,
// often without any, so each of the two has its own fast way and neither costs the other much.

namespace {

constexpr std::ptrdiff_t fullCode = 255; // 254 data bytes, no zero after them
constexpr std::size_t wordSize = sizeof(u64);
constexpr u64 eachByte01 = 0x0101010101010101;
constexpr u64 eachByte7F = 0x7F7F7F7F7F7F7F7F;
constexpr u64 eachByte80 = 0x8080808080808080;

/// From this many data bytes on a block is likely to go on, and searching its end pays.
constexpr std::ptrdiff_t longRun = 16;
static_assert(longRun + static_cast<std::ptrdiff_t>(wordSize) < fullCode);

/// 0x80 in each byte of the result whose byte in \p word is zero, 0x00 in the others.
u64 ZeroBytes(u64 word)
{
    return ~(((word & eachByte7F) + eachByte7F) | word | eachByte7F);
}

/// The output side of the encoder. The code of the open block is the distance from its code position to
/// `out`.
struct Stuffer
{
    u8* codePos;
    u8* out;

    std::ptrdiff_t Code() const { return out - codePos; }

    /// Closes the block at `out`, which becomes the code position of the next one.
    void Close()
    {
        *codePos = static_cast<u8>(Code());
        codePos = out++;
    }

    /// One input byte; it must not fill the block.
    void Put(u8 byte)
    {
        if (byte == 0)
            Close();
        else
            *out++ = byte;
    }

    /// Eight input bytes at once; they must not fill the block.
    ///
    /// Each of them takes one output byte, a data byte itself and a zero byte the code position of the next
    /// block. So the word is copied whole, and the codes are put where the zeros are.
    void PutWord(const u8* in)
    {
        u64 zeros = ZeroBytes(qFromLittleEndian<quint64>(in));
        if (zeros == eachByte80) {
            // Seven empty blocks, and the code position of an eighth, which gets its own code when it is
            // closed.
            *codePos = static_cast<u8>(Code());
            std::memcpy(out, &eachByte01, wordSize);
            codePos = out + (wordSize - 1);
        } else {
            std::memcpy(out, in, wordSize);
            for (; zeros != 0; zeros &= zeros - 1) {
                u8* const zero = out + qCountTrailingZeroBits(zeros) / 8;
                *codePos = static_cast<u8>(zero - codePos);
                codePos = zero;
            }
        }
        out += wordSize;
    }

    /// The rest of the block, at most \p available input bytes of it. Returns how many were taken.
    std::size_t PutRun(const u8* in, std::size_t available)
    {
        const std::size_t room = std::min(static_cast<std::size_t>(fullCode - Code()), available);
        const void* const zero = std::memchr(in, 0, room);
        const std::size_t count = zero ? static_cast<std::size_t>(static_cast<const u8*>(zero) - in) : room;
        std::memcpy(out, in, count);
        out += count;
        if (zero || Code() == fullCode)
            Close();
        return count + (zero ? 1 : 0);
    }
};

/// Copies \p count bytes, which may overlap. Short blocks are the usual ones, and a library call for each
/// would cost more than the copy; both ends are loaded before anything is stored.
void CopyBlock(u8* out, const u8* in, std::size_t count)
{
    if (count > 2 * wordSize) {
        std::memmove(out, in, count);
    } else if (count >= wordSize) {
        u64 head, tail;
        std::memcpy(&head, in, sizeof head);
        std::memcpy(&tail, in + count - sizeof tail, sizeof tail);
        std::memcpy(out, &head, sizeof head);
        std::memcpy(out + count - sizeof tail, &tail, sizeof tail);
    } else if (count >= sizeof(u32)) {
        u32 head, tail;
        std::memcpy(&head, in, sizeof head);
        std::memcpy(&tail, in + count - sizeof tail, sizeof tail);
        std::memcpy(out, &head, sizeof head);
        std::memcpy(out + count - sizeof tail, &tail, sizeof tail);
    } else if (count > 0) {
        const u8 head = in[0], middle = in[count / 2], tail = in[count - 1];
        out[0] = head;
        out[count / 2] = middle;
        out[count - 1] = tail;
    }
}

/// Whether the next eight of \p available bytes are eight empty blocks.
bool EightEmptyBlocks(const u8* in, std::size_t available)
{
    return available >= wordSize && std::memcmp(in, &eachByte01, wordSize) == 0;
}

} // namespace

void ZrUtil::StuffData(const unsigned char* src, unsigned int len, unsigned char* dst)
{
    // An input whose end lies beyond the address range counts as empty.
    if (reinterpret_cast<std::uintptr_t>(src) > std::numeric_limits<std::uintptr_t>::max() - len)
        len = 0;

    Stuffer stuffer{dst, dst + 1};
    std::size_t i = 0;
    while (i < len) {
        // Only the run fills blocks: it takes all there is of one, and the other two work on short ones.
        if (stuffer.Code() > longRun) {
            i += stuffer.PutRun(src + i, len - i);
        } else if (len - i >= wordSize) {
            stuffer.PutWord(src + i);
            i += wordSize;
        } else {
            stuffer.Put(src[i++]);
        }
    }

    // The byte between the last block and the terminator is left as it was.
    *stuffer.codePos = static_cast<u8>(stuffer.Code());
    stuffer.out[1] = 0;
}

void ZrUtil::UnStuffData(const unsigned char* src, unsigned int len, unsigned char* dst)
{
    const u8* const end = src + len;
    while (src != end && *src != 0) {
        const u8 code = *src;
        if (code == 1) {
            if (EightEmptyBlocks(src, static_cast<std::size_t>(end - src))) {
                std::memset(dst, 0, wordSize);
                dst += wordSize;
                src += wordSize;
            } else {
                *dst++ = 0;
                ++src;
            }
            continue;
        }

        ++src;
        const std::size_t wanted = code - 1u;
        const std::size_t count = std::min(wanted, static_cast<std::size_t>(end - src));
        CopyBlock(dst, src, count);
        dst += count;
        src += count;
        // No zero follows a block that the input cuts off.
        if (count == wanted && code < fullCode)
            *dst++ = 0;
    }
}
