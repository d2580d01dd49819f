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
    PointF windowOrigin, windowExtent, viewportExtent; ///< at the first record
};

[[nodiscard]] bool ReadEmfFacts(ByteSpan file, FileFacts& facts);
[[nodiscard]] bool ReadPlaceableFacts(ByteSpan file, FileFacts& facts);
[[nodiscard]] bool ReadPlainFacts(ByteSpan file, FileFacts& facts);

/// The enhanced metafile that comments of a Windows metafile hold; empty where there is none or a piece is missing.
[[nodiscard]] Bytes ReadEmbeddedEmf(ByteSpan file);

void PlayEmf(ByteSpan file, const FileFacts& facts, Painter& painter);
void PlayWmf(ByteSpan file, const FileFacts& facts, Painter& painter);

// ---- parts of records ----

/// Takes what bitmaps do that get smaller: 1 to 4; others change nothing.
void SetShrinking(State& state, unsigned mode);

/// The pen of a style word: dashes in the low four bits, caps and joins above.
[[nodiscard]] Pen MakePen(std::uint32_t style, double width, Rgb color);
/// The brush of a style: 0 solid, 1 none, 2 hatched; others are solid. Hatches from 6 on are solid too, by twos of the
/// brush's colour, the text's and the ground's.
[[nodiscard]] Ink MakeBrush(std::uint32_t style, Rgb color, std::uint32_t hatch, const State& state);
[[nodiscard]] Ink MakePatternBrush(Surface picture);
/// Of a bitmap that was read with 0 as black: while it is used, black is the colour of text and all else the ground.
[[nodiscard]] Ink MakeTwoColorBrush(Surface numbers);
/// From the bytes of a font's description behind its width: angle, orientation and weight in words of `wordSize` bytes,
/// italic, underline, strike-out and character set in a byte each, four more, and the name in characters of
/// `letterSize` bytes.
[[nodiscard]] Font ReadFont(ByteReader& in, double height, double width, std::size_t wordSize, std::size_t letterSize);
/// A bitmap of the file: what it takes to decode it is charged to the canvas, and it is empty when that is used up.
[[nodiscard]] Surface Charged(Canvas& canvas, Surface picture, std::uint64_t pixelsOfAStep = 2);

} // namespace pelorin::metafile
