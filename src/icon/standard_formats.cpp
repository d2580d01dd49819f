#include "icon/standard_formats.h"

#include <array>

namespace pelorin {

namespace {

constexpr std::array<IconFormat, 23> kWindows = {{
    {48, 48, 32},   {32, 32, 32},  {24, 24, 32},  {16, 16, 32},   {48, 48, 8},  {32, 32, 8},
    {24, 24, 8},    {16, 16, 8},   {48, 48, 4},   {32, 32, 4},    {24, 24, 4},  {16, 16, 4},
    {256, 256, 32}, {256, 256, 8}, {256, 256, 4}, {128, 128, 32}, {96, 96, 32}, {72, 72, 32},
    {64, 64, 32},   {80, 80, 32},  {48, 48, 1},   {32, 32, 1},    {16, 16, 1},
}};

constexpr std::array<IconFormat, 18> kMacintosh = {{
    {128, 128, 32},
    {48, 48, 32},
    {32, 32, 32},
    {16, 16, 32},
    {48, 48, 8},
    {32, 32, 8},
    {16, 16, 8},
    {48, 48, 4},
    {32, 32, 4},
    {16, 16, 4},
    {48, 48, 1},
    {32, 32, 1},
    {16, 16, 1},
    {16, 12, 8},
    {16, 12, 4},
    {16, 12, 1},
    {256, 256, 32},
    {512, 512, 32},
}};

constexpr std::array<Size, 10> kWindowsSizes = {
    {{256, 256}, {48, 48}, {32, 32}, {24, 24}, {16, 16}, {128, 128}, {64, 64}, {72, 72}, {80, 80}, {96, 96}}};
constexpr std::array<Size, 7> kMacintoshSizes = {
    {{128, 128}, {48, 48}, {32, 32}, {16, 16}, {16, 12}, {256, 256}, {512, 512}}};

constexpr std::array<int, 5> kWindowsDepths = {32, 24, 8, 4, 1};
constexpr std::array<int, 4> kMacintoshDepths = {32, 8, 4, 1};

} // namespace

std::span<const IconFormat> StandardFormats(bool macintosh) {
    if (macintosh) return kMacintosh;
    return kWindows;
}

bool IsDefaultFormat(bool macintosh, std::size_t index) {
    // On Windows 48, 32 and 16 pixels at 32, 8 and 4 bits: the 24-pixel rows stand between them.
    if (!macintosh) return index < 12 && kWindows[index].width != 24;
    return index < 13;
}

std::span<const Size> OfferedSizes(bool macintosh) {
    if (macintosh) return kMacintoshSizes;
    return kWindowsSizes;
}

std::span<const int> OfferedDepths(bool macintosh) {
    if (macintosh) return kMacintoshDepths;
    return kWindowsDepths;
}

FormatRule CheckFormat(const IconFormat& format, bool macintosh) {
    if (!macintosh) return FormatRule::Allowed;
    if (format.width == 16 && format.height == 12) return format.bits == 32 ? FormatRule::NoAlpha : FormatRule::Allowed;
    if (format.bits == 32 || format.width != format.height) return FormatRule::Allowed;
    switch (format.width) {
    case 128: return FormatRule::OnlyAlpha128;
    case 256: return FormatRule::OnlyAlpha256;
    case 512: return FormatRule::OnlyAlpha512;
    default: return FormatRule::Allowed;
    }
}

} // namespace pelorin
