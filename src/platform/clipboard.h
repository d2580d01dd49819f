// The system's clipboard: blocks of bytes under the names of formats.
#pragma once

#include "base/bytes.h"

#include <string_view>

namespace pelorin {

/// Formats of the system.
inline constexpr std::string_view kClipboardDib = "CF_DIB";       ///< a packed bitmap block of any depth
inline constexpr std::string_view kClipboardBitmap = "CF_BITMAP"; ///< likewise, as the system keeps it
inline constexpr std::string_view kClipboardPalette =
    "CF_PALETTE"; ///< u16 version, u16 count, 4-byte entries: red, green, blue, flags

class Clipboard {
public:
    virtual ~Clipboard() = default;

    [[nodiscard]] virtual bool Has(std::string_view format) const = 0;
    /// Empty when there is nothing of that format.
    [[nodiscard]] virtual Bytes Get(std::string_view format) const = 0;
    virtual void Clear() = 0;
    /// Adds a format to what was put there since `Clear`.
    virtual void Put(std::string_view format, ByteSpan bytes) = 0;
};

} // namespace pelorin
