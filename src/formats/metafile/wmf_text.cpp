#include "formats/metafile/letters.h"
#include "formats/metafile/wmf_records.h"

namespace pelorin::metafile::wmf {

namespace {

enum TextOption : unsigned { kFillBox = 2, kClipToBox = 4, kPairs = 0x2000 };

void TextOut(Wmf& wmf, ByteReader& in) {
    const auto count = in.U16LE();
    const auto letters = LettersOfBytes(in.TakeUpTo(count), wmf.Now().font);
    if (count & 1) in.TakeUpTo(1);
    TextLine line;
    line.at = ReadYX(in);
    line.letters = letters;
    if (in.Ok()) wmf.painter.Text(line);
}

void ExtTextOut(Wmf& wmf, ByteReader& in) {
    TextLine line;
    line.at = ReadYX(in);
    const auto count = in.U16LE(), options = in.U16LE();
    line.fillBox = (options & kFillBox) != 0;
    line.clipToBox = (options & kClipToBox) != 0;
    if (line.fillBox || line.clipToBox) {
        line.boxFrom = ReadXY(in);
        line.boxTo = ReadXY(in);
    }
    const auto letters = LettersOfBytes(in.TakeUpTo(count), wmf.Now().font);
    if (count & 1) in.TakeUpTo(1);
    line.letters = letters;
    const bool pairs = (options & kPairs) != 0;
    while (in.Left() >= (pairs ? 4 : 2) && line.advances.size() < letters.size()) {
        line.advances.push_back(in.I16LE());
        if (pairs) line.rises.push_back(in.I16LE());
    }
    if (in.Ok()) wmf.painter.Text(line);
}

void SetJustification(Wmf& wmf, ByteReader& in) {
    const double blanks = in.U16LE(), extra = in.I16LE();
    wmf.Now().blankSpace = in.Ok() && blanks > 0 ? extra / blanks : 0;
}

constexpr Row kRows[] = {
    {0x0108, [](Wmf& w, ByteReader& in) { w.Now().letterSpace = in.I16LE(); }},
    {0x012E, [](Wmf& w, ByteReader& in) { w.Now().textAlign = in.U16LE(); }},
    {0x0209, [](Wmf& w, ByteReader& in) { w.Now().textColor = w.Color(in); }},
    {0x020A, SetJustification},
    {0x0521, TextOut},
    {0x0A32, ExtTextOut},
};

} // namespace

std::span<const Row> TextRows() {
    return kRows;
}

} // namespace pelorin::metafile::wmf
