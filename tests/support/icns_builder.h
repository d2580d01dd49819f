// Macintosh icon families put together element by element, good ones and bad ones.
#pragma once

#include "base/bytes.h"

#include <string_view>
#include <vector>

namespace pelorin::test {

struct IcnsElementParts {
    std::string_view type;
    Bytes payload;
    int addToLength = 0; ///< what the length says too much
};

inline Bytes BuildIcns(const std::vector<IcnsElementParts>& elements, std::string_view tag = "icns") {
    ByteWriter file;
    file.Text(tag);
    file.U32BE(0);
    for (const auto& element : elements) {
        file.Text(element.type);
        file.U32BE(static_cast<std::uint32_t>(static_cast<int>(element.payload.size()) + 8 + element.addToLength));
        file.Raw(element.payload);
    }
    file.PatchU32BE(4, static_cast<std::uint32_t>(file.Size()));
    return file.Take();
}

/// Three planes of one byte each, in packets as large as they come.
inline Bytes FlatPlanes(std::size_t pixels, std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    ByteWriter planes;
    for (const auto value : {red, green, blue}) {
        for (auto left = pixels; left > 0;) {
            const auto count = std::min<std::size_t>(left, 128);
            planes.U8(static_cast<std::uint32_t>(count - 3) | 0x80);
            planes.U8(value);
            left -= count;
        }
    }
    return planes.Take();
}

} // namespace pelorin::test
