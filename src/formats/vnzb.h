// VNZB: the program's one compressed blob, a zlib stream that remembers the size of what it holds.
//
//   0   4    "VNZB"
//   4   u32  size of the content, little-endian
//   8   ...  zlib stream
//
// A headless block is the same without the four letters; image objects store those, each with its length in front.
#pragma once

#include "base/bytes.h"

#include <optional>

namespace pelorin {

inline constexpr std::string_view kVnzbMagic = "VNZB";

/// The largest content that is unpacked when the caller states no limit: 256 MiB.
inline constexpr std::uint64_t kMaxVnzbContent = std::uint64_t{256} << 20;

/// A block with the magic; empty when memory fails or the content is 4 GiB or more.
[[nodiscard]] Bytes CompressVnzb(ByteSpan content);
/// The same without the magic.
[[nodiscard]] Bytes CompressVnzbHeadless(ByteSpan content);

/// What the block holds. Null when the magic is missing, when the stream is damaged or holds more than the recorded
/// size, or when the content is larger than `limit`. A stream that holds less gives what it holds.
[[nodiscard]] std::optional<Bytes> UncompressVnzb(ByteSpan block, std::uint64_t limit = kMaxVnzbContent);
[[nodiscard]] std::optional<Bytes> UncompressVnzbHeadless(ByteSpan block, std::uint64_t limit = kMaxVnzbContent);

} // namespace pelorin
