// The two 16-bit checksums of Macintosh containers, both starting at 0.
#pragma once

#include "base/bytes.h"

namespace pelorin {

/// Polynomial 0x1021, the most significant bit first: MacBinary headers.
[[nodiscard]] std::uint16_t MacBinaryCrc(ByteSpan bytes);
/// Polynomial 0x8005, the least significant bit first: StuffIt headers and forks.
[[nodiscard]] std::uint16_t StuffItCrc(ByteSpan bytes);

} // namespace pelorin
