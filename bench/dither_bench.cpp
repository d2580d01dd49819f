// The dithering reducer in its modes, at the picture's own size and at half of it; megapixels of output a second.
#include "photo_picture.h"
#include "pixel/dither.h"

#include <benchmark/benchmark.h>

namespace {

using namespace pelorin;

void Dither(benchmark::State& state, int mode, int shrink) {
    const int side = static_cast<int>(state.range(0));
    const auto picture = bench::PhotoPicture(side);
    for (auto _ : state) benchmark::DoNotOptimize(DitherTo8(picture, side / shrink, side / shrink, mode, false));
    const double pixels = static_cast<double>(side / shrink) * (side / shrink);
    state.counters["Mpixel/s"] =
        benchmark::Counter(pixels * static_cast<double>(state.iterations()) / 1e6, benchmark::Counter::kIsRate);
}

void Sides(benchmark::internal::Benchmark* job) {
    for (const int side : {48, 256, 1024, 4096}) job->Arg(side);
    job->Unit(benchmark::kMillisecond);
}
BENCHMARK_CAPTURE(Dither, Halftone, kDitherHalftone, 1)->Apply(Sides);
BENCHMARK_CAPTURE(Dither, 484, kDither484, 1)->Apply(Sides);
BENCHMARK_CAPTURE(Dither, Mono, kDitherMono, 1)->Apply(Sides);
BENCHMARK_CAPTURE(Dither, HalftoneHalfSize, kDitherHalftone, 2)->Apply(Sides);
BENCHMARK_CAPTURE(Dither, 484HalfSize, kDither484, 2)->Apply(Sides);

} // namespace
