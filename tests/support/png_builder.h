// PNG files put together by hand, chunk by chunk, so that the reader is not tested with its own library's writer.
#pragma once

#include "base/bytes.h"

#include <zlib.h>

namespace pelorin::test {

inline void AppendPngChunk(ByteWriter& file, std::string_view name, ByteSpan data) {
    file.U32BE(static_cast<std::uint32_t>(data.size()));
    const auto start = file.Size();
    file.Text(name);
    file.Raw(data);
    const auto body = file.View().subspan(start);
    file.U32BE(static_cast<std::uint32_t>(crc32(0, body.data(), static_cast<uInt>(body.size()))));
}

struct PngParts {
    std::uint32_t width = 1, height = 1;
    int depth = 8, colorType = 6;
    bool interlaced = false;
    Bytes rows = {}; ///< each row (of each pass) with its filter byte in front
    Bytes palette = {}, transparency = {};
    std::uint32_t gamma = 0; ///< in 1/100,000; 0: no chunk
    int level = 6;           ///< of compression, up to 9
};

inline Bytes BuildPng(const PngParts& parts) {
    ByteWriter file;
    file.Text("\x89PNG\r\n\x1A\n");
    ByteWriter header;
    header.U32BE(parts.width);
    header.U32BE(parts.height);
    for (const int value : {parts.depth, parts.colorType, 0, 0, parts.interlaced ? 1 : 0}) {
        header.U8(static_cast<std::uint32_t>(value));
    }
    AppendPngChunk(file, "IHDR", header.View());
    if (parts.gamma != 0) {
        ByteWriter gamma;
        gamma.U32BE(parts.gamma);
        AppendPngChunk(file, "gAMA", gamma.View());
    }
    if (!parts.palette.empty()) AppendPngChunk(file, "PLTE", parts.palette);
    if (!parts.transparency.empty()) AppendPngChunk(file, "tRNS", parts.transparency);
    uLongf size = compressBound(static_cast<uLong>(parts.rows.size()));
    Bytes packed(size);
    compress2(packed.data(), &size, parts.rows.data(), static_cast<uLong>(parts.rows.size()), parts.level);
    AppendPngChunk(file, "IDAT", ByteSpan(packed).first(size));
    AppendPngChunk(file, "IEND", {});
    return file.Take();
}

} // namespace pelorin::test
