// Flood fill of a whole picture, beside the least that any fill must do: write all pixels of picture and mask.
#include "noise_picture.h"
#include "pixel/fill.h"

#include <benchmark/benchmark.h>

namespace pelorin {
namespace {

void WriteTwice(benchmark::State& state) {
    const int side = static_cast<int>(state.range(0));
    Surface image(side, side), mask(side, side);
    std::uint32_t color = 0xFF000000;
    for (auto _ : state) {
        image.Fill(++color);
        mask.Fill(0xFFFFFFFF);
        benchmark::ClobberMemory();
    }
}

// Each round fills with another colour, so that there is always something to fill.
void Fill(benchmark::State& state, bool noisy) {
    const int side = static_cast<int>(state.range(0));
    auto image = CreateDIB(side, side, 32);
    auto mask = CreateDIB(side, side, 32);
    const int tolerance = noisy ? 600 : 10;
    // Both blocks are written once before the clock starts, so that their pages are there.
    std::memset(image.Data() + kDibHeaderSize, 0, image.Size() - kDibHeaderSize);
    if (noisy) image = DIBFromSurface(bench::NoisePicture(side, side));
    std::memset(mask.Data() + kDibHeaderSize, 0, mask.Size() - kDibHeaderSize);
    Rgb color = noisy ? 0x808080 : 0;
    for (auto _ : state) {
        const Rgb next = color ^ 0x404040;
        benchmark::DoNotOptimize(FloodFill(image, mask, side / 2, side / 3, next, color, tolerance));
        color = next;
    }
}

void Select(benchmark::State& state) {
    const int side = static_cast<int>(state.range(0));
    const auto image = DIBFromSurface(bench::NoisePicture(side, side));
    for (auto _ : state) benchmark::DoNotOptimize(SelectSimilar(image, side / 2, side / 3, 120));
}

void Sizes(benchmark::internal::Benchmark* b) {
    for (const int side : {48, 256, 1024, 4096}) b->Arg(side);
    b->Unit(benchmark::kMillisecond);
}

BENCHMARK(WriteTwice)->Apply(Sizes);
BENCHMARK_CAPTURE(Fill, Flat, false)->Apply(Sizes);
BENCHMARK_CAPTURE(Fill, Noisy, true)->Apply(Sizes);
BENCHMARK(Select)->Apply(Sizes);

} // namespace
} // namespace pelorin
