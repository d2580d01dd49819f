// Chunks of RIFF files: four letters, u32 size (little-endian), so many bytes, and one more when the size is odd.
#pragma once

#include "base/bytes.h"

namespace pelorin {

struct RiffChunk {
    std::string_view id; ///< four letters
    std::uint32_t size = 0;
};

/// The next chunk's head. False when there are not eight bytes left.
[[nodiscard]] bool ChunkReadHeader(ByteReader& in, RiffChunk& chunk);
/// The chunk's bytes; the reader moves behind them and their padding. Fewer bytes than the size tells are a failure of
/// the reader.
ByteSpan ChunkRead(ByteReader& in, const RiffChunk& chunk);
/// At most `limit` of the bytes; the rest is skipped.
ByteSpan ChunkReadLimited(ByteReader& in, const RiffChunk& chunk, std::size_t limit);
/// Moves behind the chunk, to the end where it is cut off.
void ChunkSkip(ByteReader& in, const RiffChunk& chunk);

void ChunkWriteFourCC(ByteWriter& out, std::string_view id);
void ChunkWriteHeader(ByteWriter& out, const RiffChunk& chunk);
/// Head, bytes and padding.
void ChunkWrite(ByteWriter& out, std::string_view id, ByteSpan data);

/// The sum of the bytes.
[[nodiscard]] std::uint32_t Checksum(ByteSpan data);

} // namespace pelorin
