// The letters of a text from its bytes, by the character set of the font.
//
// What comes out has as many letters as the text has bytes (or words), because the file's advances are counted so: the
// second half of a letter of two is one without shape and width.
#pragma once

#include "base/bytes.h"
#include "formats/metafile/state.h"

#include <span>
#include <string>

namespace pelorin::metafile {

/// Western, Central European, Cyrillic, Greek, Turkish, Baltic and symbol fonts; East Asian letters become one wide
/// sign, other sets are taken as Western.
[[nodiscard]] std::u32string LettersOfBytes(ByteSpan bytes, const Font& font);
/// UTF-16; numbers of symbol fonts also stand in the private area from U+F000 on.
[[nodiscard]] std::u32string LettersOfUnits(std::span<const std::uint16_t> units, const Font& font);
/// Numbers of shapes in a font that nobody has here. Most fonts begin with the blank at 3 and go on in the order of
/// ASCII; the others are left out.
[[nodiscard]] std::u32string LettersOfGlyphs(std::span<const std::uint16_t> numbers);

} // namespace pelorin::metafile
