// Counting colours, mapping to a palette, and both as one job; megapixels a second.
#include "photo_picture.h"
#include "pixel/map_palette.h"
#include "pixel/quantize.h"

#include <benchmark/benchmark.h>

namespace {

using namespace pelorin;

void CountPixels(benchmark::State& state) {
    const auto side = static_cast<double>(state.range(0));
    state.counters["Mpixel/s"] =
        benchmark::Counter(side * side * static_cast<double>(state.iterations()) / 1e6, benchmark::Counter::kIsRate);
}

void Quantize(benchmark::State& state) {
    const auto picture = bench::PhotoPicture(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        int count = 256;
        benchmark::DoNotOptimize(QuantizeImage(picture, count, false));
    }
    CountPixels(state);
}

void Map(benchmark::State& state, bool dither) {
    const auto picture = bench::PhotoPicture(static_cast<int>(state.range(0)));
    int count = 256;
    const auto palette = QuantizeImage(picture, count, false);
    for (auto _ : state) benchmark::DoNotOptimize(MapToPalette(picture, *palette, 256, dither));
    CountPixels(state);
}

void QuantizeAndMap(benchmark::State& state) {
    const auto picture = bench::PhotoPicture(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(ReduceWithFallback(picture, true, false));
    CountPixels(state);
}

void Sides(benchmark::internal::Benchmark* job) {
    for (const int side : {48, 256, 1024, 2048, 4096}) job->Arg(side);
    job->Unit(benchmark::kMillisecond);
}
BENCHMARK(Quantize)->Apply(Sides);
BENCHMARK_CAPTURE(Map, Plain, false)->Apply(Sides);
BENCHMARK_CAPTURE(Map, Dithered, true)->Apply(Sides);
BENCHMARK(QuantizeAndMap)->Apply(Sides);

} // namespace
