// Statistics and mappings of sonar samples against copying the same samples (memcpy), and the adding of a
// line to a waterfall.
//
// 4 Mi samples of 16 bits. "Sonar" is what a side-scan sonar delivers: noise whose strength falls with the
// range, /0 of each. "Spread" uses all 65,536 values alike, which no sonar does: the worst for tables, /1.

#include "ZrUtil/SonarDataPkt.h"
#include "ZrUtil/ZrChBuffer.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr int count = 4 * 1024 * 1024;
constexpr int lineSamples = 2048;

std::vector<u16> Sonar()
{
    std::mt19937 random(20240620);
    std::uniform_real_distribution<double> part(1e-9, 1.0);
    std::vector<u16> samples(count);
    for (int i = 0; i < count; ++i) {
        const double range = static_cast<double>(i % lineSamples) / lineSamples;
        const double strength = 300.0 + 4000.0 * std::exp(-3.0 * range);
        const double amplitude = strength * std::sqrt(-2.0 * std::log(part(random)));
        samples[static_cast<std::size_t>(i)] = static_cast<u16>(std::min(amplitude, 65535.0));
    }
    return samples;
}

std::vector<u16> Spread()
{
    std::mt19937 random(20240621);
    std::vector<u16> samples(count);
    for (u16& sample : samples)
        sample = static_cast<u16>(random() >> 16);
    return samples;
}

std::vector<u16>& Samples(std::int64_t kind)
{
    static std::vector<u16> kinds[] = {Sonar(), Spread()};
    return kinds[kind];
}

void PerSample(benchmark::State& state)
{
    state.SetItemsProcessed(state.iterations() * count);
}

void Copy(benchmark::State& state)
{
    const std::vector<u16>& in = Samples(state.range(0));
    std::vector<u16> out(count);
    for (auto _ : state) {
        std::memcpy(out.data(), in.data(), count * sizeof(u16));
        benchmark::ClobberMemory();
    }
    PerSample(state);
}

void CalcStats(benchmark::State& state)
{
    std::vector<u16>& in = Samples(state.range(0));
    const auto packet = std::make_unique<SonarDataPkt>();
    for (auto _ : state) {
        packet->CalcStats(in.data(), count);
        benchmark::ClobberMemory();
    }
    PerSample(state);
}

/// A new range for every image, as it comes from the statistics.
void NewRange(SonarDataPkt& packet)
{
    packet.lo = packet.lo == 50.0F ? 51.0F : 50.0F;
    packet.hi = 14000.0F;
}

void ProcessDataImage(benchmark::State& state)
{
    std::vector<u16>& in = Samples(state.range(0));
    std::vector<u8> out(count);
    const auto packet = std::make_unique<SonarDataPkt>();
    for (auto _ : state) {
        NewRange(*packet);
        packet->ProcessDataImage(in.data(), out.data(), count);
        benchmark::ClobberMemory();
    }
    PerSample(state);
}

void ProcessRgbImage(benchmark::State& state)
{
    std::vector<u16>& in = Samples(state.range(0));
    std::vector<u8> out(3 * count);
    const auto packet = std::make_unique<SonarDataPkt>();
    LqColourMap& copper = packet->palettes[1];
    copper.SetSize(256);
    for (int i = 0; i < 768; ++i)
        copper.m_rgb[i] = static_cast<unsigned char>(i);
    for (auto _ : state) {
        NewRange(*packet);
        packet->ProcessRgbImage(in.data(), out.data(), count);
        benchmark::ClobberMemory();
    }
    PerSample(state);
}

void AddData(benchmark::State& state)
{
    ZrChBuffer buffer;
    buffer.InitBuffer(lineSamples, 1000);
    std::vector<u8> line(lineSamples, 7);
    double time = 0.0;
    for (auto _ : state)
        benchmark::DoNotOptimize(buffer.AddData(time += 0.1, lineSamples, line.data()));
    state.SetBytesProcessed(state.iterations() * lineSamples);
}

} // namespace

BENCHMARK(Copy)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(CalcStats)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(ProcessDataImage)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(ProcessRgbImage)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(AddData);
