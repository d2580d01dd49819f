#include "formats/vnzb.h"

#include <zlib.h>

namespace pelorin {

namespace {

constexpr std::size_t kSizeField = 4;
// What deflate can shrink at best is a factor of 1032; a recorded size beyond that is not believed.
constexpr std::uint64_t kMostOutputPerByte = 1032;
constexpr std::uint64_t kSlack = 1024;

Bytes Compress(std::string_view magic, ByteSpan content) {
    if (content.size() > UINT32_MAX) return {};
    uLongf length = compressBound(static_cast<uLong>(content.size()));
    const std::size_t start = magic.size() + kSizeField;
    Bytes block(start + length);
    std::copy(magic.begin(), magic.end(), block.begin());
    StoreU32LE(block.data() + magic.size(), static_cast<std::uint32_t>(content.size()));
    if (compress(block.data() + start, &length, content.data(), static_cast<uLong>(content.size())) != Z_OK) return {};
    block.resize(start + length);
    return block;
}

} // namespace

Bytes CompressVnzb(ByteSpan content) {
    return Compress(kVnzbMagic, content);
}

Bytes CompressVnzbHeadless(ByteSpan content) {
    return Compress({}, content);
}

std::optional<Bytes> UncompressVnzb(ByteSpan block, std::uint64_t limit) {
    if (!ByteReader(block).StartsWith(kVnzbMagic)) return {};
    return UncompressVnzbHeadless(block.subspan(kVnzbMagic.size()), limit);
}

std::optional<Bytes> UncompressVnzbHeadless(ByteSpan block, std::uint64_t limit) {
    ByteReader in(block);
    const std::uint64_t recorded = in.U32LE();
    const auto stream = in.Rest();
    if (!in.Ok()) return {};
    const auto room = std::min(recorded, stream.size() * kMostOutputPerByte + kSlack);
    if (room > limit) return {};

    // One byte more shows a stream that holds more than it should: the library lets that byte pass where there is no
    // room at all.
    Bytes content(static_cast<std::size_t>(room) + 1);
    auto length = static_cast<uLongf>(content.size());
    if (uncompress(content.data(), &length, stream.data(), static_cast<uLong>(stream.size())) != Z_OK) return {};
    if (length > recorded) return {};
    content.resize(length);
    return content;
}

} // namespace pelorin
