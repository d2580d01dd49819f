// What the players of both kinds of metafile share.
#pragma once

#include "formats/metafile/painter.h"

namespace pelorin::metafile {

/// The facts of a file that are known before a record is played.
struct FileFacts {
    double width = 0, height = 0; ///< natural size in pixels
    Device device;                ///< without the way to the canvas
    PointF origin;                ///< the picture's upper left corner on the reference device
    std::size_t firstRecord = 0;
    // Of Windows metafiles:
    PointF windowOrigin, windowExtent;
};

[[nodiscard]] bool ReadEmfFacts(ByteSpan file, FileFacts& facts);
[[nodiscard]] bool ReadPlaceableFacts(ByteSpan file, FileFacts& facts);
[[nodiscard]] bool ReadPlainFacts(ByteSpan file, FileFacts& facts);

void PlayEmf(ByteSpan file, const FileFacts& facts, Painter& painter);
void PlayWmf(ByteSpan file, const FileFacts& facts, Painter& painter);

// ---- parts of records ----

/// Red, green, blue, 0 as a file has them.
[[nodiscard]] inline Rgb ReadColor(ByteReader& in) {
    const auto red = in.U8(), green = in.U8(), blue = in.U8();
    in.Skip(1);
    return Rgb{red} << 16 | Rgb{green} << 8 | blue;
}
/// The pen of a style word: dashes in the low four bits, caps and joins above.
[[nodiscard]] Pen MakePen(std::uint32_t style, double width, Rgb color);
/// The brush of a style: 0 solid, 1 none, 2 hatched; others are solid.
[[nodiscard]] Ink MakeBrush(std::uint32_t style, Rgb color, std::uint32_t hatch);
[[nodiscard]] Ink MakePatternBrush(Surface picture);
[[nodiscard]] Font MakeFont(double height, double width, int tenths, int weight, bool italic, bool underline,
                            bool strikeOut);

} // namespace pelorin::metafile
