// A picture in 32 bits and the same picture as two bitmaps: the only place where alpha and a mask of two values meet.
//
// Both bitmaps of a pair are surfaces whose fourth byte is 0. The second is either a mask (black is opaque, white is
// transparent) or the alpha as a grey (white is opaque), which is the other way round.
#pragma once

#include "pixel/color.h"
#include "pixel/surface.h"

namespace pelorin {

struct BitmapPair {
    Surface color, mask;
    explicit operator bool() const { return color && mask; }
};

// ---- out of 32 bits; a pair without bitmaps for any other depth ----

/// Alpha 128 and above is opaque, composed on white; below it is transparent with colour 0.
[[nodiscard]] BitmapPair SplitByThreshold(const DibBlock& block32);

/// A 24-bpp picture in which the key colour is transparent, with colour 0: where (|dr| + |dg| + |db|) x 2 is at most
/// `tolerance`. With `kNoColor` all is opaque.
[[nodiscard]] BitmapPair SplitByColor(const DibBlock& block24, ColorRef keyColor, int tolerance);

/// Colour, and the alpha as a grey. Without `fullHeight` the block is that of an icon, whose height counts the rows of
/// the mask too: the first half of the rows is the picture.
[[nodiscard]] BitmapPair SplitColorAlpha(ByteSpan block32, bool fullHeight);
[[nodiscard]] inline BitmapPair SplitColorAlpha(const DibBlock& block32, bool fullHeight) {
    return SplitColorAlpha(block32.Span(), fullHeight);
}

// ---- into 32 bits; false, with nothing changed, when the sizes differ or the block has no room for the rows ----

/// Fills a 32-bpp block of the pair's size: nothing where the mask's first byte is 255, else the colour with alpha 255.
bool MergeMask(const Surface& color, const Surface& mask, MutableByteSpan block32);

/// Fills a 32-bpp block: the colour with the first byte of the grey as alpha. Without `fullHeight` the block's height
/// becomes twice that of the pair.
bool MergeAlpha(const Surface& color, const Surface& alphaGrey, MutableByteSpan block32, bool fullHeight);

/// Fills the block of an icon: rows of 32 bits and, behind them, a plane of 1 bit. Where alpha is 0 the pixel is 0 and
/// the bit set. Without `fullHeight` the block's height becomes twice that of the pair, and its image size both planes.
bool MergeToIconBlock(const Surface& color, const Surface& alphaGrey, MutableByteSpan iconBlock, bool fullHeight);

// ---- on a pair ----

/// Blackens the colour where the mask's first byte is above 254. False when the sizes differ.
bool ClearWhereMasked(Surface& color, const Surface& mask);

} // namespace pelorin
