// Filters, adjustments and compositing, by the side of the picture.
#include "noise_picture.h"
#include "pixel/adjust.h"
#include "pixel/blend.h"
#include "pixel/compose.h"
#include "pixel/convolve.h"

#include <benchmark/benchmark.h>

namespace pelorin {
namespace {

void Kernel(benchmark::State& state, const char* name, int blend) {
    const int side = static_cast<int>(state.range(0));
    const auto source = bench::NoisePicture(side, side);
    const auto& kernel = FindFilter(name)->kernel;
    for (auto _ : state) benchmark::DoNotOptimize(ApplyKernel(source, kernel, blend));
}

template <class Change>
void Adjust(benchmark::State& state, Change change) {
    const int side = static_cast<int>(state.range(0));
    const auto source = bench::NoisePicture(side, side);
    for (auto _ : state) benchmark::DoNotOptimize(change(source));
}

void BlendBlock(benchmark::State& state) {
    const int side = static_cast<int>(state.range(0));
    auto target = bench::NoisePicture(side, side);
    const auto source = DIBFromSurface(bench::NoisePicture(side, side, true));
    for (auto _ : state) benchmark::DoNotOptimize(BlendDIBOver(target, {}, source));
}

void Compose(benchmark::State& state) {
    const int side = static_cast<int>(state.range(0));
    auto color = bench::NoisePicture(side, side), alpha = bench::NoisePicture(side, side);
    const auto topColor = color, topAlpha = alpha;
    for (auto _ : state) {
        benchmark::DoNotOptimize(ComposeLayers(color, alpha, 0, 0, side, side, topColor, topAlpha, {.compose = true}));
    }
}

void Sizes(benchmark::internal::Benchmark* b) {
    for (const int side : {48, 256, 1024, 2048, 4096}) b->Arg(side);
    b->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(Kernel, Blur3x3, "Blur", 0)->Apply(Sizes);
BENCHMARK_CAPTURE(Kernel, Sharpen3x3, "Sharpen", 0)->Apply(Sizes);
BENCHMARK_CAPTURE(Kernel, Details3x3Blend, "Details", 50)->Apply(Sizes);
BENCHMARK_CAPTURE(Kernel, SmoothMore5x5, "Smooth More", 0)->Apply(Sizes);
BENCHMARK_CAPTURE(Adjust, Brightness, [](const Surface& s) { return Brightness(s, 20); })->Apply(Sizes);
BENCHMARK_CAPTURE(Adjust, HueShift, [](const Surface& s) { return HueShift(s, 20); })->Apply(Sizes);
BENCHMARK(BlendBlock)->Apply(Sizes);
BENCHMARK(Compose)->Apply(Sizes);

} // namespace
} // namespace pelorin
