#include "ZrUtil/SonarDataPkt.h"

#include <QMutexLocker>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace {

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
        return static_cast<int>(std::clamp(index, 0.0, static_cast<double>(last)));
    }
};

/// The indices of all sample values under the mapping that this thread used last. It costs as much as
/// mapping a few thousand samples one by one, since the index never falls as the sample grows: only the
/// places where it rises are searched for.
class Table
{
public:
    const std::array<u16, 65536>& Of(const Mapping& mapping)
    {
        if (m_valid && m_mapping == mapping)
            return m_index;
        m_mapping = mapping;
        m_valid = true;
        Fill(0, mapping(0), 65535, mapping(65535));
        return m_index;
    }

private:
    /// Fills from \p first to \p last, whose indices are known.
    void Fill(int first, int firstIndex, int last, int lastIndex)
    {
        if (firstIndex == lastIndex) {
            std::fill(m_index.begin() + first, m_index.begin() + last + 1, static_cast<u16>(firstIndex));
            return;
        }
        if (last - first == 1) {
            m_index[static_cast<std::size_t>(first)] = static_cast<u16>(firstIndex);
            m_index[static_cast<std::size_t>(last)] = static_cast<u16>(lastIndex);
            return;
        }
        const int middle = (first + last) / 2;
        const int middleIndex = m_mapping(static_cast<u16>(middle));
        Fill(first, firstIndex, middle, middleIndex);
        Fill(middle, middleIndex, last, lastIndex);
    }

    std::array<u16, 65536> m_index{};
    Mapping m_mapping{};
    bool m_valid = false;
};

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
    const QMutexLocker guard(&m_mutex);
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
    for (int i = 0; i < count; ++i)
        ++hist[samples[i]];

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
    thread_local Table table;
    const auto& index = table.Of({lo, hi, GreyGamma, 256, 255});
    for (int i = 0; i < count; ++i)
        out[i] = static_cast<u8>(index[in[i]]);
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
    const int last = std::min(copper.m_count - 1, 65535);
    thread_local Table table;
    const auto& index = table.Of({lo, hi, ColourGamma, copper.m_count, last});
    for (int i = 0; i < count; ++i) {
        const unsigned char* entry = copper.m_rgb + 3 * static_cast<std::ptrdiff_t>(index[in[i]]);
        *out++ = entry[2];
        *out++ = entry[1];
        *out++ = entry[0];
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
    const QMutexLocker guard(&m_mutex);
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

bool SonarDataPkt::HasNewData() const
{
    const QMutexLocker guard(&m_mutex);
    return newData;
}

bool SonarDataPkt::UseRgb() const
{
    const QMutexLocker guard(&m_mutex);
    return useRgb;
}

void SonarDataPkt::Lock()
{
    m_mutex.lock();
}

void SonarDataPkt::Unlock()
{
    m_mutex.unlock();
}
