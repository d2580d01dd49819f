// The bitmaps inside metafiles: device-independent ones in all their forms, and the old ones of the device.
#pragma once

#include "formats/metafile/palette.h"
#include "pixel/surface.h"

namespace pelorin::metafile {

/// A bitmap from its header and table and its rows. Without `rows` these stand behind the table. 1, 4, 8, 16, 24 and 32
/// bits, run lengths, masks, JPEG and PNG files, and both header kinds; the fourth byte is the one of 32-bit pixels,
/// else 255. Empty when something is missing. The table may be numbers in the palette, or missing, the pixels then
/// being these numbers.
enum class DibTable { Colors, Numbers, None };
/// By the number that stands in the records.
[[nodiscard]] constexpr DibTable TableOfUsage(std::uint32_t usage) {
    return usage == 1 ? DibTable::Numbers : usage == 2 ? DibTable::None : DibTable::Colors;
}
[[nodiscard]] Surface DecodeDib(ByteSpan header, ByteSpan rows, DibTable table = DibTable::Colors,
                                const Palette& palette = {});

/// i16 type, width, height, bytes of a row, u8 planes, bits; rows with the top one first. One bit a pixel (set:
/// `ground`, clear: `text`) or 24; else empty.
[[nodiscard]] Surface DecodeDeviceBitmap(ByteSpan bitmap, Rgb text, Rgb ground);

} // namespace pelorin::metafile
