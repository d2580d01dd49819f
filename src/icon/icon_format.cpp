#include "icon/icon_format.h"

#include "core/strings.h"

#include <string_view>

namespace pelorin {

namespace {

struct DepthRow {
    int bits;
    int name, macintoshName; ///< string numbers
    std::string_view shortName;
};
constexpr DepthRow kDepths[] = {
    {1, str::kDepthMono, str::kDepthMono, "Mono"},   {4, str::kDepth16, str::kDepth16, "16"},
    {8, str::kDepth256, str::kDepth256, "256"},      {15, str::kDepth15Bit, str::kDepth15Bit, "32K"},
    {16, str::kDepth16Bit, str::kDepth16Bit, "64K"}, {24, str::kDepth24, str::kDepth24, "16,8M"},
    {32, str::kDepth32, str::kDepth32Mac, "RGB/A"},
};

const DepthRow* RowOf(int bits) {
    for (const auto& row : kDepths) {
        if (row.bits == bits) return &row;
    }
    return nullptr;
}

} // namespace

std::string DepthName(int bits, bool macintosh) {
    const auto* row = RowOf(bits);
    return row ? LoadText(macintosh ? row->macintoshName : row->name) : std::string();
}

std::string DepthShortName(int bits) {
    const auto* row = RowOf(bits);
    return std::string(row ? row->shortName : std::string_view());
}

std::string FormatDescription(int width, int height, int bits, bool macintosh) {
    return FormatText(str::kFormatDescription, width, height, DepthName(bits, macintosh));
}

std::string FormatShortDescription(int width, int height, int bits) {
    return FormatText(str::kFormatDescription, width, height, DepthShortName(bits));
}

} // namespace pelorin
