#include "formats/pcd.h"

#include "formats/pcd_planes.h"
#include "formats/reader_support.h"

namespace pelorin {

namespace {

constexpr std::size_t kSignatureAt = 0x800, kTurnAt = 0xE02;
constexpr int kLargest = 4;

struct Rgb24 {
    std::uint8_t blue, green, red;
};

std::uint8_t Channel(double value) {
    return static_cast<std::uint8_t>(std::clamp(value + 0.5, 0.0, 255.0));
}

Rgb24 ColorOf(int luma, int chroma1, int chroma2) {
    const double l = 1.3584 * luma, a = 2.2179 * (chroma1 - 156), b = 1.8215 * (chroma2 - 137);
    return {Channel(l + a), Channel(l - 0.194 * a - 0.509 * b), Channel(l + b)};
}

// Where the pixel of column `x` and row `y` lands when the picture is turned left `turns` times.
Point Turned(int x, int y, const PcdPlane& luma, int turns) {
    switch (turns) {
    case 1: return {y, luma.width - 1 - x};
    case 2: return {luma.width - 1 - x, luma.height - 1 - y};
    case 3: return {luma.height - 1 - y, x};
    default: return {x, y};
    }
}

} // namespace

bool IsPcd(ByteSpan file) {
    return ByteReader(file).Sub(kSignatureAt, 7).StartsWith("PCD_IPI");
}

DibBlock ReadPcd(ByteSpan file, const PictureRequest& request, PictureFacts& facts) {
    if (!IsPcd(file) || file.size() <= kTurnAt) return {};
    const int turns = file[kTurnAt] & 3;
    const auto planes = ReadPcdPlanes(file, std::clamp(request.photoCdSize, 0, kLargest));
    if (!planes) return {};
    const PcdPlane chroma[2] = {DoublePcdPlane(planes.chroma[0]), DoublePcdPlane(planes.chroma[1])};
    const auto& luma = planes.luma;
    const bool upright = turns % 2 == 1;
    auto block = CreateDIB(upright ? luma.height : luma.width, upright ? luma.width : luma.height, 24);
    const DibRows rows(block);
    if (!rows) return {};
    ProgressScope progress(request.progress, ReadingText("Photo CD"), static_cast<std::uint64_t>(luma.height));
    for (int y = 0; y < luma.height; ++y) {
        for (int x = 0; x < luma.width; ++x) {
            const auto color = ColorOf(luma.Row(y)[x], chroma[0].Row(y)[x], chroma[1].Row(y)[x]);
            const auto place = Turned(x, y, luma, turns);
            auto* to = rows.PictureRow(place.y) + std::ptrdiff_t{3} * place.x;
            to[0] = color.blue;
            to[1] = color.green;
            to[2] = color.red;
        }
        if (progress.StopAsked()) return {};
        progress.Step(static_cast<std::uint64_t>(y) + 1);
    }
    facts.width = rows.Width();
    facts.height = rows.Height();
    facts.bits = 24;
    return block;
}

} // namespace pelorin
