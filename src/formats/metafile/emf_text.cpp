#include "formats/metafile/emf_records.h"
#include "formats/metafile/letters.h"

namespace pelorin::metafile::emf {

namespace {

constexpr std::size_t kMaxLetters = 4096;

enum TextOption : std::uint32_t {
    kFillBox = 0x2,
    kClipToBox = 0x4,
    kGlyphNumbers = 0x10,
    kNoBox = 0x100,
    kBytes = 0x200,
    kPairs = 0x2000, // of advances: along the line and across it
};

std::u32string ReadLetters(Emf& emf, ByteReader& in, std::size_t count, bool wide, bool glyphs) {
    // Many texts may stand on the same letters.
    count = std::min(count, kMaxLetters);
    if (!emf.painter.Target().Spend(count)) return {};
    const auto bytes = in.TakeUpTo(std::uint64_t{count} * (wide ? 2 : 1));
    if (!wide) return LettersOfBytes(bytes, emf.Now().font);
    std::vector<std::uint16_t> units;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) units.push_back(LoadU16LE(bytes.data() + i));
    return glyphs ? LettersOfGlyphs(units) : LettersOfUnits(units, emf.Now().font);
}

void SetBox(TextLine& line, std::uint32_t options, const Rect& box) {
    line.fillBox = (options & kFillBox) != 0;
    line.clipToBox = (options & kClipToBox) != 0;
    line.boxFrom = {double(box.left), double(box.top)};
    line.boxTo = {double(box.right), double(box.bottom)};
}

// Place, length, offset of the letters, options, box, offset of the advances.
void DrawText(Emf& emf, ByteReader& in, bool wide) {
    TextLine line;
    line.at = Read32(in);
    const auto count = in.U32LE(), letters = in.U32LE(), options = in.U32LE();
    SetBox(line, options, ReadRect(in));
    const auto advances = in.U32LE();
    if (!in.Ok()) return;
    auto from = ByteReader(emf.whole);
    from.Seek(letters);
    const auto text = ReadLetters(emf, from, count, wide, (options & kGlyphNumbers) != 0);
    line.letters = text;
    const bool pairs = (options & kPairs) != 0;
    auto widths = ByteReader(emf.whole);
    widths.Seek(advances);
    while (advances != 0 && line.advances.size() < text.size() && widths.Left() >= (pairs ? 8u : 4u)) {
        line.advances.push_back(widths.I32LE());
        if (pairs) line.rises.push_back(widths.I32LE());
    }
    emf.painter.Text(line);
}

// Bounds, graphics mode and two scales before the text.
void TextOut(Emf& emf, ByteReader& in, bool wide) {
    in.Skip(16 + 4 + 8);
    DrawText(emf, in, wide);
}

void PolyTextOut(Emf& emf, ByteReader& in, bool wide) {
    in.Skip(16 + 4 + 8);
    const auto count = in.U32LE();
    for (std::uint32_t i = 0; i < count && in.Left() >= 40 && !emf.painter.Target().Exhausted(); ++i) {
        auto one = in;
        DrawText(emf, one, wide);
        in.Skip(40);
    }
}

void SmallTextOut(Emf& emf, ByteReader& in) {
    TextLine line;
    line.at = Read32(in);
    const auto count = in.U32LE(), options = in.U32LE();
    in.Skip(4 + 8);
    if ((options & kNoBox) == 0) SetBox(line, options, ReadRect(in));
    const auto text = ReadLetters(emf, in, count, (options & kBytes) == 0, (options & kGlyphNumbers) != 0);
    line.letters = text;
    if (in.Ok()) emf.painter.Text(line);
}

constexpr Row kRows[] = {
    {83, [](Emf& e, ByteReader& in) { TextOut(e, in, false); }},
    {84, [](Emf& e, ByteReader& in) { TextOut(e, in, true); }},
    {96, [](Emf& e, ByteReader& in) { PolyTextOut(e, in, false); }},
    {97, [](Emf& e, ByteReader& in) { PolyTextOut(e, in, true); }},
    {108, SmallTextOut},
    {120,
     [](Emf& e, ByteReader& in) {
         const double extra = in.I32LE(), blanks = in.I32LE();
         e.Now().blankSpace = blanks > 0 ? extra / blanks : 0;
     }},
};

} // namespace

std::span<const Row> TextRows() {
    return kRows;
}

} // namespace pelorin::metafile::emf
