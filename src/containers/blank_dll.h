// The DLL without resources that icon libraries are written into (`BLANKDLL`).
#pragma once

#include "base/bytes.h"

namespace pelorin {

/// As a VNZB block.
[[nodiscard]] ByteSpan PackedBlankDll();

inline constexpr std::size_t kBlankDllSize = 40960;

} // namespace pelorin
