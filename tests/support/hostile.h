// What damaged files must not do to a reader.
#pragma once

#include "formats/picture_reader.h"

#include <gtest/gtest.h>

namespace pelorin::test {

/// Reads from bytes of their own, so that a sanitizer sees the first step behind them.
inline DibBlock ReadCopy(PictureReader read, ByteSpan file, int frame = 0) {
    const Bytes copy(file.begin(), file.end());
    PictureRequest request;
    request.frame = frame;
    PictureFacts facts;
    return read(copy, request, facts);
}

/// The file cut off at every byte, and with every byte (of the first `flips`) changed in three ways: whatever comes out
/// is nothing or a whole picture.
inline void ExpectSurvivesDamage(PictureReader read, ByteSpan file, std::size_t flips = SIZE_MAX) {
    const auto check = [&](ByteSpan bytes) {
        const auto block = ReadCopy(read, bytes);
        if (block) {
            ASSERT_TRUE(DibView(block));
        }
    };
    for (std::size_t size = 0; size < file.size(); ++size) check(file.first(size));
    Bytes changed(file.begin(), file.end());
    for (std::size_t at = 0; at < std::min(flips, file.size()); ++at) {
        for (const auto value : {0x00, 0xFF, file[at] ^ 0x80, file[at] + 1}) {
            changed[at] = static_cast<std::uint8_t>(value);
            check(changed);
        }
        changed[at] = file[at];
    }
}

} // namespace pelorin::test
