// The image formats that are offered: for a new icon, for icons from pictures, and by the dialogs that add one.
#pragma once

#include "base/geometry.h"
#include "icon/icon_format.h"

#include <span>

namespace pelorin {

/// Rows of the format tables; the index is the number in the settings "CreateFormatFromImage%02d" and
/// "CreateFormatFromImageMac%02d". 23 Windows rows, 18 Macintosh rows.
[[nodiscard]] std::span<const IconFormat> StandardFormats(bool macintosh);
/// True for the rows that a new icon gets unless the user chose otherwise: 9 for Windows, 13 for Macintosh.
[[nodiscard]] bool IsDefaultFormat(bool macintosh, std::size_t index);

/// Sizes offered when a format is added, in the order of the dialog.
[[nodiscard]] std::span<const Size> OfferedSizes(bool macintosh);
/// Depths offered, in the order of the dialog.
[[nodiscard]] std::span<const int> OfferedDepths(bool macintosh);

/// What stands in the way of a format in an icon.
enum class FormatRule {
    Allowed,
    OnlyAlpha128, ///< Macintosh 128 x 128 exists with alpha only; the user may switch to it
    OnlyAlpha256, ///< likewise 256 x 256
    OnlyAlpha512, ///< likewise 512 x 512
    NoAlpha,      ///< Macintosh 16 x 12 does not exist with alpha
};
[[nodiscard]] FormatRule CheckFormat(const IconFormat& format, bool macintosh);

/// PNG compression is for images of at least this many pixels on both sides.
inline constexpr int kMinCompressedSide = 256;
[[nodiscard]] constexpr bool MayBeCompressed(int width, int height) {
    return width >= kMinCompressedSide && height >= kMinCompressedSide;
}

} // namespace pelorin
