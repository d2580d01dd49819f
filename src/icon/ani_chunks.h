// An animated cursor taken apart, before any frame is decoded.
#pragma once

#include "icon/ani_file.h"

namespace pelorin {

struct AniHeader {
    std::uint32_t headerSize = 0, frames = 0, steps = 0, width = 0, height = 0, bits = 0, planes = 0, rate = 0,
                  flags = 0;
};

struct AniStep {
    std::uint32_t rate = 0, sequence = 0;
    int frame = -1; ///< position in `AniChunks::frames`; -1: the file has no such frame
};

struct AniChunks {
    AniHeader header;
    std::vector<AniStep> steps;
    std::vector<Bytes> frames; ///< as `ReadIconFrame` makes them
    AniInfo info;

    /// The icon file of a frame.
    [[nodiscard]] ByteSpan FrameFile(int frame) const;
};

/// False for a file that is no animated cursor, has no icon frames or is damaged.
[[nodiscard]] bool ReadAniChunks(ByteSpan file, AniChunks& ani);

} // namespace pelorin
