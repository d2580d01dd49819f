// Small steps that several picture readers end with.
#pragma once

#include "core/strings.h"
#include "pixel/dib.h"

namespace pelorin {

/// What the progress shows while a picture of the format is read; bitmaps and JPEG have texts of their own.
[[nodiscard]] inline std::string ReadingText(std::string_view format) {
    return LoadText(str::kReading).append(format);
}

/// A 32-bit picture whose alpha bytes are all 0 holds no alpha: it becomes 24 bits. Every other block stays.
[[nodiscard]] inline DibBlock DropEmptyAlpha(DibBlock block) {
    if (DIBBitCount(block) == 32 && !DIBHasAlpha(block)) return ConvertDIBTo24(block);
    return block;
}

/// What a colour level was before it was multiplied by `alpha`; 0 where that is 0.
[[nodiscard]] constexpr std::uint32_t StraightLevel(std::uint32_t level, std::uint32_t alpha) {
    return alpha == 0 ? 0 : std::min<std::uint32_t>(255, (level * 255 + alpha / 2) / alpha);
}

/// The same of the three levels of 0xAARRGGBB.
[[nodiscard]] constexpr std::uint32_t StraightColor(std::uint32_t color) {
    const std::uint32_t alpha = color >> 24;
    if (alpha == 255) return color;
    const auto level = [&](int shift) { return StraightLevel(color >> shift & 255, alpha) << shift; };
    return alpha << 24 | level(16) | level(8) | level(0);
}

/// `count` greys from black to white, evenly spaced; `count` is at least 2.
[[nodiscard]] inline std::vector<Rgb> GrayRamp(int count) {
    std::vector<Rgb> ramp;
    for (int i = 0; i < count; ++i) ramp.push_back(static_cast<Rgb>(i * 255 / (count - 1)) * 0x010101u);
    return ramp;
}

/// Three bytes red, green, blue an entry; what is behind the last whole entry is left.
[[nodiscard]] inline std::vector<Rgb> TableFromRgb(ByteSpan bytes) {
    std::vector<Rgb> table;
    for (std::size_t i = 0; i + 3 <= bytes.size(); i += 3) {
        table.push_back(Rgb{bytes[i]} << 16 | Rgb{bytes[i + 1]} << 8 | bytes[i + 2]);
    }
    return table;
}

/// True when both sides are positive and the picture is not above `kMaxPixels`.
[[nodiscard]] constexpr bool IsPictureSize(std::int64_t width, std::int64_t height) {
    return width > 0 && height > 0 && width <= kMaxPixels && height <= kMaxPixels && width * height <= kMaxPixels;
}

} // namespace pelorin
