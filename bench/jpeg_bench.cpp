// A JPEG of 12 million pixels as cameras and programs write it, whole and at an eighth for a preview.
#include "../tests/support/foreign_jpeg.h"
#include "formats/jpeg.h"
#include "photo_picture.h"

#include <benchmark/benchmark.h>
#include <jpeglib.h>

#include <cstdio>
#include <cstdlib>

namespace {

using namespace pelorin;

struct Kind {
    const char* name;
    double grain;
    test::ForeignJpeg format;
};

// As many pixels as 4000 x 3000.
constexpr int kSide = 3464;

const Kind kKinds[] = {
    {"444/q90", 1, {kSide, kSide, 1, 1, 90}},
    {"444/q95/grain", 3, {kSide, kSide, 1, 1, 95}},
    {"422/q80", 1, {kSide, kSide, 2, 1, 80}},
    {"420/q50", 1, {kSide, kSide, 2, 2, 50}},
    {"420/q75", 1, {kSide, kSide, 2, 2, 75}},
    {"420/q85/grain", 3, {kSide, kSide, 2, 2, 85}},
    {"420/q85/grain/restarts", 3, {kSide, kSide, 2, 2, 85, JCS_YCbCr, false, false, 250}},
    {"420/q95/grain", 3, {kSide, kSide, 2, 2, 95}},
    {"grey/q85/grain", 3, {kSide, kSide, 1, 1, 85, JCS_GRAYSCALE}},
    {"420/q85/progressive", 1, {kSide, kSide, 2, 2, 85, JCS_YCbCr, true, true}},
    {"444/q85/grain/progressive", 3, {kSide, kSide, 1, 1, 85, JCS_YCbCr, true, true}},
    {"inks/q85", 1, {kSide, kSide, 1, 1, 85, JCS_YCCK}},
};

Bytes Write(const Kind& kind) {
    const auto block = bench::PhotoPicture(kSide, kind.grain);
    const DibView photo(block);
    const int count = kind.format.Components();
    return test::WriteForeignJpeg(kind.format, [&](int y, Bytes& row) {
        for (int x = 0; x < kSide; ++x) {
            for (int c = 0; c < count; ++c)
                row[static_cast<std::size_t>(x * count + c)] = photo.PictureRow(y)[3 * x + c % 3];
        }
    });
}

void Read(benchmark::State& state, const Kind& kind, bool preview) {
    const auto file = Write(kind);
    for (auto _ : state) {
        PictureFacts facts;
        benchmark::DoNotOptimize(ReadJpeg(file, {.preview = preview}, facts));
    }
    state.counters["MB"] = static_cast<double>(file.size()) / 1e6;
}

[[maybe_unused]] const bool g_registered = [] {
    for (const auto& kind : kKinds) {
        for (const bool preview : {false, true}) {
            const auto name = std::string(kind.name) + (preview ? "/preview" : "/whole");
            benchmark::RegisterBenchmark(name.c_str(), [&kind, preview](benchmark::State& state) {
                Read(state, kind, preview);
            })->Unit(benchmark::kMillisecond);
        }
    }
    return true;
}();

} // namespace
