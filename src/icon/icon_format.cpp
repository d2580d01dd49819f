#include "icon/icon_format.h"

#include <fmt/format.h>

#include <string_view>

namespace pelorin {

namespace {

struct DepthRow {
    int bits;
    std::string_view name, macintoshName, shortName;
};
constexpr DepthRow kDepths[] = {
    {1, "Mono", "Mono", "Mono"},
    {4, "16 colors", "16 colors", "16"},
    {8, "256 colors", "256 colors", "256"},
    {15, "32768 colors", "32768 colors", "32K"},
    {16, "65536 colors", "65536 colors", "64K"},
    {24, "16,8M colors", "16,8M colors", "16,8M"},
    {32, "XP (RGB/A)", "RGB/A", "RGB/A"},
};

DepthRow RowOf(int bits) {
    for (const auto& row : kDepths) {
        if (row.bits == bits) return row;
    }
    return {};
}

} // namespace

std::string DepthName(int bits, bool macintosh) {
    const auto row = RowOf(bits);
    return std::string(macintosh ? row.macintoshName : row.name);
}

std::string DepthShortName(int bits) {
    return std::string(RowOf(bits).shortName);
}

std::string FormatDescription(int width, int height, int bits, bool macintosh) {
    return fmt::format("{}x{} - {}", width, height, DepthName(bits, macintosh));
}

std::string FormatShortDescription(int width, int height, int bits) {
    return fmt::format("{}x{} - {}", width, height, DepthShortName(bits));
}

} // namespace pelorin
