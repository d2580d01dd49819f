#include "icon/riff.h"

#include <numeric>

namespace pelorin {

bool ChunkReadHeader(ByteReader& in, RiffChunk& chunk) {
    if (!in.Ok() || in.Left() < 8) return false;
    chunk.id = AsText(in.Take(4));
    chunk.size = in.U32LE();
    return true;
}

ByteSpan ChunkRead(ByteReader& in, const RiffChunk& chunk) {
    const auto data = in.Take(chunk.size);
    (void)in.TakeUpTo(chunk.size & 1);
    return data;
}

ByteSpan ChunkReadLimited(ByteReader& in, const RiffChunk& chunk, std::size_t limit) {
    const auto data = ChunkRead(in, chunk);
    return data.first(std::min(limit, data.size()));
}

void ChunkSkip(ByteReader& in, const RiffChunk& chunk) {
    (void)in.TakeUpTo(std::uint64_t{chunk.size} + (chunk.size & 1));
}

void ChunkWriteFourCC(ByteWriter& out, std::string_view id) {
    out.Text(id);
}

void ChunkWriteHeader(ByteWriter& out, const RiffChunk& chunk) {
    ChunkWriteFourCC(out, chunk.id);
    out.U32LE(chunk.size);
}

void ChunkWrite(ByteWriter& out, std::string_view id, ByteSpan data) {
    ChunkWriteHeader(out, {id, static_cast<std::uint32_t>(data.size())});
    out.Raw(data);
    out.Zeros(data.size() & 1);
}

std::uint32_t Checksum(ByteSpan data) {
    return std::accumulate(data.begin(), data.end(), std::uint32_t{0});
}

} // namespace pelorin
