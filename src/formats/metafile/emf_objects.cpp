#include "formats/metafile/dib_source.h"
#include "formats/metafile/emf_records.h"

namespace pelorin::metafile::emf {

namespace {

constexpr std::uint32_t kStockObject = 0x80000000;

// Brushes 0 to 5 from white to none, pens 6 to 8 white, black and none, fonts behind them.
Object StockObject(std::uint32_t number) {
    constexpr Rgb kBrushes[] = {0xFFFFFF, 0xC0C0C0, 0x808080, 0x404040, 0x000000};
    if (number < std::size(kBrushes)) return Ink{Ink::Kind::Solid, kBrushes[number]};
    switch (number) {
    case 5: return Ink{Ink::Kind::None};
    case 6: return MakePen(0, 0, 0xFFFFFF);
    case 7: return MakePen(0, 0, 0);
    case 8: return MakePen(5, 0, 0);
    case 18: return Ink{Ink::Kind::Solid, 0xFFFFFF};
    case 19: return MakePen(0, 0, 0);
    default: return number >= 10 && number <= 17 && number != 15 ? Object(Font{}) : Object();
    }
}

} // namespace

void CreatePen(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE(), style = in.U32LE();
    const double width = in.I32LE();
    in.Skip(4);
    emf.painter.SetObject(index, MakePen(style, width, ReadColor(in)));
}

void ExtCreatePen(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE();
    in.Skip(16);
    const auto style = in.U32LE(), width = in.U32LE(), brush = in.U32LE();
    const auto color = ReadColor(in);
    in.Skip(4);
    const auto count = in.U32LE();
    auto pen = MakePen(style, width, color);
    constexpr std::uint32_t kGeometric = 0x10000;
    pen.cosmetic = (style & kGeometric) == 0;
    pen.none = pen.none || brush == 1;
    for (std::uint32_t i = 0; i < count && i < 16 && in.Left() >= 4; ++i) pen.lengths.push_back(in.U32LE());
    emf.painter.SetObject(index, std::move(pen));
}

void CreateBrush(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE(), style = in.U32LE();
    const auto color = ReadColor(in);
    emf.painter.SetObject(index, MakeBrush(style, color, in.U32LE()));
}

void CreatePattern(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE();
    in.Skip(4);
    const auto header = in.U32LE(), headerSize = in.U32LE(), rows = in.U32LE(), rowsSize = in.U32LE();
    emf.painter.SetObject(index, MakePatternBrush(DecodeDib(emf.Part(header, headerSize), emf.Part(rows, rowsSize))));
}

void CreateFont(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE();
    const double height = in.I32LE(), width = in.I32LE();
    const int angle = in.I32LE();
    in.Skip(4);
    const int weight = in.I32LE();
    const bool italic = in.U8() != 0, underline = in.U8() != 0, strikeOut = in.U8() != 0;
    emf.painter.SetObject(index, MakeFont(height, width, angle, weight, italic, underline, strikeOut));
}

void SelectObject(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE();
    if (index & kStockObject) return emf.painter.Select(StockObject(index & ~kStockObject));
    emf.painter.SelectObject(index);
}

} // namespace pelorin::metafile::emf
