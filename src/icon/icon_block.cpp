#include "icon/icon_block.h"

namespace pelorin {

namespace {

// A larger table than any depth needs is believed only when it is there.
constexpr std::uint32_t kLargestPlainTable = 256;

} // namespace

bool ReadIconBlockHeader(ByteSpan block, IconBlockHeader& header) {
    ByteReader r(block);
    const auto size = r.U32LE();
    header.width = r.I32LE();
    header.height = r.I32LE() / 2;
    r.Skip(2);
    header.bitCount = r.U16LE();
    r.Skip(16);
    const auto used = r.U32LE();
    r.Skip(4);
    if (!r.Ok() || size != kDibHeaderSize) return false;
    if (used > kLargestPlainTable && used > r.Left() / 4) return false;
    header.colors = used == 0 && header.bitCount < 9 ? 1 << header.bitCount : static_cast<int>(used);
    return true;
}

IconBlockLayout::IconBlockLayout(int w, int h, int c, bool alpha) {
    if (w <= 0 || h <= 0 || c < 0 || std::int64_t{w} * h > kMaxPixels) return;
    width = w;
    height = h;
    bits = IconBitCount(c, alpha);
    colors = c;
    xorStride = DibStride(w, bits);
    andStride = DibStride(w, 1);
    xorRows = kDibHeaderSize + std::size_t{4} * static_cast<std::size_t>(c);
    andRows = xorRows + xorStride * static_cast<std::size_t>(h);
    size = andRows + andStride * static_cast<std::size_t>(h);
}

IconBlockLayout IconBlockLayout::Of(ByteSpan block) {
    IconBlockHeader header;
    if (!ReadIconBlockHeader(block, header)) return {};
    const IconBlockLayout layout(header.width, header.height, header.colors, header.Alpha());
    return layout.size <= block.size() ? layout : IconBlockLayout();
}

} // namespace pelorin
