// Icon files put together field by field, good ones and bad ones.
#pragma once

#include "icon/icon_block.h"

#include <vector>

namespace pelorin::test {

/// Fields of an icon block's header that tests bend; the rest is as it should be.
struct IconBlockParts {
    std::int32_t width = 1, doubledHeight = 2;
    int bits = 32;
    std::uint32_t colorsUsed = 0, headerSize = 40;
    Bytes behind = {}; ///< table, XOR and AND rows
};

inline Bytes BuildIconBlock(const IconBlockParts& parts) {
    ByteWriter block;
    block.U32LE(parts.headerSize);
    block.I32LE(parts.width);
    block.I32LE(parts.doubledHeight);
    block.U16LE(1);
    block.U16LE(static_cast<std::uint32_t>(parts.bits));
    block.Zeros(16);
    block.U32LE(parts.colorsUsed);
    block.Zeros(4);
    block.Raw(parts.behind);
    return block.Take();
}

/// A whole block of the size, all pixels 0 and opaque where the depth knows opaque.
inline Bytes PlainIconBlock(int width, int height, int bits) {
    IconBlockParts parts{.width = width, .doubledHeight = 2 * height, .bits = bits};
    parts.behind.resize(IconBlockLayout(width, height, IconColors(bits), bits == 32).size - kDibHeaderSize);
    return BuildIconBlock(parts);
}

struct IcoImageParts {
    Bytes image;
    int bits = 32; ///< what the directory says
    int width = 0, height = 0, colors = 0, reserved = 0, planes = 1;
};

inline Bytes BuildIco(const std::vector<IcoImageParts>& images, int type = 1) {
    ByteWriter file;
    file.U16LE(0);
    file.U16LE(static_cast<std::uint32_t>(type));
    file.U16LE(static_cast<std::uint32_t>(images.size()));
    auto offset = 6 + 16 * images.size();
    for (const auto& image : images) {
        for (const int v : {image.width, image.height, image.colors, image.reserved})
            file.U8(static_cast<std::uint32_t>(v));
        file.U16LE(static_cast<std::uint32_t>(image.planes));
        file.U16LE(static_cast<std::uint32_t>(image.bits));
        file.U32LE(static_cast<std::uint32_t>(image.image.size()));
        file.U32LE(static_cast<std::uint32_t>(offset));
        offset += image.image.size();
    }
    for (const auto& image : images) file.Raw(image.image);
    return file.Take();
}

} // namespace pelorin::test
