#include "ZrUtil/SonarDataPkt.h"

#include "ZrUtil/ZrEndian.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <memory>

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace {

/// Holds the lock of a packet.
class Guard
{
public:
    explicit Guard(SonarDataPkt& packet)
        : m_packet(packet)
    {
        m_packet.Lock();
    }

    ~Guard() { m_packet.Unlock(); }

    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

private:
    SonarDataPkt& m_packet;
};

constexpr double GreyGamma = 0.6;
constexpr double ColourGamma = 0.8;

/// What a mapping makes of one sample value.
struct Mapping
{
    float lo;
    float hi;
    double gamma;
    int steps; ///< by which the power is multiplied
    int last; ///< greatest index

    bool operator==(const Mapping& other) const
    {
        return lo == other.lo && hi == other.hi && gamma == other.gamma && steps == other.steps
            && last == other.last;
    }

    int operator()(u16 sample) const
    {
        const auto v = static_cast<float>(sample);
        if (v <= lo)
            return 0;
        if (v >= hi)
            return last;
        const double share = static_cast<double>(v - lo) / static_cast<double>(hi - lo);
        const double index = std::pow(share, gamma) * steps;
        // A range that is no number gives an index that is none.
        return std::isnan(index) ? 0 : static_cast<int>(std::clamp(index, 0.0, static_cast<double>(last)));
    }
};

/// What becomes of all sample values under the mapping that a thread used last. It costs as much as mapping
/// a few thousand samples one by one, since the index never falls as the sample grows: only the places where
/// it rises are searched for.
template <class Value> class Table
{
public:
    /// \p valueOf makes the value of an index.
    template <class ValueOf> void Make(const Mapping& mapping, ValueOf valueOf)
    {
        m_mapping = mapping;
        m_valid = true;
        Fill(0, mapping(0), 65535, mapping(65535), valueOf);
    }

    bool Holds(const Mapping& mapping) const { return m_valid && m_mapping == mapping; }

    const Value* Values() const { return m_values.data(); }

private:
    /// Fills from \p first to \p last, whose indices are known.
    template <class ValueOf>
    void Fill(std::size_t first, int firstIndex, std::size_t last, int lastIndex, ValueOf valueOf)
    {
        if (firstIndex == lastIndex) {
            std::fill(&m_values[first], &m_values[last] + 1, valueOf(firstIndex));
            return;
        }
        if (last - first == 1) {
            m_values[first] = valueOf(firstIndex);
            m_values[last] = valueOf(lastIndex);
            return;
        }
        const std::size_t middle = (first + last) / 2;
        const int middleIndex = m_mapping(static_cast<u16>(middle));
        Fill(first, firstIndex, middle, middleIndex, valueOf);
        Fill(middle, middleIndex, last, lastIndex, valueOf);
    }

    std::array<Value, 65536> m_values{};
    Mapping m_mapping{};
    bool m_valid = false;
};

/// The colours of all sample values, each in the order of its bytes in the image: blue, green, red.
class ColourTable
{
public:
    const u32* Of(const Mapping& mapping, const LqColourMap& map)
    {
        const std::size_t size = 3 * static_cast<std::size_t>(map.m_count);
        const bool same = m_table.Holds(mapping) && m_rgb.size() == size
            && std::memcmp(m_rgb.data(), map.m_rgb, size) == 0;
        if (!same) {
            m_rgb.assign(map.m_rgb, map.m_rgb + size);
            m_table.Make(mapping, [this](int index) {
                const u8* entry = &m_rgb[3 * static_cast<std::size_t>(index)];
                return static_cast<u32>(entry[2] | entry[1] << 8 | entry[0] << 16);
            });
        }
        return m_table.Values();
    }

private:
    std::vector<u8> m_rgb; ///< the map at that time
    Table<u32> m_table;
};

/// Counts of 32 bits are 256 KiB, too much for the cache next to the processor when the samples use all of
/// them. Whether they do is told from a few.
bool AreSpread(const u16* samples, int count)
{
    constexpr int looks = 256;
    constexpr int most = 140; // of 1024 ranges of 64 values; about as many as fill 48 KiB
    std::bitset<1024> seen;
    for (int i = 0; i < looks; ++i)
        seen.set(samples[static_cast<std::ptrdiff_t>(count / looks) * i] >> 6);
    return seen.count() > most;
}

/// Counts by bytes, which are carried over into \p hist when they run over: 64 KiB at a time.
void CountSpread(const u16* samples, int count, u32* hist)
{
    u8 low[65536] = {};
    const auto add = [&low, hist](u16 sample) {
        if (++low[sample] == 0)
            hist[sample] += 256;
    };
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        u64 four;
        std::memcpy(&four, samples + i, sizeof four);
        add(static_cast<u16>(four));
        add(static_cast<u16>(four >> 16));
        add(static_cast<u16>(four >> 32));
        add(static_cast<u16>(four >> 48));
    }
    for (; i < count; ++i)
        add(samples[i]);
    for (int v = 0; v < 65536; ++v)
        hist[v] += low[v];
}

void CountNarrow(const u16* samples, int count, u32* hist)
{
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        u64 four;
        std::memcpy(&four, samples + i, sizeof four);
        ++hist[four & 0xFFFF];
        ++hist[four >> 16 & 0xFFFF];
        ++hist[four >> 32 & 0xFFFF];
        ++hist[four >> 48];
    }
    for (; i < count; ++i)
        ++hist[samples[i]];
}

} // namespace

