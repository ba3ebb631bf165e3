// Byte stuffing and its inverse, against a plain copy of the same bytes in the same run.
//
// For comparisons: --benchmark_repetitions=5 --benchmark_enable_random_interleaving=true
//                  --benchmark_report_aggregates_only=true
// The counter bytes_per_second counts the bytes of the data, not those of the frame.

#include "ZrUtil/ZrTypes.h"
#include "ZrUtil/ZrUtil.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

namespace {

using Bytes = std::vector<u8>;

enum class Kind
{
    Random, // one byte in 256 is zero
    Zero,
    NoZero,
    Sparse, // nine of ten bytes are zero, at random places
};

Bytes MakeData(Kind kind, std::size_t size)
{
    std::mt19937 random(1);
    Bytes data(size);
    for (u8& byte : data) {
        const u8 any = static_cast<u8>(random());
        switch (kind) {
        case Kind::Random:
            byte = any;
            break;
        case Kind::Zero:
            byte = 0;
            break;
        case Kind::NoZero:
            byte = any == 0 ? u8(1) : any;
            break;
        case Kind::Sparse:
            byte = random() % 10 == 0 ? any : u8(0);
            break;
        }
    }
    return data;
}

/// A zeroed buffer with \p data encoded.
Bytes MakeLine(const Bytes& data)
{
    Bytes line(data.size() + data.size() / 254 + 3);
    ZrUtil::StuffData(data.data(), static_cast<unsigned int>(data.size()), line.data());
    return line;
}

bool DecodesTo(const Bytes& line, const Bytes& data)
{
    const std::size_t frame = std::strlen(reinterpret_cast<const char*>(line.data()));
    Bytes back(frame);
    ZrUtil::UnStuffData(line.data(), static_cast<unsigned int>(frame), back.data());
    return std::equal(data.begin(), data.end(), back.begin()) && back[data.size()] == 0;
}

void CountBytes(benchmark::State& state, const Bytes& data)
{
    state.SetBytesProcessed(state.iterations() * static_cast<i64>(data.size()));
}

void Stuff(benchmark::State& state, Kind kind)
{
    const Bytes data = MakeData(kind, static_cast<std::size_t>(state.range(0)));
    const unsigned int size = static_cast<unsigned int>(data.size());
    Bytes line(data.size() + data.size() / 254 + 3);
    for (auto _ : state) {
        ZrUtil::StuffData(data.data(), size, line.data());
        benchmark::DoNotOptimize(line.data());
        benchmark::ClobberMemory();
    }
    if (!DecodesTo(line, data))
        state.SkipWithError("the frame does not decode to the data");
    CountBytes(state, data);
}

void UnStuff(benchmark::State& state, Kind kind)
{
    const Bytes data = MakeData(kind, static_cast<std::size_t>(state.range(0)));
    const Bytes line = MakeLine(data);
    const std::size_t frame = std::strlen(reinterpret_cast<const char*>(line.data()));
    Bytes back(frame);
    for (auto _ : state) {
        ZrUtil::UnStuffData(line.data(), static_cast<unsigned int>(frame), back.data());
        benchmark::DoNotOptimize(back.data());
        benchmark::ClobberMemory();
    }
    if (!std::equal(data.begin(), data.end(), back.begin()))
        state.SkipWithError("the decoded bytes are not the data");
    CountBytes(state, data);
}

void Copy(benchmark::State& state, Kind kind)
{
    const Bytes data = MakeData(kind, static_cast<std::size_t>(state.range(0)));
    Bytes copy(data.size());
    for (auto _ : state) {
        std::memcpy(copy.data(), data.data(), data.size());
        benchmark::DoNotOptimize(copy.data());
        benchmark::ClobberMemory();
    }
    if (copy != data)
        state.SkipWithError("the copy differs");
    CountBytes(state, data);
}

void Sizes(benchmark::internal::Benchmark* benchmark)
{
    for (const i64 size : {256, 4 * 1024, 64 * 1024, 1024 * 1024})
        benchmark->Arg(size);
}

BENCHMARK_CAPTURE(Copy, random, Kind::Random)->Apply(Sizes);
BENCHMARK_CAPTURE(Stuff, random, Kind::Random)->Apply(Sizes);
BENCHMARK_CAPTURE(Stuff, zero, Kind::Zero)->Apply(Sizes);
BENCHMARK_CAPTURE(Stuff, noZero, Kind::NoZero)->Apply(Sizes);
BENCHMARK_CAPTURE(Stuff, sparse, Kind::Sparse)->Apply(Sizes);
BENCHMARK_CAPTURE(UnStuff, random, Kind::Random)->Apply(Sizes);
BENCHMARK_CAPTURE(UnStuff, zero, Kind::Zero)->Apply(Sizes);
BENCHMARK_CAPTURE(UnStuff, noZero, Kind::NoZero)->Apply(Sizes);
BENCHMARK_CAPTURE(UnStuff, sparse, Kind::Sparse)->Apply(Sizes);

} // namespace
