#pragma once

#include "ZrUtil/LqColourMap.h"
#include "ZrUtil/SonarDataHdr.h"
#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <QMutex>

#include <vector>

/// The sonar image received last, and what turns raw samples into grey or coloured images: a contrast range
/// taken from the histogram of the samples, and two mappings.
///
/// The receiving thread calls `ProcessPayload`; the drawing thread looks with `HasNewData` and `UseRgb`, and
/// reads `image`, `rgbImage` and `hdr` between `Lock` and `Unlock`. The mutex does not count: between the two
/// no other function of the packet that takes it may be called from the same thread. `CalcStats` and the
/// mappings take no lock and work on buffers of the caller: `CalcStats` in one thread at a time and not
/// during a mapping, mappings in any number of threads.
///
/// The packet is a quarter of a megabyte, most of it the histogram: statistics allocate nothing. Make it on
/// the heap. A thread that maps keeps tables of 320 KiB until it ends, which are made anew, in about 0.1 ms,
/// when range or palette have changed.
class ZR_UTIL_EXPORT SonarDataPkt
{
public:
    float lo = 0.0F; ///< sample value at and below which pixels are black; 0 with `hi` until a range is known
    float hi = 0.0F; ///< sample value at and above which pixels are brightest
    u32 hist[65536] = {}; ///< counts of the sample values that `CalcStats` saw last
    LqColourMap palettes[5]; ///< jet, copper, cool, green, hot
    SonarDataHdr hdr = {}; ///< header of `image`

private:
    QMutex m_mutex;

public:
    std::vector<u8> image; ///< `rows` × `cols` bytes, row after row
    std::vector<u8> rgbImage; ///< `rows` × `cols` × 3 bytes
    bool useRgb = false; ///< `rgbImage` is what is to be shown
    bool newData = false; ///< an image has come; cleared by nobody but the application

    /// A packet that shows the test image.
    SonarDataPkt();

    SonarDataPkt(const SonarDataPkt&) = delete;
    SonarDataPkt& operator=(const SonarDataPkt&) = delete;

    /// Takes an image of one byte per sample: \p type 2, whose payload has exactly `rows` × `cols` bytes. Any
    /// other type, and a payload of any other length, is dropped and leaves all as it was.
    void ProcessPayload(int type, const SonarDataHdr& header, zr::span<u8> payload);

    /// Counts the samples into `hist` and moves the contrast range, `lo` and `hi`, so that about one sample
    /// in 10,000 lies outside at each end; the value 0 is not counted at the lower one.
    ///
    /// The first range is taken as it is. From then on `lo` moves a fifth of the way, and `hi` becomes a
    /// fifth of the new value. Samples that are all 0, or none, keep the range.
    void CalcStats(u16* samples, int count);

    /// Grey: 0 up to `lo`, 255 from `hi` on, between them ((v − lo) / (hi − lo))^0.6 × 256, cut to a byte.
    void ProcessDataImage(u16* in, u8* out, int count);

    /// Colour by the copper map: its first entry up to `lo`, its last one from `hi` on, between them entry
    /// ((v − lo) / (hi − lo))^0.8 × N. Three bytes for each sample: those of the entry in reverse order
    /// (blue, green, red). Zeros while the map is empty.
    void ProcessRgbImage(u16* in, u8* out, int count);

    /// Loads the five maps from the resources of the application: ":/jet.cmap.json", ":/copper.cmap.json",
    /// ":/cool.cmap.json", ":/green.cmap.json" and ":/hot.cmap.json". One that is missing is empty.
    void BuildPalettes();

    /// An image of 256 × 256: a ramp from black at the top to white at the bottom.
    void TestImage();

    bool HasNewData();
    bool UseRgb();

    void Lock();
    void Unlock();
};
