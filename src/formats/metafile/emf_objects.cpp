#include "formats/metafile/dib_source.h"
#include "formats/metafile/emf_records.h"

namespace pelorin::metafile::emf {

namespace {

constexpr std::uint32_t kStockObject = 0x80000000, kStockPalette = 15;

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

void CreatePen(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE(), style = in.U32LE();
    const double width = in.I32LE();
    in.Skip(4);
    emf.painter.SetObject(index, MakePen(style, width, emf.Color(in)));
}

// Number, the places of a bitmap, style, width, the brush's kind, colour and hatch, and the lengths of dashes.
void ExtCreatePen(Emf& emf, ByteReader& in) {
    constexpr std::uint32_t kGeometric = 0x10000, kNoBrush = 1, kHatched = 2;
    const auto index = in.U32LE();
    const auto places = DibPlaces::Read(in);
    const auto style = in.U32LE(), width = in.U32LE(), kind = in.U32LE();
    const auto color = emf.Color(in);
    const auto hatch = in.U32LE(), count = in.U32LE();
    auto pen = MakePen(style, width, color);
    pen.cosmetic = (style & kGeometric) == 0;
    pen.none = pen.none || kind == kNoBrush;
    if (kind == kHatched) pen.brush = MakeBrush(kind, color, hatch, emf.Now());
    // The hatch of a brush from a bitmap says what its colour table is.
    if (places.headerSize > 0)
        pen.brush = MakePatternBrush(Charged(emf.painter.Target(), places.Decode(emf, hatch), 1));
    for (std::uint32_t i = 0; i < count && i < 16 && in.Left() >= 4; ++i) pen.lengths.push_back(in.U32LE());
    emf.painter.SetObject(index, std::move(pen));
}

void CreateBrush(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE(), style = in.U32LE();
    const auto color = emf.Color(in);
    emf.painter.SetObject(index, MakeBrush(style, color, in.U32LE(), emf.Now()));
}

void CreatePattern(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE(), usage = in.U32LE();
    const auto places = DibPlaces::Read(in);
    emf.painter.SetObject(index, MakePatternBrush(Charged(emf.painter.Target(), places.Decode(emf, usage), 1)));
}

// The two numbers of its pixels stand for the colours of text and ground, whatever the table says.
void CreateTwoColorPattern(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE();
    in.Skip(4);
    const auto places = DibPlaces::Read(in);
    const auto numbers = std::make_shared<const std::vector<Rgb>>(std::vector<Rgb>{0, 0xFFFFFF});
    auto picture = DecodeDib(emf.Part(places.header, places.headerSize), emf.Part(places.rows, places.rowsSize),
                             DibTable::None, numbers);
    emf.painter.SetObject(index, MakeTwoColorBrush(Charged(emf.painter.Target(), std::move(picture), 1)));
}

void CreateFont(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE();
    const double height = in.I32LE(), width = in.I32LE();
    emf.painter.SetObject(index, ReadFont(in, height, width, 4, 2));
}

void CreatePalette(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE();
    in.Skip(2);
    const auto count = in.U16LE();
    emf.painter.SetObject(index, std::make_shared<const std::vector<Rgb>>(ReadPaletteEntries(in, count)));
}

void SelectPalette(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE();
    if (index == (kStockObject | kStockPalette)) {
        emf.Now().palette = nullptr;
    } else {
        emf.painter.SelectPalette(index);
    }
}

void SetPaletteEntries(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE(), first = in.U32LE(), count = in.U32LE();
    emf.painter.ChangePalette(index, first, ReadPaletteEntries(in, count));
}

void SelectObject(Emf& emf, ByteReader& in) {
    const auto index = in.U32LE();
    if (index & kStockObject) return emf.painter.Select(StockObject(index & ~kStockObject));
    emf.painter.SelectObject(index);
}

constexpr Row kRows[] = {
    {37, SelectObject},
    {38, CreatePen},
    {39, CreateBrush},
    {40, [](Emf& e, ByteReader& in) { e.painter.DeleteObject(in.U32LE()); }},
    {48, SelectPalette},
    {49, CreatePalette},
    {50, SetPaletteEntries},
    {51,
     [](Emf& e, ByteReader& in) {
         const auto index = in.U32LE();
         e.painter.ResizePalette(index, in.U32LE());
     }},
    {82, CreateFont},
    {93, CreateTwoColorPattern},
    {94, CreatePattern},
    {95, ExtCreatePen},
};

} // namespace

std::span<const Row> ObjectRows() {
    return kRows;
}

Surface DibPlaces::Decode(Emf& emf, std::uint32_t usage) const {
    if (headerSize == 0) return {};
    return Charged(emf.painter.Target(), DecodeDib(emf.Part(header, headerSize), emf.Part(rows, rowsSize),
                                                   TableOfUsage(usage), emf.Now().palette));
}

} // namespace pelorin::metafile::emf
