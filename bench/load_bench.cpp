// Loading a picture of a camera's size: whole, and small for a preview.
#include "formats/load_image.h"
#include "formats/save_image.h"
#include "photo_picture.h"

#include <benchmark/benchmark.h>

namespace {

using namespace pelorin;

void Load(benchmark::State& state, int kind, bool preview) {
    Bytes file;
    const auto photo = bench::PhotoPicture(3464); // as many pixels as 4000 x 3000
    if (EncodePicture(photo, kind, {}, file) != 0) return state.SkipWithError("not written");
    PictureRequest request;
    request.preview = preview;
    for (auto _ : state) {
        PictureFacts facts;
        benchmark::DoNotOptimize(ReadPicture(file, kind, request, facts));
    }
}
BENCHMARK_CAPTURE(Load, Jpeg, 10, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Load, JpegPreview, 10, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Load, Jpeg2000, 36, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Load, Jpeg2000Preview, 36, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Load, Png, 15, false)->Unit(benchmark::kMillisecond);

} // namespace
