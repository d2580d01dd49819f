// Scaling both ways. Arguments are the sides of source and target.
#include "noise_picture.h"
#include "pixel/resample.h"

#include <benchmark/benchmark.h>

namespace pelorin {
namespace {

void Resample(benchmark::State& state, int bits, bool holes) {
    const int from = static_cast<int>(state.range(0)), to = static_cast<int>(state.range(1));
    const auto surface = bench::NoisePicture(from, from, holes);
    const auto source = bits == 24 ? DIB24FromSurface(surface) : DIBFromSurface(surface);
    for (auto _ : state) benchmark::DoNotOptimize(ResampleDIB(source, to, to));
}

void Sizes(benchmark::internal::Benchmark* b) {
    for (const auto& [from, to] : {std::pair{4096, 256},
                                   {4096, 1024},
                                   {1024, 256},
                                   {1024, 48},
                                   {256, 48},
                                   {48, 16},
                                   {48, 256},
                                   {256, 1024},
                                   {1024, 4096}}) {
        b->Args({from, to});
    }
    b->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(Resample, 32bpp, 32, false)->Apply(Sizes);
BENCHMARK_CAPTURE(Resample, 32bppWithHoles, 32, true)->Apply(Sizes);
BENCHMARK_CAPTURE(Resample, 24bpp, 24, false)->Apply(Sizes);

} // namespace
} // namespace pelorin