SonarDataPkt::SonarDataPkt()
{
    hdr.scale = 10.0F;
    TestImage();
}

void SonarDataPkt::ProcessPayload(int type, const SonarDataHdr& header, zr::span<u8> payload)
{
    if (type != 2)
        return;
    const Guard guard(*this);
    if (payload.size() != static_cast<std::size_t>(header.rows) * header.cols)
        return;
    image.assign(payload.begin(), payload.end());
    hdr = header;
    useRgb = false;
    newData = true;
}

void SonarDataPkt::CalcStats(u16* samples, int count)
{
    std::fill(std::begin(hist), std::end(hist), 0U);
    // Below that the clearing and adding of the bytes outweighs what they save.
    constexpr int many = 250000;
    if (count >= many && AreSpread(samples, count))
        CountSpread(samples, count, hist);
    else
        CountNarrow(samples, count, hist);

    const u64 outside = count > 0 ? static_cast<u64>(count) / 10000 : 0;
    int low = 0;
    u64 sum = 0;
    for (int v = 1; v < 65536 && low == 0; ++v) {
        sum += hist[v];
        if (sum > outside)
            low = v;
    }
    int high = 0;
    sum = 0;
    for (int v = 65535; v >= 0 && sum <= outside; --v) {
        sum += hist[v];
        if (sum > outside)
            high = v;
    }
    if (low == 0 && high == 0)
        return;
    if (lo == 0.0F && hi == 0.0F) {
        lo = static_cast<float>(low);
        hi = static_cast<float>(high);
        return;
    }
    // The upper bound takes a fifth of the new value and no share of the old one.
    lo = (lo * 4.0F + static_cast<float>(low)) / 5.0F;
    hi = static_cast<float>(high) / 5.0F;
}

void SonarDataPkt::ProcessDataImage(u16* in, u8* out, int count)
{
    // On the heap: a table within the thread's own storage would have its address computed for each sample.
    thread_local const auto table = std::make_unique<Table<u8>>();
    const Mapping mapping{lo, hi, GreyGamma, 256, 255};
    if (!table->Holds(mapping))
        table->Make(mapping, [](int index) { return static_cast<u8>(index); });
    const u8* grey = table->Values();
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        const u32 a = grey[in[i]];
        const u32 b = grey[in[i + 1]];
        const u32 c = grey[in[i + 2]];
        const u32 d = grey[in[i + 3]];
        zr::store_le(out + i, a | b << 8 | c << 16 | d << 24);
    }
    for (; i < count; ++i)
        out[i] = grey[in[i]];
}

void SonarDataPkt::ProcessRgbImage(u16* in, u8* out, int count)
{
    const LqColourMap& copper = palettes[1];
    if (count <= 0)
        return;
    if (copper.m_count <= 0) {
        std::fill(out, out + 3 * static_cast<std::ptrdiff_t>(count), u8{0});
        return;
    }
    thread_local const auto table = std::make_unique<ColourTable>();
    const u32* colours = table->Of({lo, hi, ColourGamma, copper.m_count, copper.m_count - 1}, copper);
    int i = 0;
    for (; i + 4 <= count; i += 4, out += 12) {
        const u64 a = colours[in[i]];
        const u64 b = colours[in[i + 1]];
        const u64 c = colours[in[i + 2]];
        const u64 d = colours[in[i + 3]];
        zr::store_le(out, a | b << 24 | c << 48);
        zr::store_le(out + 8, static_cast<u32>(c >> 16 | d << 8));
    }
    for (; i < count; ++i, out += 3) {
        const u32 colour = colours[in[i]];
        out[0] = static_cast<u8>(colour);
        out[1] = static_cast<u8>(colour >> 8);
        out[2] = static_cast<u8>(colour >> 16);
    }
}

void SonarDataPkt::BuildPalettes()
{
    constexpr const char* paths[] = {
        ":/jet.cmap.json", ":/copper.cmap.json", ":/cool.cmap.json", ":/green.cmap.json", ":/hot.cmap.json"};
    for (std::size_t i = 0; i < std::size(paths); ++i) {
        palettes[i].SetSize(0);
        palettes[i].ReadCMap(QString::fromLatin1(paths[i]));
    }
}

void SonarDataPkt::TestImage()
{
    constexpr int size = 256;
    const Guard guard(*this);
    hdr.rows = size;
    hdr.cols = size;
    image.assign(size * size, 0);
    rgbImage.assign(size * size * 3, 0);
    for (std::size_t i = 0; i < image.size(); ++i) {
        const auto row = static_cast<u8>(i / size);
        image[i] = row;
        rgbImage[3 * i] = row;
    }
    for (int c = 0; c < size; ++c)
        hdr.colPos[c] = static_cast<i16>(c * 12800 / size - 6400);
    newData = true;
}

bool SonarDataPkt::HasNewData()
{
    const Guard guard(*this);
    return newData;
}

bool SonarDataPkt::UseRgb()
{
    const Guard guard(*this);
    return useRgb;
}

void SonarDataPkt::Lock()
{
    m_mutex.lock();
#if defined(__SANITIZE_THREAD__)
    // Qt is not built for the sanitizer, which does not see who waits within a QMutex. It is told.
    __tsan_acquire(&m_mutex);
#endif
}

void SonarDataPkt::Unlock()
{
#if defined(__SANITIZE_THREAD__)
    __tsan_release(&m_mutex);
#endif
    m_mutex.unlock();
}
