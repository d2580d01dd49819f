#include "formats/vio_blend.h"

namespace pelorin {

namespace {

constexpr std::uint32_t kEmptyGrey = 0x00808080;

// Rounding adds 127 before the division by an alpha that may be small, so a channel can come out above 255.
std::uint8_t BlendChannel(int source, int target, int a, int rest, int alpha) {
    return static_cast<std::uint8_t>(std::min(255, (a * source + 127 + rest * target) / alpha));
}

void BlendPixel(std::uint8_t* to, const std::uint8_t* from, int opacity) {
    const int a = from[3] * opacity / 100, t = to[3];
    if (a == 0) {
        if (t == 0) StoreU32LE(to, kEmptyGrey);
        return;
    }
    if (t == 0) {
        std::memcpy(to, from, 4);
        return;
    }
    const int rest = ((255 - a) * t + 127) / 255;
    const int alpha = (a * 255 + 127 + (255 - a) * t) / 255;
    for (int channel = 0; channel < 3; ++channel) {
        to[channel] = BlendChannel(from[channel], to[channel], a, rest, alpha);
    }
    to[3] = static_cast<std::uint8_t>(alpha);
}

} // namespace

void BlendVniLayer(const DibRows& target, const DibView& source, std::int64_t x, std::int64_t y, int opacity) {
    opacity = std::clamp(opacity, 0, 100);
    const auto fromX = std::max<std::int64_t>(0, -x), fromY = std::max<std::int64_t>(0, -y);
    const auto toX = std::min<std::int64_t>(source.Width(), target.Width() - x);
    const auto toY = std::min<std::int64_t>(source.Height(), target.Height() - y);
    if (fromX >= toX) return;
    for (auto row = fromY; row < toY; ++row) {
        const auto* from = source.PictureRow(static_cast<int>(row)) + fromX * 4;
        auto* to = target.PictureRow(static_cast<int>(row + y)) + (fromX + x) * 4;
        for (auto column = fromX; column < toX; ++column, from += 4, to += 4) BlendPixel(to, from, opacity);
    }
}

} // namespace pelorin
