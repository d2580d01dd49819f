// The shapes of the face's letters, and how letters are put together from others.
#pragma once

#include <string_view>

namespace pelorin::metafile {

/// `strokes`: a point is a column and a letter for the height, 'A' being -3; columns go from 0 to 9 and on with 'A'.
/// Blanks part strokes.
struct Glyph {
    int advance;
    std::string_view strokes;
};

/// The letter that a composed one stands on, and its mark; letter 0 has neither shape nor width.
struct GlyphParts {
    char32_t letter = 0;
    char mark = ' ';    ///< as in `kMarkStrokes`
    bool small = false; ///< a capital at the height of small letters
};

[[nodiscard]] GlyphParts DecomposeLetter(char32_t letter);
/// A box for what the face does not have.
[[nodiscard]] const Glyph& GlyphOf(char32_t letter);

} // namespace pelorin::metafile
